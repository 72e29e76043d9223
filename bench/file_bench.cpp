// Reading and writing text files, beside the standard streams.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "nq/file/text_file.h"

namespace {

constexpr std::size_t kLineLength = 64;

// A fresh file name, and the end of the file behind it.
class ScratchFile {
 public:
  ScratchFile()
      : path_(std::filesystem::temp_directory_path() /
              ("nq_bench" + std::to_string(std::random_device()()))) {}
  ~ScratchFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  std::string name() const { return path_.string(); }

 private:
  std::filesystem::path path_;
};

std::string randomLine(std::mt19937& random) {
  std::string line(kLineLength, ' ');
  for (char& c : line) c = static_cast<char>('a' + random() % 26);
  return line;
}

// A file of that many lines, written once and kept to the program's end.
const std::string& inputOf(std::int64_t lines) {
  static ScratchFile files[8];
  static std::int64_t sizes[8] = {};
  static std::string names[8];
  std::size_t slot = 0;
  while (sizes[slot] != lines && sizes[slot] != 0) ++slot;
  if (sizes[slot] == 0) {
    std::mt19937 random(1);
    names[slot] = files[slot].name();
    sizes[slot] = lines;
    std::ofstream stream(names[slot], std::ios::binary);
    for (std::int64_t i = 0; i < lines; ++i) stream << randomLine(random) << '\n';
  }
  return names[slot];
}

void countLines(benchmark::State& state, std::int64_t lines) {
  if (lines != state.range(0)) state.SkipWithError("lines are missing");
  state.SetItemsProcessed(state.iterations() * lines);
}

void readLineNq(benchmark::State& state) {
  const std::string& name = inputOf(state.range(0));
  NQStringHandle line;
  std::int64_t lines = 0;
  for ([[maybe_unused]] auto _ : state) {
    NQTextFile file;
    lines = 0;
    if (file.open(name.c_str(), NQ_READ) != NQ_FILE_OK) break;
    while (file.readLine(line) == NQ_FILE_OK) {
      benchmark::DoNotOptimize(line.pString());
      ++lines;
    }
  }
  countLines(state, lines);
}

void readStringNq(benchmark::State& state) {
  const std::string& name = inputOf(state.range(0));
  NQStringHandle line;
  std::int64_t lines = 0;
  for ([[maybe_unused]] auto _ : state) {
    NQFile file;
    lines = 0;
    if (file.open(name.c_str(), NQ_READ) != NQ_FILE_OK) break;
    while (file.readString(line) == NQ_FILE_OK) {
      benchmark::DoNotOptimize(line.pString());
      ++lines;
    }
  }
  countLines(state, lines);
}

void readLineStd(benchmark::State& state) {
  const std::string& name = inputOf(state.range(0));
  std::string line;
  std::int64_t lines = 0;
  for ([[maybe_unused]] auto _ : state) {
    std::ifstream file(name, std::ios::binary);
    lines = 0;
    while (std::getline(file, line)) {
      benchmark::DoNotOptimize(line.data());
      ++lines;
    }
  }
  countLines(state, lines);
}

void writeLineNq(benchmark::State& state) {
  const ScratchFile scratch;
  std::mt19937 random(1);
  const std::string line = randomLine(random);
  std::int64_t lines = 0;
  for ([[maybe_unused]] auto _ : state) {
    NQTextFile file;
    lines = 0;
    if (file.open(scratch.name().c_str(), NQ_WRITE) != NQ_FILE_OK) break;
    while (lines < state.range(0) && file.writeLine(line.c_str()) == NQ_FILE_OK) ++lines;
    if (file.close() != NQ_FILE_OK) lines = 0;
  }
  countLines(state, lines);
}

void writeLineStd(benchmark::State& state) {
  const ScratchFile scratch;
  std::mt19937 random(1);
  const std::string line = randomLine(random);
  std::int64_t lines = 0;
  for ([[maybe_unused]] auto _ : state) {
    std::ofstream file(scratch.name(), std::ios::binary);
    lines = 0;
    while (lines < state.range(0) && file << line.c_str() << "\r\n") ++lines;
    file.close();
  }
  countLines(state, lines);
}

// 1,600,000 lines are 104 MB.
void sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(1000)->Arg(100000)->Arg(1600000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(readLineNq)->Name("read_line/nq")->Apply(sizes);
BENCHMARK(readStringNq)->Name("read_string/nq")->Apply(sizes);
BENCHMARK(readLineStd)->Name("read_line/std")->Apply(sizes);
BENCHMARK(writeLineNq)->Name("write_line/nq")->Apply(sizes);
BENCHMARK(writeLineStd)->Name("write_line/std")->Apply(sizes);

}  // namespace
