# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# What can be said about the sources without running them.

# Recordings and fuzz seeds are kept byte for byte.
text_files() {
    repository_files | grep -vE '\.(nmea|png|ico)$|^fuzz/(corpus|seeds)/|^LICENSE$'
}

script_files() {
    text_files | while IFS= read -r file; do
        if [[ $(head -c 64 "$file" | head -n 1) =~ ^'#!'.*'bash' ]]; then
            printf '%s\n' "$file"
        fi
    done
}

# no_line PATTERN MEANING: no text file has a line that matches.
no_line() {
    local hits
    hits=$(text_files | xargs -d '\n' grep -nIP -e "$1" --) || return 0
    printf '%s:\n%s\n' "$2" "$hits"
    return 1
}

check_hygiene() {
    local bad=0 file
    no_line '\r' 'carriage return' || bad=1
    no_line '\t' 'tab' || bad=1
    no_line '[ \t]+$' 'blank at the end of a line' || bad=1
    no_line '\b(TO''DO|FIX''ME|XX''X)\b' 'unfinished' || bad=1
    while IFS= read -r file; do
        if ! head -n 2 "$file" | grep -q 'SPDX-License-Identifier: Apache-2.0'; then
            printf '%s: the licence line is missing from the first two lines\n' "$file"
            bad=1
        fi
    done < <({
        cpp_files
        script_files
        repository_files | grep -E '\.(py|java|xml)$'
    } | sort -u)
    while IFS= read -r file; do
        if [[ -s $file && -n $(tail -c 1 "$file") ]]; then
            printf '%s: no line end at the end of the file\n' "$file"
            bad=1
        fi
    done < <(text_files)
    check_versions || bad=1
    return $bad
}

project_version() {
    sed -nE 's/^project\(.* VERSION ([0-9.]+).*/\1/p' CMakeLists.txt
}

# The Java library refuses a DLL of another version; that the DLL has that of CMakeLists.txt is among the tests.
check_versions() {
    local version java
    version=$(project_version)
    java=$(sed -nE 's|^  <version>(.*)</version>$|\1|p' bindings/java/pom.xml)
    [[ -n $java && $java == "$version" ]] && return 0
    printf 'bindings/java/pom.xml has version %s, CMakeLists.txt %s\n' "$java" "$version"
    return 1
}

check_format() {
    cpp_files | xargs -d '\n' clang-format --dry-run -Werror
}

check_scripts() {
    script_files | grep -v '^scripts/' | xargs -d '\n' shellcheck --external-sources
}

# lint_files: the library's sources, each behind the preset that compiles it: the logic natively, the rest for Windows.
lint_files() {
    python3 - <<'PYTHON'
import json, os
root = os.getcwd() + os.sep
presets = {}
for preset in ("windows", "native"):
    for entry in json.load(open(f"build/{preset}/compile_commands.json")):
        presets[os.path.normpath(entry["file"])] = preset
for file in sorted(presets):
    if file.startswith(root + "src" + os.sep) and file.endswith(".cpp"):
        print(presets[file], file[len(root):])
PYTHON
}

# lint_one PRESET FILE HEADERS: a file that passed is not looked at again until it, a header or the settings change.
lint_one() {
    local stamp folder
    local -a target=()
    stamp=build/lint/$(cat "$2" <(printf '%s' "$3") | sha256sum | cut -c 1-40)
    [[ ! -f $stamp ]] || return 0
    if [[ $1 == windows ]]; then
        # clang looks for the headers of another flavour of the compiler.
        folder=$(dirname "$(x86_64-w64-mingw32-g++-posix -print-libgcc-file-name)")/include/c++
        target=(--extra-arg="--target=x86_64-w64-mingw32")
        target+=(--extra-arg="-isystem$folder" --extra-arg="-isystem$folder/x86_64-w64-mingw32")
    fi
    printf '%s\n' "$2"
    clang-tidy -p "build/$1" --quiet --warnings-as-errors='*' "${target[@]}" "$2" \
        2> >(grep -v 'warnings generated' >&2) && : >"$stamp"
}
export -f lint_one

check_lint() {
    local headers
    headers=$(repository_files | grep -E '\.h$|(^|/)\.clang-tidy$' | xargs -d '\n' cat | sha256sum)
    mkdir -p build/lint
    lint_files | xargs -L 1 -P "$(nproc)" bash -c 'lint_one "$2" "$3" "$1"' lint "$headers"
}
