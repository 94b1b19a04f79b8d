# SPDX-License-Identifier: Apache-2.0
"""How every check here ends."""


def report(faults, subject):
    """Prints the faults and what was looked at; the result is the exit status."""
    faults = list(faults)
    for fault in faults:
        print(fault)
    print(f"{subject}: {len(faults)} faults")
    return 1 if faults else 0
