// Reads graphs into application objects, references resolved: OML beside XML
// and JSON, each checked against its grammar or schema.

#include "graph_readers.h"

#include <benchmark/benchmark.h>

#include <filesystem>

namespace {

std::string graphFile(std::int64_t nodes, const char* ending) {
  return NQ_BENCH_DATA "graph_" + std::to_string(nodes) + "." + ending;
}

using Reader = std::unique_ptr<Graph> (*)(const std::string& path);

std::unique_ptr<Graph> readText(const std::string& path) {
  return readGraphOML(path, false);
}

void read(benchmark::State& state, Reader reader, const char* ending) {
  const std::string path = graphFile(state.range(0), ending);
  double sum = 0;
  for (auto _ : state) {
    auto graph = reader(path);
    if (graph == nullptr) {
      state.SkipWithError(("cannot read " + path).c_str());
      return;
    }
    state.PauseTiming();
    if (static_cast<std::int64_t>(graph->nodes.size()) != state.range(0) ||
        static_cast<std::int64_t>(graph->edges.size()) != 3 * state.range(0)) {
      state.SkipWithError("not the graph that was written");
      return;
    }
    sum = graph->checksum();
    graph.reset();
    state.ResumeTiming();
  }
  state.counters["checksum"] = sum;
}

void sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
  // 700 MB, which nobody has to make for a build.
  if (std::filesystem::exists(graphFile(1000000, "oml"))) bench->Arg(1000000);
}

BENCHMARK_CAPTURE(read, nq, readText, "oml")->Apply(sizes);
#if defined(NQ_BENCH_LIBXML2)
BENCHMARK_CAPTURE(read, libxml2_sax_xsd, readGraphXML, "xml")->Apply(sizes);
#endif
#if defined(NQ_BENCH_RAPIDJSON)
BENCHMARK_CAPTURE(read, rapidjson_dom_schema, readGraphJSON, "json")->Apply(sizes);
#endif

}  // namespace
