# SPDX-License-Identifier: Apache-2.0

# quarlin_machine_library(NAME SOURCES function...): NAME.dll, a stand-in for a library that is loaded by name and whose
# functions are looked for one by one; and for each function the same library without it, in the folder
# without/FUNCTION beside it. A program that wants such a one names its folder with SetDllDirectory.
function(quarlin_machine_library name sources)
    add_library(${name}_objects OBJECT ${sources})
    target_link_libraries(${name}_objects PUBLIC sim_shared PRIVATE sim_lean)

    quarlin_machine_library_file(${name} ${name} ${QUARLIN_SIM_DIR} ${ARGN})
    foreach(missing IN LISTS ARGN)
        set(functions ${ARGN})
        list(REMOVE_ITEM functions ${missing})
        quarlin_machine_library_file(${name} ${name}_without_${missing} ${QUARLIN_SIM_DIR}/without/${missing}
            ${functions})
        add_dependencies(${name} ${name}_without_${missing})
    endforeach()
endfunction()

function(quarlin_machine_library_file name target folder)
    set(exports ${CMAKE_CURRENT_BINARY_DIR}/${target}.def)
    list(JOIN ARGN "\n    " lines)
    file(CONFIGURE OUTPUT ${exports} CONTENT "LIBRARY \"${name}.dll\"\nEXPORTS\n    ${lines}\n" @ONLY)
    add_library(${target} MODULE ${exports})
    target_link_libraries(${target} PRIVATE ${name}_objects)
    set_target_properties(${target} PROPERTIES
        OUTPUT_NAME ${name}
        PREFIX ""
        LINKER_LANGUAGE CXX
        LIBRARY_OUTPUT_DIRECTORY ${folder}
        RUNTIME_OUTPUT_DIRECTORY ${folder})
endfunction()
