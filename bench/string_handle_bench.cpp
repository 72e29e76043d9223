// Building a text character by character and piece by piece, from an empty
// handle to the whole length.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "nq/core/string_handle.h"

namespace {

void setBytes(benchmark::State& state) {
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

void appendHandle(benchmark::State& state) {
  for (auto _ : state) {
    NQStringHandle text;
    for (int64_t i = 0; i < state.range(0); ++i) {
      text.appendChar(static_cast<char>('a' + (i & 15)));
    }
    benchmark::DoNotOptimize(text.pString());
  }
  setBytes(state);
}

void appendString(benchmark::State& state) {
  for (auto _ : state) {
    std::string text;
    for (int64_t i = 0; i < state.range(0); ++i) {
      text.push_back(static_cast<char>('a' + (i & 15)));
    }
    benchmark::DoNotOptimize(text.c_str());
  }
  setBytes(state);
}

constexpr char kPiece[] = "a piece of text ";
constexpr int64_t kPieceLength = sizeof kPiece - 1;

void piecesHandle(benchmark::State& state) {
  for (auto _ : state) {
    NQStringHandle text;
    for (int64_t i = 0; i < state.range(0); i += kPieceLength) text.appendString(kPiece);
    benchmark::DoNotOptimize(text.pString());
  }
  setBytes(state);
}

void piecesString(benchmark::State& state) {
  for (auto _ : state) {
    std::string text;
    const char* piece = kPiece;
    benchmark::DoNotOptimize(piece);  // its length is not known beforehand
    for (int64_t i = 0; i < state.range(0); i += kPieceLength) text.append(piece);
    benchmark::DoNotOptimize(text.c_str());
  }
  setBytes(state);
}

void lengths(benchmark::internal::Benchmark* benchmark) {
  benchmark->Arg(1000)->Arg(100000)->Arg(1000000);
  benchmark->RangeMultiplier(16)->Range(1 << 10, 1 << 26);
}

// The allocator keeps more memory once it has seen a large block freed. Let it
// see one first, so that no contestant gains by running after another.
[[maybe_unused]] const bool kAllocatorSettled = [] {
  auto block = std::make_unique<char[]>((32 << 20) - (64 << 10));
  benchmark::DoNotOptimize(block.get());
  return true;
}();

BENCHMARK(appendHandle)->Name("append/nq")->Apply(lengths);
BENCHMARK(appendString)->Name("append/std")->Apply(lengths);
BENCHMARK(piecesHandle)->Name("pieces/nq")->Apply(lengths);
BENCHMARK(piecesString)->Name("pieces/std")->Apply(lengths);

}  // namespace
