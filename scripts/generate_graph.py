#!/usr/bin/env python3
"""Writes a graph of any size: the large input of the benchmarks.

    scripts/generate_graph.py --nodes 100000 --edges 300000 > graph.oml

There are three kinds of graphs:

    reals      coordinates and weights are reals; ids are dense: n0 n1 ... e0 e1 ...
    integers   coordinates are integers, nodes and edges have titles that all differ,
               edges have lists of bends, and ids are numbers eight apart
    addresses  the same with ids like addresses: multiples of 16 in no order, as the
               library writes them by default

The same seed gives the same graph in each format. The OML text of reals follows
examples/data/graph.grammar; the schemas of the other formats, and the grammar of all
kinds, are in bench/graphs. 100,000 nodes and 300,000 edges make about 65 MB of OML.
"""

import argparse
import random
import sys

SHAPES = ("box", "rounded", "ellipse", "diamond")
STROKES = ("solid", "dashed", "dotted")
ROUTINGS = ("straight", "polyline", "curved", "orthogonal")
HEADS = ("none", "arrow", "dot")
WORDS = ("harbour", "mill", "station", "quarry", "north gate", "old market", "bridge",
         "lighthouse", "orchard", "ferry landing", "waterworks", "crossing",
         "botanical garden", "depot", "observatory", "town hall")

# For each format what stands around the objects: the opening, what stands between two,
# what stands between nodes and edges, and the closing.
FRAMES = {
    "oml": (
        'graph {graph_id}\n{{\n  title: "{nodes} nodes, {edges} edges"\n'
        "  directed: true\n",
        "",
        "",
        "}\n"),
    "json": (
        '{{"title":"{nodes} nodes, {edges} edges","directed":true,\n"nodes":[\n',
        ",\n",
        '],\n"edges":[\n',
        "]}\n"),
    "xml": (
        '<?xml version="1.0" encoding="UTF-8"?>\n'
        '<graph title="{nodes} nodes, {edges} edges" directed="true">\n',
        "",
        "",
        "</graph>\n"),
}

# A node, an edge, and what stands between two bends.
REALS = {
    "oml": (
        '  node n{id}\n  {{\n    title: "{title}"\n    group: {group}\n'
        "    importance: {importance}\n"
        "    layout {{ x: {x}  y: {y}  width: {width}  height: {height} }}\n"
        '    drawing {{ shape: {shape}  fill: "#{fill:06x}"'
        "  line {{ stroke: {stroke}  thickness: {thickness} }} }}\n  }}\n",
        "  edge e{id} {{ from: n{a}  to: n{b}  weight: {weight}"
        "  layout {{ routing: {routing}  bend {{ {bends} }} }}"
        "  drawing {{ head: {head} }} }}\n",
        " "),
    "json": (
        '{{"id":{id},"title":"{title}","group":{group},"importance":{importance},'
        '"layout":{{"x":{x},"y":{y},"width":{width},"height":{height}}},'
        '"drawing":{{"shape":"{shape}","fill":"#{fill:06x}",'
        '"line":{{"stroke":"{stroke}","thickness":{thickness}}}}}}}',
        '{{"id":{id},"from":{a},"to":{b},"weight":{weight},'
        '"layout":{{"routing":"{routing}","bend":[{bends}]}},'
        '"drawing":{{"head":"{head}"}}}}',
        ","),
    "xml": (
        '<node id="{id}" title="{title}" group="{group}" importance="{importance}">'
        '<layout x="{x}" y="{y}" width="{width}" height="{height}"/>'
        '<drawing shape="{shape}" fill="#{fill:06x}">'
        '<line stroke="{stroke}" thickness="{thickness}"/></drawing></node>\n',
        '<edge id="{id}" from="{a}" to="{b}" weight="{weight}">'
        '<layout routing="{routing}" bend="{bends}"/>'
        '<drawing head="{head}"/></edge>\n',
        " "),
}
INTEGERS = {
    "oml": (
        '  node {id}\n  {{\n    title: "{title}"\n    group: {group}\n'
        "    layout {{ x: {x}  y: {y}  width: {width}  height: {height} }}\n"
        "    drawing {{ shape: {shape}  line {{ thickness: {thickness} }} }}\n  }}\n",
        '  edge {id}\n  {{\n    from: {a}\n    to: {b}\n    title: "{title}"\n'
        "    weight: {weight}\n    layout {{ bend {{ {bends} }} }}\n  }}\n",
        " "),
    "json": (
        '{{"id":{id},"title":"{title}","group":{group},'
        '"layout":{{"x":{x},"y":{y},"width":{width},"height":{height}}},'
        '"drawing":{{"shape":"{shape}","line":{{"thickness":{thickness}}}}}}}',
        '{{"id":{id},"from":{a},"to":{b},"title":"{title}","weight":{weight},'
        '"layout":{{"bend":[{bends}]}}}}',
        ","),
    "xml": (
        '<node id="{id}" title="{title}" group="{group}">'
        '<layout x="{x}" y="{y}" width="{width}" height="{height}"/>'
        '<drawing shape="{shape}"><line thickness="{thickness}"/></drawing></node>\n',
        '<edge id="{id}" from="{a}" to="{b}" title="{title}" weight="{weight}">'
        '<layout bend="{bends}"/></edge>\n',
        " "),
}


