# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# The simulated machine: up when a verb needs it, down when the verb ends, however it ends.

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
