# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# ./dev demo: the simulated machine drives a patrol, qlctl watches its GPS receiver through the DLL.

readonly demo_scenario=sim/scenarios/patrol.toml
readonly demo_port=7
readonly demo_seconds=20
demo_simulator=

on_machine() {
    sim/machine/run "$@" </dev/null 9>&-
}

ask_simulator() {
    on_machine build/windows/sim/qlsim-ctl.exe --pipe quarlin-demo "$@"
}

# A session of its own: Ctrl-C is for the one who watches.
launch_simulator() {
    setsid sim/machine/run build/windows/sim/qlsim.exe "$demo_scenario" --pipe quarlin-demo \
        </dev/null >build/log/demo-qlsim.log 2>&1 9>&- &
    demo_simulator=$!
    at_exit end_simulator
}

# It says so once its receiver sends and its commands are heard.
wait_for_simulator() {
    local nothing
    exec {nothing}<> <(:)
    for ((i = 0; i < 600; i++)); do
        if grep -q 'commands on' build/log/demo-qlsim.log; then
            return 0
        elif ! kill -0 "$demo_simulator" 2>/dev/null; then
            break
        fi
        read -r -t 0.05 -u "$nothing" || true
    done
    cat build/log/demo-qlsim.log
    return 1
}

end_simulator() {
    [[ -n $demo_simulator ]] || return 0
    ask_simulator --wait 1 quit >/dev/null 2>&1 || kill "$demo_simulator" 2>/dev/null
    wait "$demo_simulator" 2>/dev/null
    demo_simulator=
}

# watch_receiver ARGUMENTS...: what qlctl shows goes to the reader and, for the summary, to a file.
watch_receiver() {
    local status
    local -a show=(--redraw never --interval 1)
    $on_terminal && show=(--redraw always)
    printf '\n$ qlctl gps watch --port %s %s\n' "$demo_port" "$*"
    # Ctrl-C ends the watching, not the demo.
    trap 'printf "\n"' INT
    set +e
    on_machine build/windows/bin/qlctl.exe gps watch --port "$demo_port" "${show[@]}" "$@" |
        tee --ignore-interrupts build/log/demo-watch.log
    status=${PIPESTATUS[0]}
    set -e
    trap 'exit 130' INT
    # 9: stopped before the receiver had sent anything.
    [[ $status != 9 ]] || exit 130
    [[ $status == 0 ]] || die "qlctl ended with status $status"
}

verb_demo() {
    local -a limit=(--timeout "$demo_seconds")
    case "${1:-}" in
        "") ;;
        --forever) limit=() ;;
        *) usage_error "demo takes --forever or nothing, not '$1'" ;;
    esac
    plan 5
    build_preset windows qlctl qlsim qlsim_ctl serialui qlsim_wbem
    machine_up
    launch_simulator
    step "Starting the simulated receiver" wait_for_simulator

    watch_receiver "${limit[@]}"
    ask_simulator status gps >build/log/demo-simulated.json

    end_simulator
    forget_at_exit end_simulator
    machine_down
    python3 scripts/demo_summary.py "$demo_scenario" build/log/demo-simulated.json build/log/demo-watch.log
}