class Reals:
    """Dense ids, counted apart for nodes and edges; four bends an edge."""

    formats = REALS
    graph_id = "generated"

    def __init__(self, args, rng):
        self.args, self.rng = args, rng

    def nodes(self, record):
        for i in range(self.args.nodes):
            r = self.rng.getrandbits(64)
            yield record(
                id=i, title=f"Node number {i}", group=r % 50,
                importance=(r >> 6) % 10000 / 10000,
                x=(r >> 20) % 1000000 / 100, y=(r >> 30) % 1000000 / 100,
                width=40 + (r >> 12) % 60, height=20 + (r >> 13) % 30,
                shape=SHAPES[(r >> 40) % 4], fill=(r >> 38) & 0xffffff,
                stroke=STROKES[(r >> 50) % 3], thickness=(1 + (r >> 52) % 8) / 4)

    def edges(self, record, between):
        count = self.args.nodes
        for i in range(self.args.edges):
            r = self.rng.getrandbits(128)
            bends = [(r >> shift) % 1000000 / 100 for shift in (60, 70, 80, 90)]
            yield record(
                id=i, a=r % count, b=(r >> 24) % count, weight=(r >> 48) % 1000 / 1000,
                routing=ROUTINGS[(r >> 58) % 4], bends=between.join(map(str, bends)),
                head=HEADS[(r >> 100) % 3])


class Integers:
    """Titles of their own, none to six bends an edge."""

    formats = INTEGERS

    def __init__(self, args, rng):
        self.args, self.rng = args, rng
        self.ids = self.make_ids(1 + args.nodes + args.edges)
        self.graph_id = self.ids[0]

    def make_ids(self, count):
        return range(8, 8 + 8 * count, 8)

    def nodes(self, record):
        for i in range(self.args.nodes):
            r = self.rng.getrandbits(128)
            yield record(
                id=self.ids[1 + i], title=f"{WORDS[r & 15]}, {WORDS[r >> 4 & 15]} {i}",
                group=(r >> 8) % 50, x=(r >> 14) % 100000, y=(r >> 34) % 100000,
                width=40 + (r >> 54) % 160, height=20 + (r >> 64) % 80,
                shape=SHAPES[(r >> 74) % 4], thickness=1 + (r >> 78) % 8)

    def edges(self, record, between):
        first = 1 + self.args.nodes
        for i in range(self.args.edges):
            r = self.rng.getrandbits(256)
            bends = [str((r >> 64 + 20 * j) % 100000) for j in range((r >> 60) % 7)]
            yield record(
                id=self.ids[first + i], a=self.ids[1 + r % self.args.nodes],
                b=self.ids[1 + (r >> 24) % self.args.nodes],
                title=f"{WORDS[r >> 48 & 15]} to {WORDS[r >> 52 & 15]} {i}",
                weight=(r >> 200) % 1000 / 1000, bends=between.join(bends))


class Addresses(Integers):
    """Ids as of objects that lie anywhere in one heap, 64 to 192 bytes apart."""

    def make_ids(self, count):
        ids = []
        address = 0x5a100010
        for _ in range(count):
            ids.append(address)
            address += 16 * self.rng.randint(4, 12)
        self.rng.shuffle(ids)
        return ids


KINDS = {"reals": Reals, "integers": Integers, "addresses": Addresses}


def write_records(out, records, between):
    """Writes the records in large pieces, with `between` between any two."""
    gathered = []
    lead = ""
    for record in records:
        gathered.append(record)
        if len(gathered) == 4096:
            out.write(lead + between.join(gathered))
            gathered.clear()
            lead = between
    if gathered:
        out.write(lead + between.join(gathered))


def main():
    parser = argparse.ArgumentParser(description="writes a random graph")
    parser.add_argument("--nodes", type=int, default=100000)
    parser.add_argument("--edges", type=int, default=300000)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--kind", choices=KINDS, default="reals")
    parser.add_argument("--format", choices=sorted(FRAMES), default="oml")
    parser.add_argument("--output", help="a file; standard output when not given")
    args = parser.parse_args()
    if args.nodes < 0 or args.edges < 0 or (args.edges and not args.nodes):
        parser.error("a graph with edges needs nodes, and counts are not negative")

    graph = KINDS[args.kind](args, random.Random(args.seed))
    opening, between, middle, closing = FRAMES[args.format]
    node, edge, between_bends = graph.formats[args.format]
    out = open(args.output, "w", encoding="ascii", newline="\n") if args.output else sys.stdout
    with out:
        out.write(opening.format(graph_id=graph.graph_id, nodes=args.nodes,
                                 edges=args.edges))
        write_records(out, graph.nodes(node.format), between)
        out.write(middle)
        write_records(out, graph.edges(edge.format, between_bends), between)
        out.write(closing)


if __name__ == "__main__":
    main()
