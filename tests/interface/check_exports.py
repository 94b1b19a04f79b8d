# SPDX-License-Identifier: Apache-2.0
"""The DLL's export table against the public headers, as each compiler spells their names, and against the native
methods of the Java classes, as javac spells theirs.

usage: check_exports.py QLSDK_DLL JAVA_SOURCES JAVA_HEADERS

JAVA_HEADERS is the folder of what javac -h made of the classes in JAVA_SOURCES.
"""

import re
import sys
from pathlib import Path

from compilers import COMPILERS
from declarations import declared_functions, imported_symbols
from pe_file import PeFile
from report import report

# Three names of one entry point.
DO_NOTHING = ["QLMISC_ShowConsole", "QLMISC_ThreadSleep", "QLMISC_WaitForDebugger"]

# Gives a buffer; its QLerr comes through a pointer.
WITHOUT_CODE = ["QLBCR_dotNet_GetBarcodeDevices", "QLMSR_GetMagStripeDevices_DotNET"]

JAVA_PREFIX = "Java_"
JAVA_DECLARATION = re.compile(r"JNIEXPORT \w+ JNICALL (\w+)\s*\(")
JAVA_NATIVE = re.compile(r"^\s*(?:(?:public|protected|private|static|final|synchronized)\s+)*native\s", re.MULTILINE)


def java_methods(headers):
    return [name for header in headers for name in JAVA_DECLARATION.findall(header.read_text(encoding="utf-8"))]


def java_faults(exports, sources, folder):
    headers = sorted(folder.glob("com_norvane_quarlin_*.h"))
    declared = java_methods(headers)
    exported = {name for name in exports if name.startswith(JAVA_PREFIX)}
    if not declared:
        yield f"no native method is declared in {folder}"
    for name in sorted(set(declared) - exported):
        yield f"not exported, though a Java class declares it: {name}"
    for name in sorted(exported - set(declared)):
        yield f"exported, but no Java class declares it: {name}"
    # A class that nobody has named to javac -h has no header.
    for source in sorted(sources.rglob("*.java")):
        natives = len(JAVA_NATIVE.findall(source.read_text(encoding="utf-8")))
        header = folder / ("_".join(source.relative_to(sources).with_suffix("").parts) + ".h")
        methods = len(java_methods([header])) if header.exists() else 0
        if natives != methods:
            yield f"{source.name} declares {natives} native methods, its header {methods}"


def declaration_faults(functions):
    for function in functions:
        if not function.imported:
            yield f"{function.name} is declared without its import attribute"
        gives_code = function.result_and_parameters.startswith("QLerr (")
        if gives_code == (function.name in WITHOUT_CODE):
            yield f"{function.name} returns what it should not: {function.result_and_parameters}"
    umbrella = declared_functions("c++20", ["quarlin.h"])
    for function in set(functions) - set(umbrella):
        yield f"quarlin.h does not bring in {function.name}"


def table_faults(dll, exports, functions):
    gnu = imported_symbols(COMPILERS["mingw-gcc"], "c++20")
    microsoft = imported_symbols(COMPILERS["clang-msvc"], "c++20")
    for decoration, symbols in (("GCC", gnu), ("Microsoft", microsoft)):
        if len(symbols) != len(functions):
            yield f"{len(symbols)} names in the {decoration} decoration for {len(functions)} functions"
        for symbol in sorted(symbols - exports.keys()):
            yield f"not exported, though programs of {decoration} tools ask for it: {symbol}"
    for symbol in sorted(exports.keys() - gnu - microsoft):
        if not symbol.startswith(JAVA_PREFIX):
            yield f"exported, but declared in no header: {symbol}"

    decorated = sorted(name for name in gnu if name not in microsoft)
    if not decorated:
        yield "no function is exported under a type-decorated name"
    if len(decorated) != len(microsoft - gnu):
        yield "the two decorations differ in how many functions they decorate"
    for function in functions:
        addresses = {
            exports.get(name)
            for name in (gnu | microsoft)
            if name == function.name
            or name.startswith(f"?{function.name}@@")
            or name.startswith(f"_Z{len(function.name)}{function.name}")
        }
        if len(addresses) != 1:
            yield f"the names of {function.name} lead to different code"

    if len({exports.get(name) for name in DO_NOTHING}) != 1:
        yield f"{', '.join(DO_NOTHING)} are not one entry point"
    if dll.unnamed_exports():
        yield f"{dll.unnamed_exports()} functions are exported without a name"
    for name in dll.forwarders():
        yield f"{name} is forwarded to another DLL"


def compiler_faults():
    """A C program, and a program of clang, asks for the names that GCC's C++ asks for."""
    wanted = imported_symbols(COMPILERS["mingw-gcc"], "c++20")
    for name in ("mingw-gcc", "clang-gnu"):
        for standard in ("c11", "c++11", "c++20"):
            declared = {function.name for function in declared_functions(standard)}
            symbols = imported_symbols(COMPILERS[name], standard)
            if len(symbols) != len(declared) or not symbols <= wanted:
                yield f"{name} as {standard} asks for other names: {sorted(symbols - wanted)}"


def main():
    dll = PeFile(sys.argv[1])
    exports = dll.exports()
    functions = declared_functions("c++20")
    faults = [
        *declaration_faults(functions),
        *table_faults(dll, exports, functions),
        *java_faults(exports, Path(sys.argv[2]), Path(sys.argv[3])),
        *compiler_faults(),
    ]
    return report(faults, f"{len(functions)} functions declared, {len(exports)} names exported")


if __name__ == "__main__":
    sys.exit(main())
