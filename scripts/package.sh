# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# ./dev package: what a program's author needs, in one archive.

collect_package() {
    local name=$1 folder=build/package/$1
    rm -rf build/package
    mkdir -p "$folder/bin" "$folder/lib" "$folder/java" "$folder/docs"
    cp build/windows/bin/qlsdk.dll build/windows/bin/qlctl.exe "$folder/bin/"
    cp build/windows/bin/libqlsdk.dll.a build/windows/bin/qlsdk.lib "$folder/lib/"
    cp -r include "$folder/"
    # Absent where Maven could not fetch what it needs.
    cp build/java-package/quarlin-*.jar "$folder/java/" 2>/dev/null || rmdir "$folder/java"
    cp docs/*.md "$folder/docs/"
    cp README.md CHANGELOG.md LICENSE "$folder/"
    (cd build/package && cmake -E tar cf "$name.zip" --format=zip "$name")
}

verb_package() {
    local version
    version=$(project_version)
    plan 4
    build_preset windows qlsdk qlsdk_msvc_import_library qlctl
    step "Building the Java library" package_java "$PWD/build/windows/bin/qlsdk.dll"
    java_package_note
    step "Packaging" collect_package "quarlin-$version-win64"
    printf 'Made build/package/quarlin-%s-win64.zip\n' "$version"
}
