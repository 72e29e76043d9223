#!/usr/bin/env python3
"""Reads and writes files of graphs: OML beside its peers, at their best.

    scripts/bench oml                                    10,000 and 100,000 nodes
    scripts/bench oml -- --nodes 1000000 --rounds 3      8 GB of files, 20 minutes
    scripts/bench oml -- --kinds addresses --columns nq-text,libxml2-sax

Each read and each write is a process of its own, which takes the time itself and
tells its most memory (bench/graphs/main.cpp). A round runs every column once, in random
order. Times are medians; a ratio is the median of the ratios of the rounds. All
columns must end on the same checksum, and what is written must read back to it.

Times are those of the wall; --clock processor takes the processor's, for a machine on
which others work.
"""

import argparse
import os
import random
import statistics
import subprocess
import sys

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
KINDS = ("reals", "integers", "addresses")  # see scripts/generate_graph.py

# The ending of the files that each format reads and writes.
ENDINGS = {
    "nq-text": "oml",
    "nq-lossless-text": "oml",
    "nq-binary": "omb",
    "by-hand": "oml",
    "rapidjson-dom": "json",
    "rapidjson-sax": "json",
    "libxml2-sax": "xml",
    "protobuf": "pb",
}
# Formats whose files no generator makes, and the writers that make them.
MADE_BY = {"omb": "nq-binary", "pb": "protobuf"}


class Failure(Exception):
    pass


class Graphs:
    """The files of one kind and size, and the program that reads and writes them."""

    def __init__(self, build, kind, nodes, clock):
        self.kind, self.nodes, self.clock = kind, nodes, clock
        self.program = os.path.join(build, "bin", "nq_graphs_of_" +
                                    ("reals" if kind == "reals" else "integers"))
        self.stem = os.path.join(build, "bench", f"{kind}_{nodes}")

    def run(self, *arguments):
        result = subprocess.run([self.program, *arguments], capture_output=True, text=True,
                                check=False)
        if result.returncode != 0:
            raise Failure(f"{' '.join(arguments)}: {result.stderr.strip()}")
        return result.stdout

    def measure(self, *arguments):
        """Seconds, MiB, checksum."""
        wall, processor, memory, checksum = self.run(*arguments).split()
        seconds = float(wall if self.clock == "wall" else processor)
        return seconds, int(memory) / 1024, checksum

    def formats(self):
        """The names of the formats, each with what it does."""
        return {line.split()[0]: line.split()[1:]
                for line in self.run("formats").splitlines()}

    def file(self, ending):
        """The name of the file, which is made when it is not there, and then is in the
        cache."""
        name = f"{self.stem}.{ending}"
        if not os.path.exists(name):
            print(f"making {os.path.basename(name)}", file=sys.stderr)
            if ending in MADE_BY:
                self.run("convert", MADE_BY[ending], self.file("oml"), name + ".new")
            else:
                subprocess.run([sys.executable, os.path.join(ROOT, "scripts/generate_graph.py"),
                                "--kind", self.kind, "--nodes", str(self.nodes),
                                "--edges", str(3 * self.nodes), "--format", ending,
                                "--output", name + ".new"], check=True)
            os.rename(name + ".new", name)
        with open(name, "rb") as file:
            while file.read(1 << 22):
                pass
        return name

    def read(self, column):
        return self.measure("read", column, f"{self.stem}.{ENDINGS[column]}")

    def write(self, column):
        target = f"{self.stem}.written"
        if os.path.exists(target):
            os.remove(target)
        return self.measure("write", column, f"{self.stem}.oml", target)

    def read_back(self, column):
        return self.measure("read", column, f"{self.stem}.written")


def rounds(number, columns, run):
    """For each column the results of all rounds."""
    results = {column: [] for column in columns}
    for _ in range(number):
        for column in random.sample(columns, len(columns)):
            results[column].append(run(column))
    sums = {result[2] for results_of in results.values() for result in results_of}
    if len(sums) > 1:
        raise Failure(f"the checksums differ: {sums}")
    return results


def table(what, results, size):
    """Prints the times beside those of the library's two encodings."""
    ours = [name for name in ("nq-text", "nq-binary") if name in results]
    print(f"| {what} | time | " + "".join(f"{name} / it | " for name in ours) + f"{size} |")
    print("|---" * (3 + len(ours)) + "|")
    for name, runs in results.items():
        ratios = [statistics.median(mine[0] / its[0] for mine, its in zip(results[our], runs))
                  for our in ours]
        last = statistics.median(run[1] for run in runs)
        print(f"| {name} | {1000 * statistics.median(run[0] for run in runs):.4g} ms | " +
              "".join(f"{ratio:.2f} | " for ratio in ratios) + f"{last:.0f} MiB |")
    print(flush=True)


def columns(graphs, verb, args):
    return [name for name, verbs in graphs.formats().items()
            if verb in verbs and (not args.columns or name in args.columns)]


def bench_reads(graphs, args):
    # Lossless text is read as any other.
    names = [name for name in columns(graphs, "read", args) if name != "nq-lossless-text"]
    sizes = {ENDINGS[name]: os.path.getsize(graphs.file(ENDINGS[name])) for name in names}
    print("Files: " + ", ".join(
        f"{ending} {size / 1e6:.1f} MB" for ending, size in sizes.items()) + ".\n")
    results = rounds(args.rounds, names, graphs.read)
    table("read", results, "memory")
    if "nq-text" in results:
        seconds = statistics.median(run[0] for run in results["nq-text"])
        print(f"nq-text takes {seconds * 1e6 / (4 * graphs.nodes):.2f} microseconds an "
              "object.\n")


def bench_writes(graphs, args):
    checksum = graphs.measure("read", "by-hand", graphs.file("oml"))[2]

    def write(column):
        seconds, _, _ = graphs.write(column)
        size = os.path.getsize(f"{graphs.stem}.written") / (1 << 20)
        return seconds, size, graphs.read_back(column)[2]

    results = rounds(args.rounds, columns(graphs, "write", args), write)
    os.remove(f"{graphs.stem}.written")
    if next(iter(results.values()))[0][2] != checksum:
        raise Failure("what was written does not read back to the same graph")
    table("write", results, "file")


def bench(kind, nodes, args):
    graphs = Graphs(args.build, kind, nodes, args.clock)
    print(f"### {kind}, {nodes} nodes, {3 * nodes} edges\n")
    if args.only != "write":
        bench_reads(graphs, args)
    # A writer has ids of its own: addresses would be written as integers are.
    if args.only != "read" and kind != "addresses":
        bench_writes(graphs, args)


def main():
    parser = argparse.ArgumentParser(description="reads and writes files of graphs")
    parser.add_argument("--build", default=os.path.join(ROOT, "build/release"))
    parser.add_argument("--nodes", default="10000,100000", help="sizes, between commas")
    parser.add_argument("--kinds", default=",".join(KINDS), help="kinds, between commas")
    parser.add_argument("--columns", default="", help="only these, between commas")
    parser.add_argument("--only", choices=("read", "write"))
    parser.add_argument("--rounds", type=int, default=7)
    parser.add_argument("--clock", choices=("wall", "processor"), default="wall")
    args = parser.parse_args()
    args.columns = [name for name in args.columns.split(",") if name]
    try:
        for kind in args.kinds.split(","):
            for nodes in args.nodes.split(","):
                bench(kind, int(nodes), args)
    except Failure as failure:
        sys.exit(f"bench_graphs.py: {failure}")


if __name__ == "__main__":
    main()
