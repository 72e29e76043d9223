#!/usr/bin/env python3
"""Writes a project's include graph as OML, to be read with graph.grammar.

    scripts/include_graph.py > includes.oml
    nqoml check --grammar examples/data/graph.grammar includes.oml

Every header and source is a node, every #include of a file of the project an
edge from the file that includes. Files of one folder share a group.
"""

import argparse
import pathlib
import re
import sys

SUFFIXES = {".h", ".hpp", ".c", ".cpp"}
INCLUDE = re.compile(rb'^[ \t]*#[ \t]*include[ \t]*["<]([^">\r\n]+)[">]', re.MULTILINE)


def node_ids(paths):
    """An id for each path, of the letters, digits and "_" that a name may have."""
    ids = {}
    taken = set()
    for path in paths:
        plain = "f_" + re.sub(r"[^A-Za-z0-9]", "_", path)
        name, copies = plain, 1
        while name in taken:
            copies += 1
            name = f"{plain}_{copies}"
        taken.add(name)
        ids[path] = name
    return ids


def quoted(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def main():
    parser = argparse.ArgumentParser(description="writes an include graph as OML")
    parser.add_argument("--root", default=pathlib.Path(__file__).resolve().parent.parent,
                        type=pathlib.Path, help="the project (default: this one)")
    parser.add_argument("folders", nargs="*", default=["nq", "tools"],
                        help="folders of the project (default: nq tools)")
    args = parser.parse_args()

    files = sorted(path.relative_to(args.root).as_posix()
                   for folder in args.folders
                   for path in (args.root / folder).rglob("*") if path.suffix in SUFFIXES)
    ids = node_ids(files)
    groups = {}
    for name in files:
        groups.setdefault(name.rpartition("/")[0], []).append(name)

    out = sys.stdout
    out.reconfigure(newline="\n")
    out.write("graph includes\n{\n  title: \"Which file includes which\"\n"
              "  directed: true\n  layout { algorithm: layered  flow: rightward  spacing: 10.0 }\n")
    for number, (folder, members) in enumerate(sorted(groups.items()), start=1):
        out.write(f"\n  // {folder}\n  node defaults\n  {{\n    group: {number}\n")
        for name in members:
            out.write(f"    node {ids[name]} {{ title: {quoted(name)} }}\n")
        out.write("  }\n")
    out.write("\n")
    for name in files:
        # As the compiler looks: beside the file first, then from the root.
        beside = pathlib.PurePosixPath(name).parent
        for target in INCLUDE.findall((args.root / name).read_bytes()):
            target = target.decode("utf-8", "replace")
            for candidate in ((beside / target).as_posix(), target):
                if candidate in ids:
                    out.write(f"  edge {{ from: {ids[name]}  to: {ids[candidate]} }}\n")
                    break
    out.write("}\n")


if __name__ == "__main__":
    main()
