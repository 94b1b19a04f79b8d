# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# The simulated machine: up when a verb needs it, down when the verb ends, however it ends.

# What the simulated machine is made of, as build targets.
# shellcheck disable=SC2034
readonly machine_libraries=(serialui qlsim_wbem qlsim_hidbus qlsim_hid HwProbeLib camlamp_x64 ISDC_RS ISDC_HID HEDC_RS)

# How many of them are up.
machine_count=1

# on_machines COMMAND...: runs a command for each machine at the same time, and fails when one of them fails.
on_machines() {
    local number status=0
    local -a jobs=()
    for ((number = 1; number <= machine_count; number++)); do
        QLSIM_MACHINE=$number "$@" &
        jobs+=($!)
    done
    for number in "${jobs[@]}"; do
        wait "$number" || status=1
    done
    return $status
}

machine_up() {
    at_exit machine_down_quietly
    step "Starting the simulated machine" on_machines sim/machine/up
}

# machines_up COUNT: several, which are shared out to tests that cannot share one: see tests/machines.
machines_up() {
    machine_count=$1
    machine_up
}

machine_down_quietly() {
    on_machines sim/machine/down >/dev/null 2>&1
}

machine_down() {
    forget_at_exit machine_down_quietly
    step "Stopping the simulated machine" on_machines sim/machine/down
}
