// The peak memory of one read, which needs a process of its own:
//
//   nq_read_peak oml|xml|json FILE

#include "graph_readers.h"

#include <sys/resource.h>
#include <chrono>
#include <cstdio>
#include <string>

int main(int argc, char** argv) {
  const std::string format = argc == 3 ? argv[1] : "";
  std::unique_ptr<Graph> (*read)(const std::string&) = nullptr;
  if (format == "oml") {
    read = [](const std::string& path) { return readGraphOML(path, false); };
  }
#if defined(NQ_BENCH_LIBXML2)
  if (format == "xml") read = readGraphXML;
#endif
#if defined(NQ_BENCH_RAPIDJSON)
  if (format == "json") read = readGraphJSON;
#endif
  if (read == nullptr) {
    std::fprintf(stderr, "usage: nq_read_peak oml|xml|json FILE\n");
    return 2;
  }

  const auto start = std::chrono::steady_clock::now();
  const auto graph = read(argv[2]);
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  if (graph == nullptr) {
    std::fprintf(stderr, "nq_read_peak: %s: cannot be read\n", argv[2]);
    return 1;
  }
  struct rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  std::printf("%s: %zu nodes, %zu edges, %.3f s, peak %.1f MiB\n", argv[2],
              graph->nodes.size(), graph->edges.size(), seconds.count(),
              static_cast<double>(usage.ru_maxrss) / 1024);
  return 0;
}
