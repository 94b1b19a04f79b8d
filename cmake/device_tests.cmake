# Tests that plug in devices, which all programs of a simulated machine see. They take turns at the devices themselves, by
# a mutex or a lock. When there are several machines such a test also has one for the while it runs; ctest gives it out.

# quarlin_device_tests(TEST...): the tests are of that kind.
function(quarlin_device_tests)
    set_property(GLOBAL APPEND PROPERTY QUARLIN_DEVICE_TESTS ${ARGN})
endfunction()

# quarlin_discovered_device_tests(PROGRAM...): so are all those that gtest_discover_tests finds in the programs. They are
# known only when ctest runs, in a variable that it names after the program.
function(quarlin_discovered_device_tests)
    foreach(program ${ARGN})
        set_property(GLOBAL APPEND PROPERTY QUARLIN_DEVICE_TESTS \${${program}_TESTS})
    endforeach()
endfunction()
