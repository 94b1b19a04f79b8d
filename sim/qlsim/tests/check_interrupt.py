#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Ctrl-C ends qlsim cleanly. A script, because the simulated machine has no console whose Ctrl-C a Windows program could
press; on the host it is a signal.

usage: check_interrupt.py MACHINE_RUN QLSIM QLSIM_CTL
"""
import os
import signal
import subprocess
import sys
import tempfile

SCENARIO = '[[device]]\nkind = "gps"\nport = "COM6"\n'
PATIENCE_SECONDS = 20


def main():
    run, qlsim, qlsim_ctl = sys.argv[1:]
    pipe = f"qlsim-interrupt-{os.getpid()}"
    with tempfile.NamedTemporaryFile("w", suffix=".toml") as scenario:
        scenario.write(SCENARIO)
        scenario.flush()
        program = subprocess.Popen([run, qlsim, "--pipe", pipe, scenario.name])
        try:
            # It is at work when it answers.
            subprocess.run(
                [run, qlsim_ctl, "--pipe", pipe, "--wait", str(PATIENCE_SECONDS), "status"],
                check=True,
                timeout=2 * PATIENCE_SECONDS,
            )
            program.send_signal(signal.SIGINT)
            status = program.wait(PATIENCE_SECONDS)
        finally:
            program.kill()
    if status != 0:
        sys.exit(f"qlsim ended with status {status} after Ctrl-C")


if __name__ == "__main__":
    main()
