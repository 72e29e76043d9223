// One read or one write of a graph, in a process of its own, with its time and its
// memory:
//
//   PROGRAM read FORMAT FILE
//   PROGRAM write FORMAT SOURCE TARGET      SOURCE is OML text, read by hand
//   PROGRAM convert FORMAT SOURCE TARGET    the same with the ids of the source
//   PROGRAM formats
//
// The clock runs from the opening of the file until everything is closed and freed
// but the graph itself. Printed are the seconds on the wall and of the processor, the
// most memory of the process in KiB, and the checksum of the graph.

#include "graph.h"

#include <sys/resource.h>
#include <cinttypes>
#include <cstdio>
#include <ctime>

namespace {

const Format* const kFormats[] = {
    &kNQText,       &kNQLossless,   &kNQBinary, &kByHand,
#if defined(NQ_BENCH_RAPIDJSON)
    &kRapidJSONDOM, &kRapidJSONSAX,
#endif
#if defined(NQ_BENCH_LIBXML2)
    &kLibXML2,
#endif
#if defined(NQ_BENCH_PROTOBUF)
    &kProtobuf,
#endif
};

double now(clockid_t clock) {
  struct timespec time = {};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

struct Times {
  double wall = now(CLOCK_MONOTONIC);
  double processor = now(CLOCK_PROCESS_CPUTIME_ID);
};

int report(const Times& start, const Times& end, const Graph& graph) {
  struct rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  std::printf("%.6f %.6f %ld %016" PRIx64 "\n", end.wall - start.wall,
              end.processor - start.processor, usage.ru_maxrss, graph.checksum());
  return 0;
}

int fail(const char* what, const std::string& path) {
  std::fprintf(stderr, "cannot %s %s\n", what, path.c_str());
  return 1;
}

int read(const Format& format, const std::string& path) {
  if (format.read == nullptr) return fail("read such a file:", path);
  format.prepare();
  const Times start;
  const auto graph = format.read(path);
  const Times end;
  return graph == nullptr ? fail("read", path) : report(start, end, *graph);
}

int write(const Format& format, const std::string& source, const std::string& target,
          bool keepIDs) {
  if (format.write == nullptr) return fail("write such a file:", target);
  const auto graph = kByHand.read(source);
  if (graph == nullptr) return fail("read", source);
  // In graphs of reals nodes and edges are counted apart.
  if (kReals) graph->numberObjects();
  graph->keepsIDs = keepIDs;
  format.prepare();
  const Times start;
  const bool written = format.write(*graph, target);
  const Times end;
  return written ? report(start, end, *graph) : fail("write", target);
}

const Format* find(const std::string& name) {
  for (const Format* const format : kFormats) {
    if (name == format->name) return format;
  }
  return nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string command = argc > 1 ? argv[1] : "";
  if (command == "formats") {
    for (const Format* const format : kFormats) {
      std::printf("%s%s%s\n", format->name, format->read == nullptr ? "" : " read",
                  format->write == nullptr ? "" : " write");
    }
    return 0;
  }
  const Format* const format = argc > 2 ? find(argv[2]) : nullptr;
  if (format != nullptr && command == "read" && argc == 4) return read(*format, argv[3]);
  if (format != nullptr && (command == "write" || command == "convert") && argc == 5)
    return write(*format, argv[3], argv[4], command == "convert");
  std::fprintf(
      stderr,
      "usage: %s read FORMAT FILE | write|convert FORMAT SOURCE TARGET | formats\n",
      argv[0]);
  return 2;
}
