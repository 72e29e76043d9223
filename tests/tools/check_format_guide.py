#!/usr/bin/env python3
"""Runs nqoml over the samples of the guide to the format.

    check_format_guide.py docs/oml_format.md FOLDER NQOML...

A block marked "grammar" is the grammar. A block marked "oml" is a whole file and
must be clean, one marked "oml error N" must be refused with error N first; "oml file
NAME" is there to be included. FOLDER takes the samples.
"""

import json
import os
import re
import subprocess
import sys


def main():
    guide, folder, *nqoml = sys.argv[1:]
    os.makedirs(folder, exist_ok=True)
    with open(guide, encoding="utf-8") as file:
        text = file.read()
    blocks = [(m[1].split(), m[2], text.count("\n", 0, m.start()) + 1)
              for m in re.finditer(r"^```([^\n`]+)\n(.*?)^```$", text, re.MULTILINE | re.DOTALL)]
    samples = []
    for words, block, line in blocks:
        if words == ["grammar"]:
            name = "guide.grammar"
        elif words[:2] == ["oml", "file"]:
            name = words[2]
        elif words[0] == "oml":
            name = f"line{line}.oml"
            samples.append((name, int(words[2]) if words[1:2] == ["error"] else None))
        else:
            continue
        with open(os.path.join(folder, name), "w", encoding="ascii", newline="\n") as file:
            file.write(block)
    run = subprocess.run([*nqoml, "check", "--format", "json", "--grammar", "guide.grammar",
                          *(name for name, _ in samples)],
                         cwd=folder, capture_output=True, text=True, check=False)
    found = {file["file"]: [d["code"] for d in file["diagnostics"]]
             for file in json.loads(run.stdout)["files"]}
    faults = 0
    for name, code in samples:
        if found[name][:1] != ([] if code is None else [code]):
            faults += 1
            print(f"{guide}: {name} should give {code or 'no error'}, gives {found[name]}")
    if not samples or any(name not in found for name, _ in samples):
        faults += 1
        print(f"{guide}: not every sample was checked")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
