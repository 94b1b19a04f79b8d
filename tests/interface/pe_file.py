# SPDX-License-Identifier: Apache-2.0
"""What the system's loader reads of a 64-bit Windows program or DLL: header, exports, imports, resources."""

import struct
from pathlib import Path

MACHINE_X86_64 = 0x8664
FILE_RELOCATIONS_STRIPPED = 0x0001
FILE_IS_DLL = 0x2000
DLL_HIGH_ENTROPY_VA = 0x0020
DLL_DYNAMIC_BASE = 0x0040
DLL_NX_COMPATIBLE = 0x0100

_PE32_PLUS = 0x20B
_EXPORTS, _IMPORTS, _RESOURCES, _RELOCATIONS, _DELAY_IMPORTS = 0, 1, 2, 5, 13
_RESOURCE_VERSION = 16
_FIXED_INFO_SIGNATURE = 0xFEEF04BD


class PeFile:
    def __init__(self, path):
        self._data = Path(path).read_bytes()
        if self._data[:2] != b"MZ":
            raise ValueError(f"{path} is no Windows program")
        pe = self._u32(0x3C)
        if self._data[pe : pe + 4] != b"PE\0\0":
            raise ValueError(f"{path} has no PE header")
        self.machine, section_count = struct.unpack_from("<HH", self._data, pe + 4)
        optional_size, self.characteristics = struct.unpack_from("<HH", self._data, pe + 20)
        optional = pe + 24
        if self._u16(optional) != _PE32_PLUS:
            raise ValueError(f"{path} is not 64-bit")
        self.dll_characteristics = self._u16(optional + 70)
        directory_count = self._u32(optional + 108)
        self._directories = [
            struct.unpack_from("<II", self._data, optional + 112 + 8 * i) for i in range(directory_count)
        ]
        self._sections = []
        for i in range(section_count):
            header = optional + optional_size + 40 * i
            self._sections.append(struct.unpack_from("<IIII", self._data, header + 8))

    def exports(self):
        """Name -> address. An address inside the export directory itself forwards to another DLL."""
        start, _ = self._directory(_EXPORTS)
        if not start:
            return {}
        directory = self._offset(start)
        name_count, functions, names, ordinals = struct.unpack_from("<IIII", self._data, directory + 24)
        table = {}
        for i in range(name_count):
            name = self._text(self._u32(self._offset(names) + 4 * i))
            ordinal = self._u16(self._offset(ordinals) + 2 * i)
            table[name] = self._u32(self._offset(functions) + 4 * ordinal)
        return table

    def unnamed_exports(self):
        """How many functions are exported by number alone."""
        start, _ = self._directory(_EXPORTS)
        if not start:
            return 0
        function_count, name_count, functions, _, ordinals = struct.unpack_from(
            "<IIIII", self._data, self._offset(start) + 20
        )
        named = {self._u16(self._offset(ordinals) + 2 * i) for i in range(name_count)}
        used = {i for i in range(function_count) if self._u32(self._offset(functions) + 4 * i)}
        return len(used - named)

    def forwarders(self):
        start, size = self._directory(_EXPORTS)
        return [name for name, address in self.exports().items() if start <= address < start + size]

    def imported_dlls(self):
        """Names of the DLLs that the loader brings in, at load or at the first call."""
        return self._descriptor_names(_IMPORTS, 20, 12) + self._descriptor_names(_DELAY_IMPORTS, 32, 4)

    def has_relocations(self):
        return self._directory(_RELOCATIONS)[1] > 0 and not self.characteristics & FILE_RELOCATIONS_STRIPPED

    def version(self):
        """(file version, product version, file type, {language and code page: {name: text}}) or None."""
        start, _ = self._directory(_RESOURCES)
        if not start:
            return None
        entry = self._resource_entry(start, 0, _RESOURCE_VERSION)
        while entry is not None and entry & 0x80000000:
            entry = self._resource_entry(start, entry & 0x7FFFFFFF, None)
        if entry is None:
            return None
        address, size = struct.unpack_from("<II", self._data, self._offset(start) + entry)
        return _parse_version(self._data[self._offset(address) : self._offset(address) + size])

    def _resource_entry(self, start, table, wanted_id):
        base = self._offset(start) + table
        named, numbered = struct.unpack_from("<HH", self._data, base + 12)
        for i in range(named + numbered):
            entry_id, where = struct.unpack_from("<II", self._data, base + 16 + 8 * i)
            if wanted_id is None or entry_id == wanted_id:
                return where
        return None

    def _descriptor_names(self, directory, descriptor_size, name_field):
        start, _ = self._directory(directory)
        names = []
        while start:
            name = self._u32(self._offset(start) + name_field)
            if not name:
                break
            names.append(self._text(name))
            start += descriptor_size
        return names

    def _directory(self, index):
        return self._directories[index] if index < len(self._directories) else (0, 0)

    def _offset(self, address):
        for virtual_size, virtual_address, raw_size, raw_offset in self._sections:
            if virtual_address <= address < virtual_address + max(virtual_size, raw_size):
                return address - virtual_address + raw_offset
        raise ValueError(f"address {address:#x} lies in no section")

    def _text(self, address):
        start = self._offset(address)
        return self._data[start : self._data.index(b"\0", start)].decode("ascii")

    def _u16(self, offset):
        return struct.unpack_from("<H", self._data, offset)[0]

    def _u32(self, offset):
        return struct.unpack_from("<I", self._data, offset)[0]


def _align4(offset):
    return (offset + 3) & ~3


def _node(block, start):
    """One node of the version resource: (end, value length, key, where its value begins)."""
    length, value_length, _ = struct.unpack_from("<HHH", block, start)
    end_of_key = start + 6
    while block[end_of_key : end_of_key + 2] != b"\0\0":
        end_of_key += 2
    key = block[start + 6 : end_of_key].decode("utf-16-le")
    return start + length, value_length, key, _align4(end_of_key + 2)


def _children(block, start, end):
    while start < end:
        node = _node(block, start)
        yield node
        start = _align4(node[0])


def _dotted(high, low):
    return f"{high >> 16}.{high & 0xFFFF}.{low >> 16}.{low & 0xFFFF}"


def _parse_version(block):
    end, value_length, key, value = _node(block, 0)
    fixed = struct.unpack_from("<13I", block, value)
    if key != "VS_VERSION_INFO" or fixed[0] != _FIXED_INFO_SIGNATURE:
        raise ValueError("the version resource is malformed")
    texts = {}
    for info_end, _, info_key, info_start in _children(block, _align4(value + value_length), end):
        if info_key != "StringFileInfo":
            continue
        for table_end, _, language, table_start in _children(block, info_start, info_end):
            table = texts.setdefault(language.upper(), {})
            for text_end, _, name, text_start in _children(block, table_start, table_end):
                table[name] = block[text_start:text_end].decode("utf-16-le").split("\0")[0]
    return _dotted(fixed[2], fixed[3]), _dotted(fixed[4], fixed[5]), fixed[9], texts
