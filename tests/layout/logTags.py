#!/usr/bin/env python3
"""Reads the location tag of every log point of the port operations and compares them with the table below.

Users search for these numbers and compare logs of different versions, so a tag is a literal at its log point, and it is
never renumbered, given to another line or computed.

usage: logTags.py SOURCE_DIR
"""
import pathlib
import re
import sys

# File: condition of the log points (trace; error, with the mark; note, error without the mark): tags.
TAGS = {
    "zucomPortOpen.cpp": {
        "trace": [40, 49, 61, 67, 75, 84, 86, 106],
        "error": [46, 55, 80, 92, 109, 113],
        "note": [97],
    },
    "zucomPortTransmit.cpp": {"trace": [131, 143], "error": [131, 139, 149]},
    "zucomPortReceive.cpp": {"trace": [163, 185, 246], "error": [168, 175, 198, 211, 225, 242]},
    "zucomPortCommand.cpp": {
        "trace": [267, 285],
        "error": [271, 278, 292, 302, 311, 323, 332, 343, 356, 365, 375, 389, 403, 417, 431, 443],
    },
    "zucomPortParameter.cpp": {
        "trace": [455, 473, 721, 741, 811],
        "error": [460, 468, 496, 522, 529, 544, 583, 593, 627, 649, 661, 669, 680, 687, 700, 710, 726, 734, 809],
        "note": [491, 518],
    },
}
POINT = re.compile(r"\bcall\.(trace|note|error|fail|failWith)\(\s*([^,;]+?)\s*,")
# Where a tag reaches its log point through a name: a column of the table of commands, an argument.
TAG_NAME = re.compile(r"[\w.]*[tT]ag|\w+ \? [\w.]*[tT]ag : [\w.]*[tT]ag")
TABLE_ROW = re.compile(r'^\s*\{"[A-Z]+",.*?((?:, \d+)+)\}', re.MULTILINE)
ARGUMENT = re.compile(r"\bapply\(.*, (\d+)\)")


def tags_of(path):
    """The tags of a file by condition, and what is no tag."""
    text = path.read_text()
    tags = {}
    wrong = []
    for kind, argument in POINT.findall(text):
        condition = "error" if kind.startswith("fail") else kind
        if argument.isdigit():
            tags.setdefault(condition, []).append(int(argument))
        elif not TAG_NAME.fullmatch(argument):
            wrong.append(f"{path.name}: {kind}({argument}: no literal")
    named = [int(n) for row in TABLE_ROW.findall(text) for n in row.split(",") if n.strip(" 0")]
    named += [int(n) for n in ARGUMENT.findall(text)]
    if named:
        tags.setdefault("error", []).extend(named)
    return {condition: sorted(numbers) for condition, numbers in tags.items()}, wrong


def main():
    wrong = []
    port = pathlib.Path(sys.argv[1]) / "port"
    for name in sorted(TAGS.keys() | {path.name for path in port.glob("*.cpp")}):
        found, complaints = tags_of(port / name)
        wrong += complaints
        expected = TAGS.get(name, {})
        if found != expected:
            wrong.append(f"{name}: {found} instead of {expected}")
    print("\n".join(wrong) or f"{sum(len(tags) for file in TAGS.values() for tags in file.values())} tags")
    return 1 if wrong else 0


sys.exit(main())
