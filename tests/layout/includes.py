#!/usr/bin/env python3
"""Reads every #include line and fails on a dependency between folders that is not meant to be.

usage: includes.py SOURCE_DIR
"""
import pathlib
import re
import sys

# Folder: the folders whose headers it may use, beside its own. Arrows point one way, api -> port -> logger -> sdk.
MAY_USE = {
    "include": set(),
    "sdk": set(),
    "logger": {"sdk"},
    "port": {"logger", "sdk"},
    "api": {"port"},
    "tools": set(),
    "examples": set(),
    "benchmarks": {"api", "port", "logger", "sdk", "tools"},
}
LIBRARY = {"sdk", "logger", "port", "api"}
# Applications: they get every installed header and whatever packages they need.
APPLICATIONS = {"tools", "examples", "benchmarks"}
# Installed headers that hold declarations only, for every folder, and the one exception to the arrows.
FOR_ALL = {"zucom.h", "zucomExport.h"}
EXCEPTIONS = {("port", "zucomErrorText.h")}
SYSTEM_HEADER = re.compile(r"[a-z_0-9]+(\.h)?|(sys|linux|netinet|arpa)/[a-z_0-9]+\.h")
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)


def owner(root, header):
    """The folder whose source implements an installed header."""
    stem = header.removesuffix(".h")
    return next((folder for folder in sorted(LIBRARY) if (root / folder / f"{stem}.cpp").exists()), None)


def complaint(root, folder, bracket, header):
    """What is wrong with a header that a file of the folder includes, or None."""
    if bracket == '"':
        target = header.split("/")[0]
        if not (root / header).is_file():
            return "does not start at the root of the project"
        return None if target == folder or target in MAY_USE[folder] else f"{folder} may not use {target}"
    if header.startswith("zucom/"):
        name = header.removeprefix("zucom/")
        if not (root / "include" / header).is_file():
            return "no installed header"
        target = owner(root, name)
        allowed = {folder} | MAY_USE[folder]
        if folder not in LIBRARY or name in FOR_ALL or target in allowed or (folder, name) in EXCEPTIONS:
            return None
        return f"{folder} may not use {target}"
    if folder not in APPLICATIONS and not SYSTEM_HEADER.fullmatch(header):
        return "the library uses the standard library and the system only"
    return None


def main():
    root = pathlib.Path(sys.argv[1])
    count = 0
    wrong = []
    for folder in MAY_USE:
        for path in sorted((root / folder).rglob("*.[hc]*")):
            for bracket, header in INCLUDE.findall(path.read_text()):
                count += 1
                reason = complaint(root, folder, bracket, header)
                if reason:
                    wrong.append(f"{path.relative_to(root)}: {header}: {reason}")
    print("\n".join(wrong) or f"{count} includes")
    return 1 if wrong or count < 100 else 0


sys.exit(main())
