# SPDX-License-Identifier: Apache-2.0
"""Programs that use every declared function link against the import libraries: MinGW's and Microsoft's, C and C++.

usage: check_linking.py LIBQLSDK_DLL_A QLSDK_LIB
"""

import subprocess
import sys
import tempfile
from pathlib import Path

from compilers import COMPILERS, STANDARDS
from declarations import compile_user
from pe_file import PeFile


def link_command(compiler, standard, user, program, libraries):
    if compiler.decoration == "msvc":
        options = ["/nologo", "/nodefaultlib", "/subsystem:console", "/entry:main"]
        return ["lld-link", *options, f"/out:{program}", str(user), str(libraries["msvc"])]
    driver = "x86_64-w64-mingw32-g++-posix" if standard.startswith("c++") else "x86_64-w64-mingw32-gcc-posix"
    return [driver, "-static", "-o", str(program), str(user), str(libraries["gnu"])]


def fault(compiler, standard, libraries):
    with tempfile.TemporaryDirectory() as folder:
        user, program = Path(folder) / "user.o", Path(folder) / "user.exe"
        compile_user(compiler, standard, user)
        command = link_command(compiler, standard, user, program, libraries)
        result = subprocess.run(command, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        if result.returncode:
            return result.stdout
        if "qlsdk.dll" not in PeFile(program).imported_dlls():
            return "the program does not import qlsdk.dll"
    return None


def main():
    libraries = {"gnu": Path(sys.argv[1]), "msvc": Path(sys.argv[2])}
    failures = 0
    for compiler in COMPILERS.values():
        for standard in STANDARDS:
            text = fault(compiler, standard, libraries)
            print(f"{compiler.name} {standard}: {'links' if text is None else text}")
            failures += text is not None
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
