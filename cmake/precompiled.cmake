# quarlin_precompile(TARGET HEADER...): parses big headers that most files of a target include once for the target. For
# tests, tools and the simulated machine, where parsing them is most of the work; the library is compiled as it is read.
function(quarlin_precompile target)
    if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        return()
    endif()
    list(TRANSFORM ARGN REPLACE "^(.+)$" "$<$<COMPILE_LANGUAGE:CXX>:<\\1$<ANGLE-R>>" OUTPUT_VARIABLE headers)
    target_precompile_headers(${target} PRIVATE ${headers})
    target_compile_options(${target} PRIVATE
        # So that ccache sees through it.
        $<$<COMPILE_LANGUAGE:CXX>:-fpch-preprocess>
        # Version 12 forgets which code is the system's, and reports what it suspects there.
        -Wno-array-bounds -Wno-restrict -Wno-stringop-overflow -Wno-stringop-overread)
endfunction()
