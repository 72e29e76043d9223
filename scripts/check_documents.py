#!/usr/bin/env python3
"""Checks that the documents show the examples as they are, and lead somewhere.

Each block marked "cpp" in README.md and docs/ is a part of a program in examples/,
perhaps less indented; the first one of the README is a whole one. Each block
marked "text" is a part of what such a program writes. Links lead to files and
headings that exist.
"""

import glob
import os
import re
import sys
import textwrap

BLOCK = re.compile(r"^```(\w+)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
LINK = re.compile(r"\]\(([^)\s]+)\)")


def read(name):
    with open(name, encoding="utf-8") as file:
        return file.read()


def parts_of(text, count):
    """Every run of `count` lines of the text, as far left as it goes."""
    lines = text.splitlines()
    for start in range(len(lines) - count + 1):
        yield textwrap.dedent("\n".join(lines[start:start + count]))


def shown(block, sources):
    count = len(block.splitlines())
    wanted = textwrap.dedent("\n".join(block.splitlines()))
    return any(part == wanted for text in sources for part in parts_of(text, count))


def anchors(document):
    """What a heading is linked by."""
    headings = re.findall(r"^#+ (.*)$", document, re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def main():
    sources = {"cpp": [read(name) for name in glob.glob("examples/**/*.cpp", recursive=True)],
               "text": [read(name) for name in glob.glob("examples/*.expected")]}
    faults = []
    for name in ["README.md", *sorted(glob.glob("docs/*.md"))]:
        document = read(name)
        for kind, block in BLOCK.findall(document):
            if kind in sources and not shown(block, sources[kind]):
                faults.append(f"{name}: no example has this block:\n{block}")
        for link in LINK.findall(document):
            path, _, anchor = link.partition("#")
            if re.match(r"\w+:", path):
                continue
            target = os.path.normpath(os.path.join(os.path.dirname(name), path)) if path else name
            if not os.path.exists(target):
                faults.append(f"{name}: {path} does not exist")
            elif anchor and anchor not in anchors(read(target)):
                faults.append(f"{name}: {target} has no heading for #{anchor}")
    programs = [block for kind, block in BLOCK.findall(read("README.md")) if kind == "cpp"]
    if not programs or programs[0] not in sources["cpp"]:
        faults.append("README.md: the first program is not a whole example")
    for fault in faults:
        print(fault, file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
