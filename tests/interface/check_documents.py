# SPDX-License-Identifier: Apache-2.0
"""The C programs of the documents compile without a warning, as their readers compile them.

usage: check_documents.py DOCUMENT...

A program is a block marked as C that includes a public header. Some document has to hold one.
"""

import re
import sys
from pathlib import Path

from compilers import COMPILERS
from report import report

_BLOCK = re.compile(r"^```c[ \t]*\n(.*?)^```[ \t]*$", re.DOTALL | re.MULTILINE)


def programs(document):
    """Pairs of a program and the number of its first line."""
    text = document.read_text(encoding="utf-8")
    for block in _BLOCK.finditer(text):
        if "#include <quarlin/" in block[1]:
            yield block[1], text.count("\n", 0, block.start(1)) + 1


def faults(document, program, line):
    # The compiler counts the lines as the document does.
    text = f'#line {line} "{document}"\n{program}'
    result = COMPILERS["mingw-gcc"].run(text, "c11", "-fsyntax-only", "-Wall", "-Werror")
    if result.returncode:
        yield f"{document}:{line}: the program does not compile\n{result.stdout}"


def main():
    documents = [Path(name) for name in sys.argv[1:]]
    found = [(document, *program) for document in documents for program in programs(document)]
    complaints = [fault for program in found for fault in faults(*program)]
    if not found:
        complaints.append("no document holds a program")
    return report(complaints, f"{len(found)} programs of {len(documents)} documents")


if __name__ == "__main__":
    sys.exit(main())
