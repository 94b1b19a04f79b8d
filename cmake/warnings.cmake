# quarlin_warnings: what every target of ours is compiled with. Warnings are errors.
add_library(quarlin_warnings INTERFACE)
target_compile_options(quarlin_warnings INTERFACE
    -Wall -Wextra -Wconversion -Wshadow -Wformat=2 -Werror
    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor;-Wold-style-cast;-Woverloaded-virtual>
    # Part of -Wconversion to clang, and not to GCC.
    $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion>)
