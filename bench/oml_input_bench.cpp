// Reads text that is unlike what programs write every day, beside ordinary text of
// the same size: one large string, one large binary value in small pieces, and ids
// that a weak hash cannot tell apart.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>

#include "nq/oml/grammar.h"
#include "nq/oml/oml_file.h"

namespace {

// Takes every value and makes no objects.
class Reader : public NQOMLFile {
 protected:
  NQObject* vCreateObject(NQOMLSyntaxObject*, NQOMLSyntaxObject*, NQObject*) override {
    return nullptr;
  }
  int vReadField(NQOMLSyntaxField*, NQOMLSyntaxObject*, NQObject*) override { return 1; }
};

const char* const kTypes[] = {"graph", "node", nullptr};
const char* const kSections[] = {nullptr};
NQOMLStaticVEStruct kEnumerators[] = {{nullptr, 0}};
// clang-format off
const char* const kDefinitions[] = {
    "O $toplevel$", "[", "T graph", "]",
    "O graph", "[", "F text S", "F data X", "T node", "]",
    "O node", "[", "F text S", "F weight R", "R next node", "]",
    nullptr};
// clang-format on

// Nodes until the text is `size` bytes long.
std::string ordinary(std::size_t size) {
  std::string text = "graph g {\n";
  for (int i = 0; text.size() + 2 < size; ++i) {
    const std::string number = std::to_string(i);
    text += "  node n" + number + " { text: \"Node number " + number + "\"  weight: 0." +
            number + "  next: n" + std::to_string(i / 2) + " }\n";
  }
  return text + "}\n";
}

std::string oneString(std::size_t length) {
  std::string value;
  while (value.size() < length) value += "a long text ";
  value.resize(length);
  return "graph g { text: \"" + value + "\" }\n";
}

std::string binaryInPieces(std::size_t length) {
  constexpr std::size_t kPiece = 32;
  std::string text = "graph g { data:\n";
  for (std::size_t at = 0; at < length; at += kPiece) {
    text += "  0x";
    for (std::size_t byte = at; byte < at + kPiece; ++byte) {
      text += "0123456789abcdef"[byte % 16];
      text += "0123456789ABCDEF"[byte / 16 % 16];
    }
    text += '\n';
  }
  return text + "}\n";
}

// Nodes with all ids of 17 blocks, each of them one of two.
std::string ids(const char* first, const char* second) {
  constexpr int kBlocks = 17;
  std::string text = "graph g {\n";
  for (unsigned i = 0; i < 1U << kBlocks; ++i) {
    text += "  node ";
    for (int block = 0; block < kBlocks; ++block)
      text += (i >> block & 1) != 0 ? second : first;
    text += "\n";
  }
  return text + "}\n";
}

void read(benchmark::State& state, const std::string& text) {
  const char* const name = NQ_BENCH_DATA "input.oml";
  std::ofstream(name, std::ios::binary) << text;
  NQOMLStatic grammar(kTypes, kSections, kEnumerators, kDefinitions, 1000, 32, 16, 16, 32,
                      1000);
  for (auto _ : state) {
    Reader reader;
    if (reader.readOMLFile(name, &grammar, nullptr, 1, 0, 0, 0) != NQ_FILE_OK) {
      state.SkipWithError(reader.pErrorStringBuffer());
      break;
    }
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
  std::remove(name);
}

const bool kRegistered = [] {
  const auto add = [](const char* name, const std::string& text) {
    benchmark::RegisterBenchmark(name, read, text)->Unit(benchmark::kMillisecond);
  };
  const std::string string = oneString(std::size_t{1} << 20);
  const std::string binary = binaryInPieces(std::size_t{4} << 20);
  add("one_string/nq/1MiB", string);
  add("one_string/ordinary/1MiB", ordinary(string.size()));
  add("binary_in_pieces/nq/4MiB", binary);
  add("binary_in_pieces/ordinary/4MiB", ordinary(binary.size()));
  // "Aa" and "BB" are one to any hash that multiplies by 31.
  add("ids_of_one_hash/nq/131072", ids("Aa", "BB"));
  add("ids_of_one_hash/ordinary/131072", ids("Aa", "Bb"));
  return true;
}();

}  // namespace
