# SPDX-License-Identifier: Apache-2.0
"""The DLL as the system's loader sees it: what it is, what it needs, how it may be placed, which version it is.

usage: check_image.py QLSDK_DLL VERSION
"""

import sys

import pe_file
from pe_file import PeFile
from report import report

# What every 64-bit Windows has. A compiler's runtime (libgcc, libstdc++, libwinpthread) is never among them.
SYSTEM_DLLS = {
    "advapi32.dll",
    "hid.dll",
    "kernel32.dll",
    "msvcrt.dll",
    "ole32.dll",
    "oleaut32.dll",
    "setupapi.dll",
    "shell32.dll",
    "shlwapi.dll",
    "user32.dll",
    "winmm.dll",
}
DLL_FLAGS = {
    "address space layout randomisation": pe_file.DLL_DYNAMIC_BASE,
    "64-bit address space layout randomisation": pe_file.DLL_HIGH_ENTROPY_VA,
    "data execution prevention": pe_file.DLL_NX_COMPATIBLE,
}
FILE_TYPE_DLL = 2
US_ENGLISH_UTF16 = "040904B0"


def texts(version):
    return {
        "CompanyName": "Norvane",
        "FileDescription": "Quarlin hardware access library",
        "FileVersion": version,
        "InternalName": "qlsdk",
        "OriginalFilename": "qlsdk.dll",
        "ProductName": "Quarlin hardware access library",
        "ProductVersion": version,
    }


def faults(dll, version):
    if dll.machine != pe_file.MACHINE_X86_64:
        yield f"it is built for machine {dll.machine:#x}, not for x86-64"
    if not dll.characteristics & pe_file.FILE_IS_DLL:
        yield "it is no DLL"

    imported = dll.imported_dlls()
    if not imported:
        yield "it imports nothing, not even KERNEL32"
    for name in imported:
        if name.lower() not in SYSTEM_DLLS:
            yield f"it needs {name}, which is no part of Windows"

    for meaning, flag in DLL_FLAGS.items():
        if not dll.dll_characteristics & flag:
            yield f"it does not allow {meaning}"
    if not dll.has_relocations():
        yield "it has no relocations and can be loaded at one address only"

    resource = dll.version()
    if resource is None:
        yield "it has no version resource"
        return
    file_version, product_version, file_type, tables = resource
    if (file_version, product_version) != (version, version):
        yield f"its versions are {file_version} (file) and {product_version} (product), not {version}"
    if file_type != FILE_TYPE_DLL:
        yield f"its version resource says file type {file_type}"
    if tables != {US_ENGLISH_UTF16: texts(version)}:
        yield f"the texts of its version resource are {tables}"


def main():
    return report(faults(PeFile(sys.argv[1]), sys.argv[2]), sys.argv[1])


if __name__ == "__main__":
    sys.exit(main())
