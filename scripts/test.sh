# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# ./dev test: what continuous integration runs.

# One for most tests, and three for those with devices: all programs of a machine see its devices, so that such a test has
# one for itself. A machine takes little but memory.
readonly test_machines=4

declare -a test_lines=()
tests_ran=0

# passed_cases LOG: how many cases of GoogleTest and of JUnit passed in it.
passed_cases() {
    sed -nE 's/^\[  PASSED  \] ([0-9]+) tests?\.\r?$/\1/p; s/^\[ *([0-9]+) tests successful *\]\r?$/\1/p' "$1" |
        awk '{ sum += $1 } END { print sum + 0 }'
}

# run_tests PRESET TITLE [REGEX]: a preset's tests, and their count for the last lines. The checked DLL has none of its
# own: the system tests of the release build run on it.
run_tests() {
    local preset=$1 title=$2 regex=${3:-} tests=build/$1 library_dir=
    local -a arguments=(--output-on-failure --no-tests=error)
    if [[ $preset == native ]]; then
        arguments+=(-j "$(nproc)")
    else
        # Tests with devices mostly wait, for the devices and for Windows: they run beside those that compute.
        arguments+=(-j $(($(nproc) + machine_count - 1)))
        # Once in some thousand times Wine ends a program before it has begun. A test gets one more try on the simulated
        # machine, and is named below when it needed it.
        arguments+=(--repeat until-pass:2)
    fi
    if [[ $preset == windows-checked ]]; then
        tests=build/windows
        library_dir=$PWD/build/$preset/bin
        arguments+=(-L '^system$')
    fi
    [[ -z $regex ]] || arguments+=(-R "$regex" --no-tests=ignore)
    # Brief: of the cases, those that fail.
    QLSIM_MACHINES=$machine_count QLSIM_LIBRARY_DIR=$library_dir GTEST_BRIEF=1 step --soft "$title" ctest --test-dir "$tests" "${arguments[@]}"

    local verdict skipped ran
    verdict=$(grep -E '^[0-9]+% tests passed' "$step_log") || verdict='no test matches'
    skipped=$(grep -c '\*\*\*Skipped' "$step_log") || true
    ran=$(sed -nE 's/^[0-9]+% tests passed,.* out of ([0-9]+)$/\1/p' "$step_log")
    tests_ran=$((tests_ran + ${ran:-0} - skipped))
    if [[ -n $ran ]]; then
        verdict+=", $(passed_cases "$tests/Testing/Temporary/LastTest.log") cases passed"
    fi
    [[ $skipped == 0 ]] || verdict+=", $skipped skipped"
    printf '        %s\n' "$verdict"
    sed -nE 's/^ *[0-9]+\/[0-9]+ Test +#[0-9]+: ([^ ]+) .*\*\*\*(Failed|Timeout|Exception).*/          failed once: \1/p;
        s/^ +Test +#[0-9]+: ([^ ]+) .*\*\*\*(Failed|Timeout|Exception).*/          failed once: \1/p' "$step_log" | sort -u
    test_lines+=("$(printf '%-16s %s' "$preset" "$verdict")")
    if [[ $skipped != 0 ]]; then
        grep '\*\*\*Skipped' "$step_log" | sed -E 's/^ *[0-9]+\/[0-9]+ Test +#[0-9]+: +/          skipped: /; s/ \.\.+.*//'
    fi
}

# count_cases WHAT LOG
count_cases() {
    local cases
    cases=$(passed_cases "$2")
    printf '        %d cases passed\n' "$cases"
    test_lines+=("$(printf '%-16s %d cases passed' "$1" "$cases")")
    tests_ran=$((tests_ran + cases))
}

# The logic's cases are one test to ctest; a part of them is chosen by GoogleTest's own filter.
run_named_units() {
    step --soft "Unit tests named *$1*" build/native/tests/unit_tests --gtest_brief=1 "--gtest_filter=*$1*"
    count_cases "unit tests" "$step_log"
}

# The same for system tests whose program is one test to ctest.
run_named_cases() {
    GTEST_FILTER="*$1*" GTEST_BRIEF=1 step --soft "Cases named *$1* in programs that are one test" \
        ctest --test-dir build/windows --output-on-failure -L '^whole$'
    count_cases "whole programs" build/windows/Testing/Temporary/LastTest.log
}

verb_test() {
    local regex=${1:-}
    if [[ -n $QUARLIN_NMEA_DIR ]]; then
        printf 'Receiver logs: %s\n' "$QUARLIN_NMEA_DIR"
    else
        printf 'No folder of receiver logs beside the checkout: replays of real receivers are left out.\n'
    fi
    if [[ -n $regex ]]; then
        test_some "$regex"
    else
        test_all
    fi
    test_summary
}

finish_java() {
    step --soft "Java library, begun beside the rest" finish_beside java
    java_build_note
    jvm_note
}

test_all() {
    plan 19
    step --soft "Text hygiene" check_hygiene
    step --soft "Format" check_format
    step --soft "Scripts" check_scripts
    begin_beside java prepare_java
    build_preset native
    run_tests native "Unit tests, native with sanitizers"
    build_preset fuzz
    step --soft "Fuzz seeds" fuzz/run.sh --replay
    build_preset windows
    finish_java
    begin_beside lint check_lint
    machines_up "$test_machines"
    run_tests windows "Tests on the simulated machine"
    build_preset windows-checked
    run_tests windows-checked "Tests on the simulated machine, checked build"
    machine_down
    step --soft "Lint, begun beside the tests" finish_beside lint
}

test_some() {
    plan 14
    begin_beside java prepare_java
    build_preset native
    run_named_units "$1"
    run_tests native "Native tests that match $1" "$1"
    build_preset windows
    build_preset windows-checked
    finish_java
    machines_up "$test_machines"
    run_named_cases "$1"
    run_tests windows "Tests on the simulated machine that match $1" "$1"
    run_tests windows-checked "The same, checked build" "$1"
    machine_down
}

test_summary() {
    printf '\n'
    printf '  %s\n' "${summary_lines[@]}"
    printf '\n'
    printf '  %s\n' "${test_lines[@]}"
    printf '\n'
    [[ $tests_ran -gt 0 ]] || die "no test ran"
    if [[ ${#failed_steps[@]} != 0 ]]; then
        printf 'FAILED:'
        printf ' %s;' "${failed_steps[@]}"
        printf ' %d tests ran, %d s in all\n' "$tests_ran" "$SECONDS"
        exit 1
    fi
    printf 'All passed: %d tests ran, %d s in all\n' "$tests_ran" "$SECONDS"
}
