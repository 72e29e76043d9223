// svg.h -- a graph as a picture.

#ifndef LAYERED_SVG_H
#define LAYERED_SVG_H

#include <string>

#include "graph.h"

// The picture of a graph that has been laid out, as the text of an SVG file. Nodes
// without a colour get one by their group, and a legend tells which.
std::string svgOf(const Graph& graph);

#endif  // LAYERED_SVG_H
