# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# Numbered steps with elapsed time. What a step prints goes to build/log; it is shown when the step fails.

step_number=0
step_count=0
step_log=
declare -a failed_steps=()
declare -a summary_lines=()
declare -a exit_actions=()
declare -A beside_groups=()

[[ -t 1 ]] && on_terminal=true || on_terminal=false

usage_error() {
    printf './dev: %s. See ./dev help.\n' "$1" >&2
    exit 2
}

die() {
    printf './dev: %s\n' "$1" >&2
    exit 1
}

# What must happen however this ends, last registered first.
at_exit() {
    exit_actions=("$1" "${exit_actions[@]}")
}

forget_at_exit() {
    local action kept=()
    for action in "${exit_actions[@]}"; do
        [[ $action == "$1" ]] || kept+=("$action")
    done
    exit_actions=("${kept[@]}")
}

run_exit_actions() {
    local status=$? action
    trap - EXIT
    trap '' INT TERM
    set +e
    for action in "${exit_actions[@]}"; do
        "$action"
    done
    exit "$status"
}
trap run_exit_actions EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

plan() {
    step_count=$1
}

forget_steps() {
    step_number=0
    summary_lines=()
}

seconds_since() {
    local now=$EPOCHREALTIME
    awk -v a="$1" -v b="$now" 'BEGIN { printf "%.1f", b - a }'
}

# Shows that a long step is alive: the last line of its log, redrawn on a terminal, now and then elsewhere.
watch_log() {
    local title=$1 log=$2 pause=20 second=0 last nothing
    $on_terminal && pause=1
    # A read that never gets anything is a pause that leaves no process of its own behind.
    exec {nothing}<> <(:)
    while ! read -r -t "$pause" -u "$nothing"; do
        second=$((second + pause))
        last=$(tail -c 300 "$log" 2>/dev/null | tr -d '\r\033' | tail -n 1)
        if $on_terminal; then
            printf '\r\033[K%s  %d s  %s' "$title" "$second" "${last:0:$((${COLUMNS:-100} - ${#title} - 10))}"
        else
            printf '        %d s: %s\n' "$second" "${last:0:120}"
        fi
    done
}

# step [--show] [--soft] TITLE COMMAND...
#   --show  the output is for the reader: print it as it comes (on a terminal too)
#   --soft  a failure is remembered and reported at the end; the next steps run
step() {
    local show=false soft=false
    while [[ $1 == --* ]]; do
        case "$1" in
            --show) show=true ;;
            --soft) soft=true ;;
        esac
        shift
    done
    local name=$1
    shift
    step_number=$((step_number + 1))
    local title log status=0 start=$EPOCHREALTIME watcher=
    title=$(printf '[%2d/%d] %s' "$step_number" "$step_count" "$name")
    mkdir -p build/log
    log=build/log/$(printf '%02d-%s' "$step_number" "${name//[^A-Za-z0-9]/-}").log
    : >"$log"
    step_log=$log

    if $show || ! $on_terminal; then
        printf '%s\n' "$title"
    else
        printf '%s' "$title"
    fi
    if ! $show; then
        watch_log "$title" "$log" 9>&- &
        watcher=$!
    fi
    # A subshell outside any condition, so that the first failing line of a step made of several ends it. The lock of
    # this run (descriptor 9) is not handed on: what stays running in the background must not hold it.
    set +e
    if $show; then
        (
            set -e
            "$@"
        ) 2>&1 9>&- | tee "$log" 9>&-
        status=${PIPESTATUS[0]}
    else
        (
            set -e
            "$@"
        ) >"$log" 2>&1 9>&-
        status=$?
        kill "$watcher" 2>/dev/null
        wait "$watcher" 2>/dev/null
    fi
    set -e

    local elapsed verdict=ok
    elapsed=$(seconds_since "$start")
    [[ $status == 0 ]] || verdict=FAILED
    if $show || ! $on_terminal; then
        printf '        %s, %s s\n' "$verdict" "$elapsed"
    else
        printf '\r\033[K%s  %s, %s s\n' "$title" "$verdict" "$elapsed"
    fi
    summary_lines+=("$(printf '%-58s %8s s  %s' "$name" "$elapsed" "$verdict")")
    if [[ $status != 0 ]]; then
        if ! $show; then
            printf -- '--- from %s:\n' "$log"
            # Tests that passed are not what is asked about now.
            grep -avE '^ *(Start +[0-9]+:|[0-9]+/[0-9]+ Test.* Passed )' "$log" | tail -n 120
            printf -- '---\n'
        fi
        failed_steps+=("$name")
        $soft || die "stopped: $name failed (the whole output: $log)"
    fi
}

# begin_beside NAME COMMAND...: what goes on while other steps do, and has what they leave of the processors.
# `step TITLE finish_beside NAME` waits for its end, has its output and fails when it failed.
begin_beside() {
    local name=$1 log=build/log/beside-$1
    shift
    mkdir -p build/log
    rm -f "$log.status"
    [[ ${#beside_groups[@]} != 0 ]] || at_exit end_beside
    # A process group of its own, so that it can be ended with all that it started.
    set -m
    (
        set +e
        renice -n 19 "$BASHPID" >/dev/null
        (
            set -e
            "$@"
        ) >"$log.log" 2>&1
        echo $? >"$log.status"
    ) 9>&- &
    beside_groups[$name]=$!
    set +m
}

finish_beside() {
    local log=build/log/beside-$1
    while [[ ! -e $log.status ]] && kill -0 "${beside_groups[$1]}" 2>/dev/null; do
        sleep 0.2
    done
    cat "$log.log"
    [[ -e $log.status ]] || return 1
    return "$(<"$log.status")"
}

end_beside() {
    local name
    for name in "${!beside_groups[@]}"; do
        [[ -e build/log/beside-$name.status ]] || kill -- "-${beside_groups[$name]}" 2>/dev/null
    done
}

# One run of this script at a time in one checkout: runs share the build folders and the simulated machine.
take_turn() {
    mkdir -p build
    exec 9>build/dev.lock
    if ! flock --nonblock 9; then
        printf 'Another ./dev runs in this checkout; waiting for it.\n'
        flock 9
    fi
}

# What every verb but help and setup begins with.
prepare() {
    setup_packages --quiet
    take_turn
}
