# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# The simulated machine: up when a verb needs it, down when the verb ends, however it ends.

# What the simulated machine is made of, as build targets.
# shellcheck disable=SC2034
readonly machine_libraries=(serialui qlsim_wbem qlsim_hidbus qlsim_hid HwProbeLib camlamp_x64)

machine_up() {
    at_exit machine_down_quietly
    step "Starting the simulated machine" sim/machine/up
}

machine_down_quietly() {
    sim/machine/down >/dev/null 2>&1
}

machine_down() {
    forget_at_exit machine_down_quietly
    step "Stopping the simulated machine" sim/machine/down
}
