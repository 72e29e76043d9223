#!/usr/bin/env python3
"""Checks that debug/nq.natvis is well formed, names classes and fields that the
library has, and knows every class that the printers for gdb know."""

import re
import subprocess
import sys
import xml.etree.ElementTree as ElementTree

NATVIS = "debug/nq.natvis"
PRINTERS = "debug/nq_gdb.py"


def printed_classes():
    with open(PRINTERS, encoding="utf-8") as source:
        table = re.search(r"^PRINTERS = {(.*?)^}", source.read(), re.MULTILINE | re.DOTALL)
    return set(re.findall(r'"(\w+)":', table.group(1)))


def main():
    listed = subprocess.run(["git", "ls-files", "nq/*.h", "nq/*.cpp"],
                            capture_output=True, text=True, check=True).stdout.split()
    code = ""
    for name in listed:
        with open(name, encoding="utf-8") as source:
            code += re.sub(r"//.*", "", source.read())
    faults = []
    shown = set()
    for kind in ElementTree.parse(NATVIS).getroot():
        name = kind.get("Name")
        shown.add(name)
        if not re.search(rf"^(class|struct)\b[^;{{]*\b{name}\b", code, re.MULTILINE):
            faults.append(f"there is no class {name}")
        words = " ".join(filter(None, (part.text for part in kind.iter())))
        for word in set(re.findall(r"\b\w+_\b|(?<={)\w+(?=})|(?<=->)\w+", words)):
            if not re.search(rf"\b{word}\s*(;|=[^=]|{{)", code):
                faults.append(f"{name}: no class has a field {word}")
    faults += [f"{name} is only in {PRINTERS}" for name in printed_classes() - shown]
    for fault in faults:
        print(f"{NATVIS}: {fault}", file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
