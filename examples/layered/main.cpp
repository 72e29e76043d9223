// Reads a graph, lays it out in layers, checks the result, writes it back with its
// coordinates and draws it.
//
//   nq_layered karate.oml --svg karate.svg --oml laid_out.oml

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <memory>
#include <string>

#include "graph_file.h"
#include "layout.h"
#include "overlaps.h"
#include "svg.h"

namespace {

class Stopwatch {
 public:
  // Seconds since the last call.
  double lap() {
    const auto now = std::chrono::steady_clock::now();
    const std::chrono::duration<double> passed = now - last_;
    last_ = now;
    return passed.count();
  }

 private:
  std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
};

std::unique_ptr<GraphFile> newFile(GraphFactory& factory) {
  return std::unique_ptr<GraphFile>(
      static_cast<GraphFile*>(factory.nqNewGraphFile(nullptr)));
}

// The graph in a file, or null. Tells what is wrong with it, and what is left out. (A
// file keeps the syntax tree of what it read last; here it goes before the layout
// begins.)
std::unique_ptr<Graph> read(const std::string& name, GraphFactory& factory,
                            GraphGrammar& grammar, bool binary) {
  const std::unique_ptr<GraphFile> file = newFile(factory);
  std::unique_ptr<Graph> graph = file->read(name.c_str(), grammar, binary);
  std::fputs(file->pErrorStringBuffer(), stderr);
  std::fputs(file->pWarningStringBuffer(), stderr);
  if (graph == nullptr || file->leftOut().empty()) return graph;
  std::fprintf(stderr, "%s: fields neither drawn nor written:", name.c_str());
  for (const auto& [field, count] : file->leftOut()) {
    std::fprintf(stderr, " %s (%d)", field.c_str(), count);
  }
  std::fputc('\n', stderr);
  return graph;
}

bool save(const std::string& name, const std::string& text) {
  NQFile file;
  if (file.open(name.c_str(), NQ_WRITE_BINARY) != NQ_FILE_OK) return false;
  constexpr std::size_t kPiece = 1 << 20;  // bytes, of as many as there may be
  NQFileCodeEnum written = NQ_FILE_OK;
  for (std::size_t at = 0; at < text.size() && written == NQ_FILE_OK; at += kPiece) {
    const std::size_t size = std::min(kPiece, text.size() - at);
    written = file.writeBinary(text.data() + at, static_cast<int>(size));
  }
  return file.close() == NQ_FILE_OK && written == NQ_FILE_OK;
}

// Tells what is wrong with a file; 2, as the exit status.
int fail(const char* what, const std::string& name) {
  std::fprintf(stderr, "%s: %s\n", name.c_str(), what);
  return 2;
}

int run(int argc, char** argv) {
  std::string input, oml, omlb, svg;
  bool binary = false, hideImplied = false, quiet = false;
  CLI::App app("Lays out a graph in layers.");
  app.allow_windows_style_options(false);  // "/" begins a path, not an option
  app.add_option("graph", input, "the graph, an OML file")->required();
  app.add_flag("--binary", binary, "the graph is in the binary encoding");
  app.add_flag("--hide-implied", hideImplied,
               "leave out edges where a longer way leads to the same node");
  app.add_option("--oml", oml, "write the graph with its coordinates as text");
  app.add_option("--omlb", omlb, "the same in the binary encoding");
  app.add_option("--svg", svg, "draw the graph");
  app.add_flag("--quiet", quiet, "say nothing when all is well");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : 2;  // 0 after --help
  }

  GraphFactory factory;
  const std::unique_ptr<NQOMLStatic> made(factory.nqNewGrammar());
  auto& grammar = static_cast<GraphGrammar&>(*made);

  Stopwatch watch;
  const std::unique_ptr<Graph> graph = read(input, factory, grammar, binary);
  if (graph == nullptr) return 1;
  const double reading = watch.lap();

  LayeredLayout layout(*graph, hideImplied);
  layout.run();
  if (layout.result().tooLarge) return fail("is too large for coordinates", input);
  const double computing = watch.lap();

  NQDList nodes;
  NQDList edges;
  graph->collectNodes(nodes);
  graph->collectEdges(edges);
  OverlapSweep sweep(nodes);
  sweep.run();
  for (const auto& [a, b] : sweep.pairs()) {
    std::fprintf(stderr, "%s: overlaps %s\n", a->title.c_str(), b->title.c_str());
  }
  if (!sweep.pairs().empty()) return 3;
  const double checking = watch.lap();

  const std::unique_ptr<GraphFile> file = newFile(factory);
  if (!oml.empty() && !file->write(oml.c_str(), grammar, *graph, false)) {
    return fail("cannot be written", oml);
  }
  if (!omlb.empty() && !file->write(omlb.c_str(), grammar, *graph, true)) {
    return fail("cannot be written", omlb);
  }
  const double writing = watch.lap();
  if (!svg.empty() && !save(svg, svgOf(*graph))) return fail("cannot be written", svg);
  const double drawing = watch.lap();

  if (quiet) return 0;
  const LayeredLayout::Result& r = layout.result();
  std::printf("%s: %d nodes on %d layers, %d edges", input.c_str(),
              static_cast<int>(nodes.length()), r.layers,
              static_cast<int>(edges.length()));
  if (r.hidden > 0) std::printf(" (%d of them implied and not drawn)", r.hidden);
  if (r.reversed > 0) std::printf(", %d against the flow", r.reversed);
  if (r.far > 0) std::printf(", %d too long to be led around nodes", r.far);
  std::printf(", %zu bends, %lld crossings; no nodes overlap\n", r.bends, r.crossings);
  std::printf(
      "seconds: reading %.3f, layout %.3f, checking %.3f, writing %.3f, "
      "drawing %.3f\n",
      reading, computing, checking, writing, drawing);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {  // no memory left, for one
    std::fprintf(stderr, "nq_layered: %s\n", error.what());
    return 2;
  }
}
