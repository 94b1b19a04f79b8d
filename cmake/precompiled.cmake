# quarlin_precompile(TARGET HEADER...): parses big headers that most files of a target include once for the target. For
# tests, tools and the simulated machine, where parsing them is most of the work; the library is compiled as it is read.
# A header that few files need makes it worse: GCC emits what is in it for all of them.
function(quarlin_precompile target)
    list(TRANSFORM ARGN REPLACE "^(.+)$" "$<$<COMPILE_LANGUAGE:CXX>:<\\1$<ANGLE-R>>" OUTPUT_VARIABLE headers)
    target_precompile_headers(${target} PRIVATE ${headers})
    quarlin_precompiled_options(${target})
endfunction()

# quarlin_precompile_like(TARGET OTHER): with the headers that are parsed for OTHER already.
function(quarlin_precompile_like target other)
    target_precompile_headers(${target} REUSE_FROM ${other})
    quarlin_precompiled_options(${target})
endfunction()

function(quarlin_precompiled_options target)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        # So that ccache sees through it.
        target_compile_options(${target} PRIVATE "$<$<COMPILE_LANGUAGE:CXX>:SHELL:-Xclang -fno-pch-timestamp>")
        return()
    endif()
    target_compile_options(${target} PRIVATE
        # So that ccache sees through it.
        $<$<COMPILE_LANGUAGE:CXX>:-fpch-preprocess>
        # Version 12 forgets which code is the system's, and reports what it suspects there.
        -Wno-array-bounds -Wno-restrict -Wno-stringop-overflow -Wno-stringop-overread)
endfunction()
