# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# The Java library: built and tested on the host by Maven, into build/java. What runs it on Windows is in jvm.sh and
# tests/java.

# Debian's own, whichever other one comes first on the path: results are the same for everyone.
readonly debian_java=/usr/lib/jvm/java-17-openjdk-amd64
[[ ! -d $debian_java ]] || export JAVA_HOME=$debian_java

readonly java_missing='the repository of Maven cannot be reached: the Java library is left out'
# What Maven says when it lacks a plugin or a library and cannot get it.
readonly maven_cannot_fetch='^\[ERROR\] .*(Could not transfer artifact|in offline mode|Plugin .* could not be resolved)'
readonly maven_log=build/log/maven.log

# java_note TEXT: for the reader now, and again in the summary of ./dev test.
java_note() {
    printf '        %s\n' "$1"
    test_lines+=("$(printf '%-16s %s' java "$1")")
}

# run_maven ARGUMENTS...: without the network when that will do, because Maven takes its time to look for nothing new.
# Returns 3 when something is missing that cannot be fetched.
run_maven() {
    local network status
    for network in --offline --update-snapshots; do
        status=0
        # Even when told to use no colours, Maven writes the code that switches them off.
        MAVEN_OPTS="-XX:TieredStopAtLevel=1 ${MAVEN_OPTS:-}" \
            mvn -B -Dorg.slf4j.simpleLogger.defaultLogLevel=warn -Dstyle.color=never "$network" -f bindings/java/pom.xml "$@" 2>&1 |
            sed 's/\x1b\[[0-9;]*m//g' >"$maven_log" || status=$?
        [[ $status != 0 ]] && grep -qE "$maven_cannot_fetch" "$maven_log" || break
        status=3
    done
    cat "$maven_log"
    return "$status"
}

java_fingerprint() {
    repository_files | grep '^bindings/java/' | xargs -d '\n' sha256sum | sha256sum | cut -c 1-40
}

# The jar, what tests need, and the tests that need no Windows. Sources that passed are not looked at again until they
# change. That Maven's repository cannot be reached is no failure: java_build_note says it.
build_java() {
    local fingerprint status=0
    fingerprint=$(java_fingerprint)
    [[ $(cat build/java/built 2>/dev/null) != "$fingerprint" ]] || return 0
    rm -rf build/java/{built,unreachable,classes,test-classes,surefire-reports}
    run_maven -Plauncher,publish package || status=$?
    case $status in
        0) printf '%s\n' "$fingerprint" >build/java/built ;;
        3) mkdir -p build/java && : >build/java/unreachable ;;
        *) return "$status" ;;
    esac
}

# How many tests passed on the host; or why there is nothing.
java_build_note() {
    local cases
    if [[ -e build/java/unreachable ]]; then
        java_note "$java_missing"
    fi
    [[ -e build/java/built ]] || return 0
    cases=$({ cat build/java/surefire-reports/*.txt 2>/dev/null || true; } | sed -nE 's/^Tests run: ([0-9]+),.*/\1/p' |
        awk '{ sum += $1 } END { print sum + 0 }')
    java_note "$cases cases passed on the host"
    tests_ran=$((tests_ran + cases))
}

# The library and the JVMs at the same time: one computes, the other waits for the network.
prepare_java() {
    local fetching
    mkdir -p build/log
    fetch_jvms >build/log/jvms.log 2>&1 &
    fetching=$!
    build_java || {
        wait "$fetching"
        return 1
    }
    wait "$fetching"
    cat build/log/jvms.log
}

# The same for a verb that needs Java and has nothing else to do meanwhile: without it, it ends here.
java_or_die() {
    step "Building the Java library" prepare_java
    [[ -e build/java/built ]] || die "$java_missing"
    jvms_are_there || die "${jvm_missing%%:*}"
}

# package_java DLL: the jars that are given away, with the DLL in the first of them, into build/java-package. Made apart:
# what is tested carries none.
package_java() {
    local status=0
    rm -rf build/java-package
    run_maven "-Dquarlin.build=$PWD/build/java-package" "-Dquarlin.dll=$1" -DskipTests -Ppublish package || status=$?
    [[ $status != 3 ]] || rm -rf build/java-package
    [[ $status == 3 ]] || return "$status"
}

java_package_note() {
    [[ -e build/java-package ]] || java_note "$java_missing"
}
