# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# ./dev package: what a program's author needs, in one archive.

collect_package() {
    local name=$1 folder=build/package/$1
    rm -rf build/package
    mkdir -p "$folder/bin" "$folder/lib" "$folder/docs"
    cp build/windows/bin/qlsdk.dll build/windows/bin/qlctl.exe "$folder/bin/"
    cp build/windows/bin/libqlsdk.dll.a build/windows/bin/qlsdk.lib "$folder/lib/"
    cp -r include "$folder/"
    cp docs/*.md "$folder/docs/"
    cp README.md CHANGELOG.md LICENSE "$folder/"
    (cd build/package && cmake -E tar cf "$name.zip" --format=zip "$name")
}

verb_package() {
    local version
    version=$(sed -nE 's/^project\(.* VERSION ([0-9.]+).*/\1/p' CMakeLists.txt)
    plan 3
    build_preset windows qlsdk qlsdk_msvc_import_library qlctl
    step "Packaging" collect_package "quarlin-$version-win64"
    printf 'Made build/package/quarlin-%s-win64.zip\n' "$version"
}
