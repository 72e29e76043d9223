#!/usr/bin/env python3
"""Checks the direction of every include in the library.

Each folder may include itself and the folders below it; no two files include
each other in a circle; public headers include no internal ones; and nq.h
includes every public header. Internal are headers whose names end in
_internal.h and all headers in a folder of a folder, such as nq/oml/reading/.
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
# The floors inside nq/oml, from below: folders, and the files beside them, each with
# its source. A file includes from its own wing and from the floors below.
OML_FLOORS = [
    {"encoding", "diagnostics", "diagnostic", "token", "bin_value",
     "built_in_names"},
    {"grammar", "definitions", "grammar_file"},
    {"tree", "syntax_tree", "syntax_node", "syntax_list",
     "syntax_iter", "oml_object.h"},
    {"reading", "writing"},
    {"oml_file", "oml_file_write", "file_state_internal", "oml_object",
     "oml_extension", "factory"},
]
# On one floor, yet not each other's business.
APART = {frozenset({"reading", "writing"})}
UMBRELLA = "nq/nq.h"
INCLUDE = re.compile(r'^\s*#\s*include\s*["<](nq/[^">]+)[">]', re.MULTILINE)


def folder_of(path):
    parts = path.split("/")
    return parts[1] if len(parts) >= 3 else None


def is_internal(path):
    return path.endswith("_internal.h") or path.count("/") > 2


def oml_place(path):
    """The wing or family of a file of nq/oml and its floor; None for other files."""
    parts = path.split("/")
    if parts[:2] != ["nq", "oml"] or len(parts) < 3:
        return None
    names = [parts[2], parts[2].rsplit(".", 1)[0]]
    for name in names:
        for floor, families in enumerate(OML_FLOORS):
            if name in families:
                return name, floor
    return names[1], None


def oml_fault(name, target):
    """What is wrong with an include between two files of nq/oml, or None."""
    here, there = oml_place(name), oml_place(target)
    if here is None or there is None:
        return None
    for path, place in ((name, here), (target, there)):
        if place[1] is None:
            return f"{path}: is on no floor of nq/oml; see OML_FLOORS"
    if there[1] > here[1]:
        return f"{name}: {target} is on a floor above"
    if frozenset({here[0], there[0]}) in APART:
        return f"{name}: {here[0]} may not include {target}"
    return None


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
        public = name.endswith(".h") and not is_internal(name)
        for target in targets:
            if target not in includes:
                faults.append(f"{name}: {target} does not exist")
            below = folder_of(target)
            if folder is not None and below != folder and below not in FLOORS[folder]:
                faults.append(f"{name}: {folder} may not include {target}")
            if public and is_internal(target):
                faults.append(f"{name}: a public header includes {target}")
            fault = oml_fault(name, target)
            if fault:
                faults.append(fault)
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
