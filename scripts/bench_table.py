#!/usr/bin/env python3
"""Turns Google Benchmark's JSON into a table of pairs.

Benchmarks are named WHAT/WHO/SIZE; those of one WHAT and SIZE stand in one
row, and every peer gets the ratio of nq's median to its own.
"""

import json
import sys

SECONDS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}


def readable(seconds):
    for unit, scale in (("s", 1.0), ("ms", 1e-3), ("us", 1e-6)):
        if seconds >= scale:
            return f"{seconds / scale:.3g} {unit}"
    return f"{seconds / 1e-9:.3g} ns"


def main():
    rows = {}
    for run in json.load(sys.stdin)["benchmarks"]:
        if run.get("aggregate_name") != "median":
            continue
        parts = [p for p in run["run_name"].split("/")
                 if not p.endswith(("_time", "min_time")) and ":" not in p]
        what, who, size = parts[0], parts[1], "/".join(parts[2:])
        rows.setdefault((what, size), {})[who] = run["real_time"] * SECONDS[run["time_unit"]]

    print("| what | size | nq | peer | ratio |")
    print("|---|---|---|---|---|")
    for (what, size), times in rows.items():
        ours = times.get("nq")
        for who, theirs in times.items():
            if who == "nq" or ours is None:
                continue
            print(f"| {what} | {size} | {readable(ours)} | {who} {readable(theirs)} "
                  f"| {ours / theirs:.2f} |")


if __name__ == "__main__":
    main()
