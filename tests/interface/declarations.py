# SPDX-License-Identifier: Apache-2.0
"""What the public headers declare, as compilers see it, and what a program that uses all of it asks the DLL for."""

import json
import subprocess
import tempfile
from dataclasses import dataclass
from pathlib import Path

from compilers import COMPILERS, public_headers

IMPORT_PREFIX = "__imp_"


@dataclass(frozen=True)
class Function:
    name: str
    result_and_parameters: str
    imported: bool


def _include(header_names):
    return "".join(f"#include <quarlin/{name}>\n" for name in header_names)


def _options(compiler, standard):
    return compiler.with_std_string if standard.startswith("c++") else ()


def _functions_in(node):
    for child in node.get("inner", []):
        if child["kind"] == "LinkageSpecDecl":
            yield from _functions_in(child)
        elif child["kind"] == "FunctionDecl" and not child.get("isImplicit"):
            attributes = {inner["kind"] for inner in child.get("inner", [])}
            yield Function(child["name"], child["type"]["qualType"], "DLLImportAttr" in attributes)


def declared_functions(standard, header_names=None):
    """Every function that the given headers (all of them when none is given) declare."""
    compiler = COMPILERS["clang-msvc"]
    text = _include(header_names or [header.name for header in public_headers()])
    result = compiler.run(
        text, standard, *_options(compiler, standard), "-fsyntax-only", "-Xclang", "-ast-dump=json"
    )
    if result.returncode:
        raise SystemExit(result.stdout)
    return sorted(set(_functions_in(json.loads(result.stdout))), key=lambda function: function.name)


def compile_user(compiler, standard, output):
    """Compiles to `output` a program that takes the address of every declared function."""
    names = [function.name for function in declared_functions(standard)]
    uses = "".join(f"    seen = (void (*)(void)){name};\n" for name in names)
    text = (
        _include(header.name for header in public_headers())
        + f"void (*volatile seen)(void);\nint main(void)\n{{\n{uses}    return 0;\n}}\n"
    )
    result = compiler.run(text, standard, *_options(compiler, standard), "-c", "-o", str(output))
    if result.returncode:
        raise SystemExit(f"{compiler.name}, {standard}:\n{result.stdout}")


def imported_symbols(compiler, standard):
    """The names under which a program that uses every declared function looks for them in the DLL."""
    with tempfile.TemporaryDirectory() as folder:
        user = Path(folder) / "user.o"
        compile_user(compiler, standard, user)
        listing = subprocess.run(
            ["llvm-nm", "--undefined-only", str(user)], text=True, stdout=subprocess.PIPE, check=True
        ).stdout
    symbols = {line.split()[-1] for line in listing.splitlines() if line.strip()}
    return {symbol.removeprefix(IMPORT_PREFIX) for symbol in symbols if symbol.startswith(IMPORT_PREFIX)}
