# SPDX-License-Identifier: Apache-2.0
"""The C and Java programs of the documents compile without a warning, as their readers compile them.

usage: check_documents.py JAVAC JAVA_SOURCES DOCUMENT...

A program is a block marked as C that includes a public header, or one marked as Java that has a main method. JAVAC
compiles the Java ones beside JAVA_SOURCES, the folder with the sources of the Java library. Some document has to hold
one of each.
"""

import re
import subprocess
import sys
import tempfile
from pathlib import Path

from compilers import COMPILERS
from report import report

_BLOCK = re.compile(r"^```(c|java)[ \t]*\n(.*?)^```[ \t]*$", re.DOTALL | re.MULTILINE)
_MARK = {"c": "#include <quarlin/", "java": "static void main("}
_CLASS = re.compile(r"^public (?:final )?class (\w+)", re.MULTILINE)


def programs(document):
    """For each its language, its text and the number of its first line."""
    text = document.read_text(encoding="utf-8")
    for block in _BLOCK.finditer(text):
        if _MARK[block[1]] in block[2]:
            yield block[1], block[2], text.count("\n", 0, block.start(2)) + 1


def compile_c(document, program, line):
    # The compiler counts the lines as the document does.
    text = f'#line {line} "{document}"\n{program}'
    return COMPILERS["mingw-gcc"].run(text, "c11", "-fsyntax-only", "-Wall", "-Werror")


def compile_java(javac, sources, program):
    with tempfile.TemporaryDirectory() as folder:
        file = Path(folder) / f"{_CLASS.search(program)[1]}.java"
        file.write_text(program, encoding="utf-8")
        return subprocess.run(
            [javac, "--release", "8", "-Xlint:all,-options", "-Werror", "-proc:none", "-implicit:none", "-encoding",
             "UTF-8", "-sourcepath", sources, "-d", folder, str(file)],
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)


def faults(java, document, language, program, line):
    result = compile_c(document, program, line) if language == "c" else compile_java(*java, program)
    if result.returncode:
        yield f"{document}:{line}: the program does not compile\n{result.stdout}"


def main():
    java = sys.argv[1:3]
    documents = [Path(name) for name in sys.argv[3:]]
    found = [(document, *program) for document in documents for program in programs(document)]
    complaints = [fault for program in found for fault in faults(java, *program)]
    for language in _MARK:
        if language not in (program[1] for program in found):
            complaints.append(f"no document holds a program in {language}")
    return report(complaints, f"{len(found)} programs of {len(documents)} documents")


if __name__ == "__main__":
    sys.exit(main())
