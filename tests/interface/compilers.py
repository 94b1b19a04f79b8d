# SPDX-License-Identifier: Apache-2.0
"""The compilers that applications may use, and how each is asked to compile a piece of text."""

import subprocess
from dataclasses import dataclass
from pathlib import Path

INCLUDE = Path(__file__).resolve().parents[2] / "include"
# clang has no C++ library for Windows at hand: this <string> declares std::string, which is all that a header needs.
_STAND_IN = Path(__file__).resolve().parent / "stand_in"

_STD_STRING = "-DQL_WITH_STD_STRING"

STRICT = ["-Wall", "-Wextra", "-pedantic", "-Werror"]
STANDARDS = ["c11", "c++11", "c++20"]


@dataclass(frozen=True)
class Compiler:
    name: str
    command: tuple
    # Microsoft's object format decorates C++ names differently from GCC's.
    decoration: str
    with_std_string: tuple

    def run(self, text, standard, *options):
        """Compiles `text`; the result's stdout holds what the compiler says."""
        language = "c++" if standard.startswith("c++") else "c"
        command = [*self.command, "-x", language, f"-std={standard}", f"-I{INCLUDE}", *options, "-"]
        return subprocess.run(
            command, input=text, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False
        )


COMPILERS = {
    compiler.name: compiler
    for compiler in [
        Compiler("mingw-gcc", ("x86_64-w64-mingw32-gcc-posix",), "gnu", (_STD_STRING,)),
        Compiler(
            "clang-gnu",
            ("clang", "--target=x86_64-w64-mingw32"),
            "gnu",
            (_STD_STRING, "-isystem", str(_STAND_IN)),
        ),
        # clang's own headers are all that it may see: an installed Windows SDK must not hide a missing include.
        Compiler(
            "clang-msvc",
            ("clang", "--target=x86_64-pc-windows-msvc", "-nostdlibinc"),
            "msvc",
            (_STD_STRING, "-isystem", str(_STAND_IN)),
        ),
    ]
}


def public_headers():
    headers = sorted((INCLUDE / "quarlin").glob("*.h"))
    if not headers:
        raise SystemExit(f"no public header in {INCLUDE}")
    return headers
