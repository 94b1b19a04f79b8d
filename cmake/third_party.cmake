# Header-only libraries of the distribution, for tools, tests and the simulated machine; the DLL uses none. They lie under
# /usr/include, which must never come onto the cross compiler's path (it would mix in the host's C library), so each is
# reached through a folder that holds nothing but a link to it.
function(quarlin_third_party name folder)
    find_path(header_dir_${name} NAMES ${folder} PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    set(links ${CMAKE_BINARY_DIR}/third_party/${name})
    file(MAKE_DIRECTORY ${links})
    file(CREATE_LINK ${header_dir_${name}}/${folder} ${links}/${folder} SYMBOLIC)
    add_library(third_party_${name} INTERFACE)
    target_include_directories(third_party_${name} SYSTEM INTERFACE ${links})
endfunction()

quarlin_third_party(cli11 CLI)
quarlin_third_party(json nlohmann)
quarlin_third_party(toml toml++)
