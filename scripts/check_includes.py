#!/usr/bin/env python3
"""Checks the direction of every include in the library.

Each folder may include itself and the folders below it; no two files include
each other in a circle; public headers include no internal ones; and nq.h
includes every public header.
"""

import re
import subprocess
import sys

# What a folder may include besides itself.
FLOORS = {
    "platform": set(),
    "core": {"platform"},
    "containers": {"platform", "core"},
    "geometry": {"platform", "core", "containers"},
    "file": {"platform", "core"},
    "oml": {"platform", "core", "containers", "file"},
    "resources": {"platform", "core", "containers", "geometry"},
}
UMBRELLA = "nq/nq.h"
INCLUDE = re.compile(r'^\s*#\s*include\s*["<](nq/[^">]+)[">]', re.MULTILINE)


def folder_of(path):
    parts = path.split("/")
    return parts[1] if len(parts) == 3 else None


def find_circle(includes):
    """A list of files that include one another in a circle, or None."""
    done, path = set(), []

    def visit(name):
        if name in path:
            return path[path.index(name):] + [name]
        if name in done:
            return None
        path.append(name)
        for target in includes.get(name, ()):
            circle = visit(target)
            if circle:
                return circle
        path.pop()
        done.add(name)
        return None

    for name in includes:
        circle = visit(name)
        if circle:
            return circle
    return None


def main():
    listed = subprocess.run(["git", "ls-files", "nq/*.h", "nq/*.cpp", "nq/*.def"],
                            capture_output=True, text=True, check=True).stdout.split()
    includes = {}
    for name in listed:
        with open(name, encoding="utf-8") as source:
            includes[name] = INCLUDE.findall(source.read())

    faults = []
    for name, targets in includes.items():
        folder = folder_of(name)
        public = name.endswith(".h") and not name.endswith("_internal.h")
        for target in targets:
            if target not in includes:
                faults.append(f"{name}: {target} does not exist")
            below = folder_of(target)
            if folder is not None and below != folder and below not in FLOORS[folder]:
                faults.append(f"{name}: {folder} may not include {target}")
            if public and target.endswith("_internal.h"):
                faults.append(f"{name}: a public header includes {target}")
        if public and name != UMBRELLA and name not in includes[UMBRELLA]:
            faults.append(f"{UMBRELLA}: does not include {name}")
    circle = find_circle(includes)
    if circle:
        faults.append("a circle of includes: " + " -> ".join(circle))

    for fault in faults:
        print(fault, file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
