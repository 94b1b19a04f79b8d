# SPDX-License-Identifier: Apache-2.0
"""The codes of the demonstration three times: as they were held up, as the engines say they read them, and as
applications showed them.

A scanner has one user at a time, so that there is no second application that takes the same scans down as JSON.
"""

import re
from dataclasses import dataclass

ESCAPE = re.compile(rb"\\x([0-9A-Fa-f]{2})")
READ = re.compile(r"^read (\d+) bytes, (.+) (\]\S+)$", re.MULTILINE)
NOT_READ = re.compile(r"^qlsim-ctl: (\S+): not read: (.*)$", re.MULTILINE)
SHOWN = re.compile(
    r"^Scan \d+  .* \((?P<scanned>\]\w+)\).*\n"
    r"  Text    (?P<text>.*)\n"
    r"  Bytes   (?P<bytes>[0-9A-F]+(?:\n {10}[0-9A-F]+)*)$"
    r"|^Symbology     .* \((?P<edited>\]\w+)\).*\n"
    r"Before        (?P<before>.*)\n"
    r"After         (?P<after>.*)$",
    re.MULTILINE,
)


def bytes_of(text):
    """The bytes of a text in which \\x1D stands for one."""
    return ESCAPE.sub(lambda escape: bytes.fromhex(escape[1].decode()), text.encode())


@dataclass
class HeldCode:
    """Texts with escapes. The edited one is what the application's rule makes of the code."""

    scanner: str
    symbology: str
    text: str
    edited: str


@dataclass
class ReadCode:
    length: int
    symbology: str
    identifier: str


@dataclass
class ShownCode:
    identifier: str
    text: str
    data: bytes


def held_codes(lines):
    return [HeldCode(*line.split("\t")) for line in lines.splitlines()]


def read_codes(shown):
    return [ReadCode(int(length), symbology, identifier) for length, symbology, identifier in READ.findall(shown)]


def codes_not_read(shown):
    """Pairs of a scanner and its reason."""
    return NOT_READ.findall(shown)


def shown_codes(shown):
    codes = []
    for match in SHOWN.finditer(shown):
        if match["scanned"] is not None:
            codes.append(ShownCode(match["scanned"], match["text"], bytes.fromhex(match["bytes"])))
        else:
            texts = (match["before"], match["after"])
            codes += [ShownCode(match["edited"], text, bytes_of(text)) for text in texts]
    return codes
