# SPDX-License-Identifier: Apache-2.0
"""An example runs, succeeds, and prints what its readers are told that it prints.

usage: check_example.py EXPECTED_OUTPUT COMMAND...

Each line of the expected output is a pattern for the line of the output at its place.
"""

import re
import subprocess
import sys
from pathlib import Path

from report import report


def faults(expected, lines):
    for number, (pattern, line) in enumerate(zip(expected, lines), start=1):
        if not re.fullmatch(pattern, line):
            yield f"line {number} is {line!r}, expected {pattern!r}"
    if len(lines) != len(expected):
        yield f"{len(lines)} lines, expected {len(expected)}"


def main():
    expected = Path(sys.argv[1]).read_text(encoding="utf-8").splitlines()
    result = subprocess.run(sys.argv[2:], stdout=subprocess.PIPE, check=False)
    # A text of the system brings its own line end, which printing makes a longer one.
    output = result.stdout.decode("utf-8").replace("\r", "")
    lines = output.removesuffix("\n").split("\n")
    found = list(faults(expected, lines))
    if result.returncode:
        found.append(f"exit status {result.returncode}")
    print(output)
    return report(found, sys.argv[-1])


if __name__ == "__main__":
    sys.exit(main())
