# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# Configuring and building the presets, and the list of sources that format and lint work on.

# Used by ./dev build --all.
# shellcheck disable=SC2034
readonly all_presets=(windows windows-checked native native-release fuzz)

# An optional folder of receiver logs beside the checkout widens the tests: with it they also replay real receivers and
# compare the export table with the full list of names. The two variables may point elsewhere.
neighbour=$(dirname "$PWD")/shared
[[ -n ${QUARLIN_NMEA_DIR:-} || ! -d $neighbour/nmea ]] || QUARLIN_NMEA_DIR=$neighbour/nmea
[[ -n ${QUARLIN_EXPORT_LIST:-} || ! -f $neighbour/exports.txt ]] || QUARLIN_EXPORT_LIST=$neighbour/exports.txt
export QUARLIN_NMEA_DIR=${QUARLIN_NMEA_DIR:-} QUARLIN_EXPORT_LIST=${QUARLIN_EXPORT_LIST:-}
readonly neighbour_arguments=("-DQUARLIN_NMEA_DIR=$QUARLIN_NMEA_DIR" "-DQUARLIN_EXPORT_LIST=$QUARLIN_EXPORT_LIST")

# Configures when it never was, or was with other arguments; afterwards the build itself notices what changed.
configure_preset() {
    local preset=$1 remembered=build/$1/dev-arguments
    if [[ ! -f build/$preset/build.ninja || $(cat "$remembered" 2>/dev/null) != "${neighbour_arguments[*]}" ]]; then
        cmake --preset "$preset" "${neighbour_arguments[@]}"
        printf '%s\n' "${neighbour_arguments[*]}" >"$remembered"
    fi
}

# build_preset PRESET [TARGET...]: two steps; everything, unless told what is wanted.
build_preset() {
    local preset=$1
    local -a targets=()
    shift
    [[ $# == 0 ]] || targets=(--target "$@")
    step "Configuring $preset" configure_preset "$preset"
    step "Building $preset" cmake --build --preset "$preset" "${targets[@]}"
}

products() {
    printf 'Built:\n'
    find "build/$1/bin" "build/$1/sim" -maxdepth 1 -type f \
        \( -name '*.dll' -o -name '*.exe' -o -name '*.a' -o -name '*.lib' \) -printf '  %p  (%s bytes)\n' | sort
}

# Files of the repository, committed or new; without git (an unpacked archive) all but what the build made.
repository_files() {
    if git rev-parse --is-inside-work-tree >/dev/null 2>&1; then
        git ls-files --cached --others --exclude-standard
    else
        find . \( -name .git -o -path ./build -o -name __pycache__ \) -prune -o -type f -printf '%P\n'
    fi | sort | while IFS= read -r file; do
        [[ ! -f $file ]] || printf '%s\n' "$file"
    done
}

cpp_files() {
    repository_files | grep -E '\.(c|cpp|h|hpp)$'
}

format_sources() {
    cpp_files | xargs -d '\n' clang-format -i
}
