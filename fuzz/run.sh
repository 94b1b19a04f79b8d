#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs the fuzz targets of the preset fuzz and sums up what they did.
# usage: run.sh SECONDS [TARGET]   SECONDS for each target (or for TARGET alone)
#        run.sh --replay [TARGET]  the seeds and the grown corpus once, without making new inputs
# QUARLIN_FUZZ_BUILD: the build folder, when it is not build/fuzz.
set -euo pipefail

source_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
readonly source_dir
readonly build_dir=${QUARLIN_FUZZ_BUILD:-$source_dir/build/fuzz}
readonly all_targets=(fuzz_data_editing fuzz_extended_data fuzz_feature_reply fuzz_line_reader fuzz_modified_utf8
    fuzz_nmea_parser fuzz_scanner_names fuzz_swipe_report fuzz_uhf_reply)

usage() {
    echo "usage: fuzz/run.sh SECONDS|--replay [TARGET]   targets: ${all_targets[*]}" >&2
    exit 2
}

[[ $# -eq 1 || $# -eq 2 ]] || usage
replay=false
seconds=0
if [[ $1 == --replay ]]; then
    replay=true
elif [[ $1 =~ ^[0-9]+$ && $1 != 0 ]]; then
    seconds=$1
else
    usage
fi
targets=("${all_targets[@]}")
if [[ $# -eq 2 ]]; then
    [[ " ${all_targets[*]} " == *" $2 "* ]] || usage
    targets=("$2")
fi

# What libFuzzer prints last: "stat::NAME: NUMBER".
stat() {
    sed -nE "s/^stat::$2: *([0-9]+)$/\1/p" "$1" | tail -n 1
}

# Edges covered, from the progress lines: "#2 INITED cov: 812 ft: ...".
coverage() {
    sed -nE "s/^#[0-9]+[[:space:]]+$2 +cov: ([0-9]+) .*/\1/p" "$1" | tail -n 1
}

# Findings are files; crash-, timeout-, oom-, leak- and slow-unit- say of which kind.
findings() {
    find "$1" -type f ! -name 'slow-unit-*' | wc -l
}

dictionary() {
    case $1 in
        fuzz_data_editing | fuzz_extended_data | fuzz_modified_utf8 | fuzz_scanner_names) echo "$source_dir/fuzz/barcode.dict" ;;
        fuzz_feature_reply | fuzz_swipe_report) echo "$source_dir/fuzz/card.dict" ;;
        fuzz_uhf_*) echo "$source_dir/fuzz/uhf.dict" ;;
        *) echo "$source_dir/fuzz/nmea.dict" ;;
    esac
}

readonly row='%-18s %12s %9s %9s %10s %12s %9s\n'
# shellcheck disable=SC2059
header=$(printf "$row" target executions seconds "covered" "new edges" "new inputs" findings)
rows=()
failed=0
for target in "${targets[@]}"; do
    program=$build_dir/fuzz/$target
    if [[ ! -x $program ]]; then
        echo "$program is not built: cmake --preset fuzz && cmake --build --preset fuzz" >&2
        exit 2
    fi
    seeds=$source_dir/fuzz/corpus/$target
    grown=$build_dir/corpus/$target
    artifacts=$build_dir/artifacts/$target
    log=$build_dir/log/$target.log
    mkdir -p "$grown" "$artifacts" "$(dirname "$log")"
    before=$(findings "$artifacts")
    options=(-print_final_stats=1 "-artifact_prefix=$artifacts/" -timeout=10 -verbosity=1)
    if $replay; then
        options+=(-runs=0)
    else
        options+=("-max_total_time=$seconds" "-dict=$(dictionary "$target")" -max_len=4096)
    fi
    status=0
    start=$SECONDS
    "$program" "${options[@]}" "$grown" "$seeds" >"$log" 2>&1 || status=$?
    found=$(($(findings "$artifacts") - before))
    first=$(coverage "$log" INITED)
    last=$(coverage "$log" '[A-Z]+')
    # shellcheck disable=SC2059
    rows+=("$(printf "$row" "$target" "$(stat "$log" number_of_executed_units)" $((SECONDS - start)) "${last:-?}" \
        $((${last:-0} - ${first:-0})) "$(stat "$log" new_units_added)" "$found")")
    if [[ $status != 0 ]]; then
        failed=1
        echo "$target ended with status $status; the end of $log:"
        tail -n 40 "$log"
        echo "Inputs that failed: $artifacts"
    fi
done

printf '%s\n' "$header" "${rows[@]}"
exit $failed
