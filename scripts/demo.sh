# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# ./dev demo: a scripted good minute on the simulated machine. What is shown is in demo_acts.sh, how it is shown in here.

readonly demo_scenario=sim/scenarios/demo.toml
readonly demo_pipe=quarlin-demo
# What was shown and what the summary is made of.
readonly demo_record=build/log/demo
demo_nothing=
demo_simulator=
demo_act=
demo_act_number=0
demo_act_count=
demo_shown_at=$EPOCHREALTIME
# An application that goes on while the show does: its process, and what it says.
demo_application=
demo_said=

on_machine() {
    sim/machine/run "$@" </dev/null 9>&-
}

qlctl() {
    on_machine build/windows/bin/qlctl.exe "$@"
}

qlsim-ctl() {
    on_machine build/windows/sim/qlsim-ctl.exe --pipe "$demo_pipe" "$@"
}

# A read that never gets anything leaves no process of its own behind.
let_time_pass() {
    read -r -t "$1" -u "$demo_nothing" || true
}

# await WHAT COMMAND...: returns when the command succeeds, and gives up after a while.
await() {
    local what=$1 give_up=$((SECONDS + 30))
    shift
    until "$@"; do
        ((SECONDS < give_up)) || die "gave up waiting for $what"
        let_time_pass 0.05
    done
}

# A session of its own: Ctrl-C is for the one who watches.
launch_simulator() {
    setsid sim/machine/run build/windows/sim/qlsim.exe "$demo_scenario" --pipe "$demo_pipe" \
        </dev/null >"$demo_record/qlsim.log" 2>&1 9>&- &
    demo_simulator=$!
    at_exit end_simulator
}

simulator_plays() {
    grep -q 'commands on' "$demo_record/qlsim.log" || ! kill -0 "$demo_simulator" 2>/dev/null
}

# It says so once its devices are plugged in and its commands are heard.
wait_for_simulator() {
    await "the simulated devices" simulator_plays
    if ! grep -q 'commands on' "$demo_record/qlsim.log"; then
        cat "$demo_record/qlsim.log"
        return 1
    fi
}

end_simulator() {
    [[ -n $demo_simulator ]] || return 0
    qlsim-ctl --wait 1 quit >/dev/null 2>&1 || kill "$demo_simulator" 2>/dev/null
    wait "$demo_simulator" 2>/dev/null
    demo_simulator=
}

# act NAME TITLE: what follows is shown under this title and kept under this name.
act() {
    demo_act=$demo_record/$1.txt
    demo_act_number=$((demo_act_number + 1))
    : >"$demo_act"
    printf '\n%s== %d of %d: %s ==%s\n' "$bold" "$demo_act_number" "$demo_act_count" "$2" "$plain"
}

say() {
    printf '\n%s\n' "$1"
    demo_shown_at=$EPOCHREALTIME
}

# pause SECONDS: nothing but the time that a reader needs. It began when the last line was shown.
pause() {
    local left
    left=$(awk -v shown="$demo_shown_at" -v now="$EPOCHREALTIME" -v time="$1" 'BEGIN {
        left = shown + time - now
        print (left > 0.001 ? left : 0.001)
    }')
    let_time_pass "$left"
}

# What a shell reads otherwise stands in quotes, as a reader would type it. One text alone is shown as it is.
announce() {
    local word line=$1
    for word in "${@:2}"; do
        [[ $word == "&" || $word != *[!A-Za-z0-9_./:=,+-]* ]] || word="'$word'"
        line+=" $word"
    done
    printf '%s$ %s%s\n' "$bold" "$line" "$plain"
}

# What programs say, without the ends of line of another system.
hand_on() {
    tr -d '\r' 9>&- | tee -a "$demo_act" 9>&-
}

# perform STATUS COMMAND...: shows what the command says; it has to end with this status.
perform() {
    local wanted=$1 status
    shift
    set +e
    "$@" 2>&1 | hand_on
    status=${PIPESTATUS[0]}
    set -e
    demo_shown_at=$EPOCHREALTIME
    [[ $status == "$wanted" ]] || die "that ended with status $status and not with $wanted: $*"
}

# show STATUS COMMAND...: the command as a reader would type it, and what it says.
show() {
    announce "${@:2}"
    perform "$@"
}

# note NAME COMMAND...: the same as JSON, for the summary alone.
note() {
    local name=$1
    shift
    "$@" >"$demo_record/$name.json" || die "that failed: $*"
}

has_ended() {
    ! kill -0 "$1" 2>/dev/null
}

# start COMMAND...: starts an application that waits for something; follow shows what it says.
start() {
    announce "$@" "&"
    mkfifo "$demo_record/said.fifo"
    "$@" >"$demo_record/said.fifo" 2>&1 &
    demo_application=$!
    exec {demo_said}<"$demo_record/said.fifo"
    rm "$demo_record/said.fifo"
}

# follow BEGINNING: shows what the application says, up to the line that begins like this.
follow() {
    local line
    while IFS= read -r -t 30 -u "$demo_said" line; do
        printf '%s\n' "$line" | hand_on
        demo_shown_at=$EPOCHREALTIME
        [[ $line != "$1"* ]] || return 0
    done
    die "the application did not say what it should: $1"
}

# finish STATUS: shows what the application has left to say; it has to end with this status.
finish() {
    local line status=0
    while IFS= read -r -t 30 -u "$demo_said" line; do
        printf '%s\n' "$line" | hand_on
        demo_shown_at=$EPOCHREALTIME
    done
    exec {demo_said}<&-
    await "the end of the application" has_ended "$demo_application"
    wait "$demo_application" || status=$?
    [[ $status == "$1" ]] || die "the application ended with status $status and not with $1"
}

introduce() {
    printf '\n%s\n' "A portable computer with all of its devices, simulated. qlctl is an application on it, which knows the devices
through qlsdk.dll alone; qlsim-ctl is the hand that swipes a card, holds up a code and pulls a plug. They stand for

  qlctl       sim/machine/run build/windows/bin/qlctl.exe
  qlsim-ctl   sim/machine/run build/windows/sim/qlsim-ctl.exe --pipe $demo_pipe

and from a second terminal both may be used while the show goes on."
}

# On a machine that is up: the simulated devices, with empty records.
begin_show() {
    rm -rf "$demo_record"
    mkdir -p "$demo_record"
    exec {demo_nothing}<> <(:)
    launch_simulator
    step "Starting the simulated devices" wait_for_simulator
}

end_show() {
    end_simulator
    forget_at_exit end_simulator
    machine_down
}

verb_demo() {
    local gps_seconds=20 bold='' plain=''
    if $on_terminal && [[ -z ${NO_COLOR:-} ]]; then
        bold=$'\e[1m' plain=$'\e[0m'
    fi
    case "${1:-}" in
        "") ;;
        --forever) gps_seconds= ;;
        --java)
            demo_java
            return
            ;;
        *) usage_error "demo takes --forever, --java or nothing, not '$1'" ;;
    esac
    plan 5
    build_preset windows qlctl qlsim qlsim_ctl "${machine_libraries[@]}"
    machine_up
    begin_show
    introduce
    note simulated-first qlsim-ctl status
    demo_acts "$gps_seconds"
    note simulated qlsim-ctl status

    printf '\n'
    end_show
    python3 -B scripts/demo_summary.py "$demo_scenario" "$demo_record"
}
