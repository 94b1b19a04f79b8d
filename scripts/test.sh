# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# ./dev test: what continuous integration runs.

declare -a test_lines=()
tests_ran=0

# passed_cases LOG: how many GoogleTest cases passed in it.
passed_cases() {
    sed -nE 's/^\[  PASSED  \] ([0-9]+) tests?\.\r?$/\1/p' "$1" | awk '{ sum += $1 } END { print sum + 0 }'
}

# run_tests PRESET TITLE [REGEX]: a preset's tests, and their count for the last lines. The checked DLL has none of its
# own: the system tests of the release build run on it.
run_tests() {
    local preset=$1 title=$2 regex=${3:-} tests=build/$1 library_dir=
    local -a arguments=(--output-on-failure -j "$(nproc)" --no-tests=error)
    # Once in some thousand times Wine ends a program before it has begun. A test gets one more try on the simulated
    # machine, and is named below when it needed it.
    [[ $preset == native ]] || arguments+=(--repeat until-pass:2)
    if [[ $preset == windows-checked ]]; then
        tests=build/windows
        library_dir=$PWD/build/$preset/bin
        arguments+=(-L '^system$')
    fi
    [[ -z $regex ]] || arguments+=(-R "$regex" --no-tests=ignore)
    # Brief: of the cases, those that fail.
    QLSIM_LIBRARY_DIR=$library_dir GTEST_BRIEF=1 step --soft "$title" ctest --test-dir "$tests" "${arguments[@]}"

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

# The logic's cases are one test to ctest; a part of them is chosen by GoogleTest's own filter.
run_named_units() {
    step --soft "Unit tests named *$1*" build/native/tests/unit_tests --gtest_brief=1 "--gtest_filter=*$1*"
    local cases
    cases=$(passed_cases "$step_log")
    printf '        %d cases passed\n' "$cases"
    test_lines+=("$(printf '%-16s %d cases passed' "unit tests" "$cases")")
    tests_ran=$((tests_ran + cases))
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

test_all() {
    plan 18
    step --soft "Text hygiene" check_hygiene
    step --soft "Format" check_format
    step --soft "Scripts" check_scripts
    build_preset native
    run_tests native "Unit tests, native with sanitizers"
    build_preset fuzz
    step --soft "Fuzz seeds" fuzz/run.sh --replay
    build_preset windows
    step --soft "Lint" check_lint
    build_preset windows-checked
    machine_up
    run_tests windows "Tests on the simulated machine"
    run_tests windows-checked "Tests on the simulated machine, checked build"
    machine_down
}

test_some() {
    plan 12
    build_preset native
    run_named_units "$1"
    run_tests native "Native tests that match $1" "$1"
    build_preset windows
    build_preset windows-checked
    machine_up
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
