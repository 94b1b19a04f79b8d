# SPDX-License-Identifier: Apache-2.0
"""The DLL's export table against the list of all names of the finished product.

usage: check_product_list.py QLSDK_DLL FAMILY...

A FAMILY is what stands before the first underscore of its names; those named here are complete, the others have not
begun. The list is the file that the environment variable QUARLIN_EXPORT_LIST names: one name a line, "c++ NAME" for a
function whose exported names encode its signature, "#" for comments.
"""

import os
import re
import sys
from pathlib import Path

from pe_file import PeFile
from report import report

JAVA = re.compile(r"Java_com_norvane_quarlin_\w+")
GNU = re.compile(r"_Z(\d+)(\w+)")
MICROSOFT = re.compile(r"\?(\w+)@@Y")


def listed_names(path):
    plain, decorated = set(), set()
    for line in path.read_text(encoding="utf-8").splitlines():
        words = line.split("#")[0].split()
        if len(words) == 1:
            plain.add(words[0])
        elif len(words) == 2 and words[0] == "c++":
            decorated.add(words[1])
        elif words:
            raise SystemExit(f"{path}: not understood: {line}")
    if not plain or not decorated:
        raise SystemExit(f"{path} lists nothing")
    return plain, decorated


def family_of(name):
    # The Java names of a family come with its Java class, not with the family itself.
    return "Java" if JAVA.fullmatch(name) else name.split("_")[0]


def exported_names(exports):
    """Plain names, names decorated by GCC's rules and by Microsoft's, each without the decoration."""
    plain, gnu, microsoft = set(), set(), set()
    for export in exports:
        if match := GNU.fullmatch(export):
            gnu.add(match[2][: int(match[1])])
        elif match := MICROSOFT.match(export):
            microsoft.add(match[1])
        else:
            plain.add(export)
    return plain, gnu, microsoft


def faults(exports, listed, families):
    listed_plain, listed_decorated = listed
    plain, gnu, microsoft = exported_names(exports)
    for kind, names, wanted in (
        ("", plain, listed_plain),
        (" under GCC's decoration", gnu, listed_decorated),
        (" under Microsoft's decoration", microsoft, listed_decorated),
    ):
        due = {name for name in wanted if family_of(name) in families}
        for name in sorted(due - names):
            yield f"missing{kind}: {name}"
        for name in sorted(names - wanted):
            yield f"exported{kind}, but not listed: {name}"
        for name in sorted((names & wanted) - due):
            yield f"exported{kind}, though its family is not said to be complete: {name}"
    for family in sorted(families - {family_of(name) for name in listed_plain | listed_decorated}):
        yield f"the list has no family {family}"


def main():
    path = os.environ.get("QUARLIN_EXPORT_LIST", "")
    if not path:
        print("SKIPPED: QUARLIN_EXPORT_LIST names no list of the product's exports")
        return 0
    return report(faults(PeFile(sys.argv[1]).exports(), listed_names(Path(path)), set(sys.argv[2:])), path)


if __name__ == "__main__":
    sys.exit(main())
