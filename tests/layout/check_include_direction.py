#!/usr/bin/env python3
"""Checks that no file of a lower source folder includes a header of a higher one.

The folders are ranked from the bottom (records) to the top (run). A header may
include headers of its own folder and of lower folders only; so may a source
file, so that the folders form a chain without cycles. Folders of the same rank
stand beside each other and include none of each other's headers.

Usage: check_include_direction.py SRC_DIR   (exit 0 when the layout holds)
"""
import pathlib
import re
import sys

RANK = {
    "records": 0,
    "format": 1,
    "surface": 2,
    "io": 3,
    "crystal": 4,
    "observations": 4,
    "model": 5,
    "refine": 6,
    "control": 7,
    "results": 8,
    "search": 9,
    "run": 10,
}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([a-z_]+)/([^"]+)"', re.M)


def violations(src):
    found = []
    for path in sorted(src.rglob("*")):
        if path.suffix not in (".h", ".cpp"):
            continue
        folder = path.relative_to(src).parts[0]
        if folder not in RANK:
            found.append(f"{path}: folder '{folder}' has no rank")
            continue
        for target, header in INCLUDE.findall(path.read_text()):
            if target not in RANK:
                found.append(f"{path}: includes {target}/{header}, a folder without rank")
            elif target != folder and RANK[target] >= RANK[folder]:
                found.append(f"{path}: includes {target}/{header} (rank {RANK[target]} "
                             f"is not below {folder}, rank {RANK[folder]})")
    return found


def main():
    src = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else "src")
    found = violations(src)
    for line in found:
        print(line)
    print(f"{len(found)} include(s) against the layering")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
