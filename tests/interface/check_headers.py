# SPDX-License-Identifier: Apache-2.0
"""Every public header compiles alone, without a warning; so do the assertions about sizes and numbers.

usage: check_headers.py COMPILER STANDARD
"""

import sys
from pathlib import Path

from compilers import COMPILERS, STRICT, public_headers

LAYOUT = Path(__file__).resolve().parent / "layout.c"


def sources(standard, compiler):
    headers = [header.name for header in public_headers()]
    for name in headers:
        yield name, f"#include <quarlin/{name}>\n", []
        # Twice, and after all others: include guards, and no clash between families.
        yield f"{name} again", "".join(f"#include <quarlin/{n}>\n" for n in [*headers, name]), []
        if standard.startswith("c++"):
            yield f"{name} with std::string", f"#include <quarlin/{name}>\n", compiler.with_std_string
    yield "layout.c", LAYOUT.read_text(encoding="utf-8"), []


def main():
    compiler, standard = COMPILERS[sys.argv[1]], sys.argv[2]
    failures, count = 0, 0
    for title, text, options in sources(standard, compiler):
        count += 1
        result = compiler.run(text, standard, *STRICT, *options, "-fsyntax-only")
        if result.returncode or result.stdout.strip():
            failures += 1
            print(f"{title} does not compile cleanly as {standard} with {compiler.name}:\n{result.stdout}")
    print(f"{count - failures} of {count} compile cleanly as {standard} with {compiler.name}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
