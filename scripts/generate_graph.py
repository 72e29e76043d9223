#!/usr/bin/env python3
"""Writes a graph of any size: the large input of the benchmarks.

    scripts/generate_graph.py --nodes 100000 --edges 300000 > graph.oml

The same seed gives the same graph in each of the three formats. The OML text
follows examples/data/graph.grammar; the schemas of the other two stand in
bench/data. 100,000 nodes and 300,000 edges make about 65 MB of OML.
"""

import argparse
import random
import sys

SHAPES = ("box", "rounded", "ellipse", "diamond")
STROKES = ("solid", "dashed", "dotted")
ROUTINGS = ("straight", "polyline", "curved", "orthogonal")
HEADS = ("none", "arrow", "dot")

# The opening, a node, an edge, what stands between objects, and the closing.
FORMATS = {
    "oml": (
        'graph generated\n{{\n  title: "{nodes} nodes, {edges} edges"\n'
        "  directed: true\n",
        '  node n{i}\n  {{\n    title: "Node number {i}"\n    group: {group}\n'
        "    importance: {importance}\n"
        "    layout {{ x: {x}  y: {y}  width: {width}  height: {height} }}\n"
        '    drawing {{ shape: {shape}  fill: "#{fill:06x}"'
        "  line {{ stroke: {stroke}  thickness: {thickness} }} }}\n  }}\n",
        "  edge e{i} {{ from: n{a}  to: n{b}  weight: {weight}"
        "  layout {{ routing: {routing}  bend {{ {x} {y} {u} {v} }} }}"
        "  drawing {{ head: {head} }} }}\n",
        "",
        "",
        "}\n"),
    "json": (
        '{{"title":"{nodes} nodes, {edges} edges","directed":true,\n"nodes":[\n',
        '{{"id":"n{i}","title":"Node number {i}","group":{group},'
        '"importance":{importance},\n'
        ' "layout":{{"x":{x},"y":{y},"width":{width},"height":{height}}},\n'
        ' "drawing":{{"shape":"{shape}","fill":"#{fill:06x}",'
        '"line":{{"stroke":"{stroke}","thickness":{thickness}}}}}}}',
        '{{"id":"e{i}","from":"n{a}","to":"n{b}","weight":{weight},'
        '"layout":{{"routing":"{routing}","bend":[{x},{y},{u},{v}]}},'
        '"drawing":{{"head":"{head}"}}}}',
        ",\n",
        '],\n"edges":[\n',
        "]}\n"),
    "xml": (
        '<?xml version="1.0" encoding="UTF-8"?>\n'
        '<graph title="{nodes} nodes, {edges} edges" directed="true">\n',
        '  <node id="n{i}" title="Node number {i}" group="{group}"'
        ' importance="{importance}">\n'
        '    <layout x="{x}" y="{y}" width="{width}" height="{height}"/>\n'
        '    <drawing shape="{shape}" fill="#{fill:06x}">'
        '<line stroke="{stroke}" thickness="{thickness}"/></drawing>\n  </node>\n',
        '  <edge id="e{i}" from="n{a}" to="n{b}" weight="{weight}">'
        '<layout routing="{routing}" bend="{x} {y} {u} {v}"/>'
        '<drawing head="{head}"/></edge>\n',
        "",
        "",
        "</graph>\n"),
}


def nodes(count, rng, record):
    for i in range(count):
        r = rng.getrandbits(64)
        yield record(i=i, group=r % 50, importance=(r >> 6) % 10000 / 10000,
                     x=(r >> 20) % 1000000 / 100, y=(r >> 30) % 1000000 / 100,
                     width=40 + (r >> 12) % 60, height=20 + (r >> 13) % 30,
                     shape=SHAPES[(r >> 40) % 4], fill=(r >> 38) & 0xffffff,
                     stroke=STROKES[(r >> 50) % 3], thickness=(1 + (r >> 52) % 8) / 4)


def edges(count, node_count, rng, record):
    for i in range(count):
        r = rng.getrandbits(128)
        yield record(i=i, a=r % node_count, b=(r >> 24) % node_count,
                     weight=(r >> 48) % 1000 / 1000, routing=ROUTINGS[(r >> 58) % 4],
                     x=(r >> 60) % 1000000 / 100, y=(r >> 70) % 1000000 / 100,
                     u=(r >> 80) % 1000000 / 100, v=(r >> 90) % 1000000 / 100,
                     head=HEADS[(r >> 100) % 3])


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
    parser.add_argument("--format", choices=sorted(FORMATS), default="oml")
    parser.add_argument("--output", help="a file; standard output when not given")
    args = parser.parse_args()
    if args.nodes < 0 or args.edges < 0 or (args.edges and not args.nodes):
        parser.error("a graph with edges needs nodes, and counts are not negative")

    opening, node, edge, between, middle, closing = FORMATS[args.format]
    rng = random.Random(args.seed)
    out = open(args.output, "w", encoding="ascii", newline="\n") if args.output else sys.stdout
    with out:
        out.write(opening.format(nodes=args.nodes, edges=args.edges))
        write_records(out, nodes(args.nodes, rng, node.format), between)
        out.write(middle)
        write_records(out, edges(args.edges, args.nodes, rng, edge.format), between)
        out.write(closing)


if __name__ == "__main__":
    main()
