# qlsdk.lib beside the DLL, for Microsoft's tools and clang-cl; libqlsdk.dll.a, for MinGW, comes from the DLL's own
# link. Both are made of src/qlsdk.def: an import library knows the outer names alone, so that the aliases there need no
# other spelling.
find_program(LLVM_DLLTOOL NAMES llvm-dlltool llvm-dlltool-14 REQUIRED DOC "Makes import libraries")

set(QUARLIN_MSVC_IMPORT_LIBRARY ${QUARLIN_BIN_DIR}/qlsdk.lib)
add_custom_command(
    OUTPUT ${QUARLIN_MSVC_IMPORT_LIBRARY}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${QUARLIN_BIN_DIR}
    COMMAND ${LLVM_DLLTOOL} -m i386:x86-64 -d ${PROJECT_SOURCE_DIR}/src/qlsdk.def -l ${QUARLIN_MSVC_IMPORT_LIBRARY}
    DEPENDS ${PROJECT_SOURCE_DIR}/src/qlsdk.def
    COMMENT "Making qlsdk.lib, the import library for Microsoft's tools"
    VERBATIM)
add_custom_target(qlsdk_msvc_import_library ALL DEPENDS ${QUARLIN_MSVC_IMPORT_LIBRARY})
