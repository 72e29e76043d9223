#!/usr/bin/env python3
"""Checks that the README's first program is examples/first_steps.cpp."""

import re
import sys


def main():
    with open("README.md", encoding="utf-8") as readme:
        shown = re.search(r"^```cpp\n(.*?)^```$", readme.read(), re.MULTILINE | re.DOTALL)
    with open("examples/first_steps.cpp", encoding="utf-8") as example:
        if shown and shown.group(1) == example.read():
            return 0
    print("README.md does not show examples/first_steps.cpp", file=sys.stderr)
    return 1


if __name__ == "__main__":
    sys.exit(main())
