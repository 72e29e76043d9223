// reading_fuzz.h -- one input of a fuzzer, read as a file.

#ifndef NQ_TESTS_FUZZ_READING_FUZZ_H
#define NQ_TESTS_FUZZ_READING_FUZZ_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "tests/support/fake_system.h"
#include "tests/support/oml_reading.h"

// Reads `data`, which may include itself under the name "g", as a whole and in short
// pieces, of which the same must come, and then a good file with the same reader.
inline int readInput(const std::uint8_t* data, std::size_t size, bool binary) {
  static EverythingGrammar grammar;
  FakeSystem system;
  system.files["f"].assign(reinterpret_cast<const char*>(data), size);
  system.files["g"] = system.files["f"];
  system.files["good"] = "graph 1 { count 1 }";
  TestReader reader;
  reader.keepTree = false;
  const NQFileCodeEnum result = reader.read("f", grammar, binary);
  const bool consistent = (result == NQ_FILE_OK) == (reader.numberOfErrors() == 0);
  if (!consistent || system.openFiles() != 0) std::abort();
  const std::string errors = reader.errors();
  system.largestTransfer = 1 + size % 3;
  if (reader.read("f", grammar, binary) != result || reader.errors() != errors) {
    std::abort();
  }
  if (reader.read("good", grammar) != NQ_FILE_OK) std::abort();
  return 0;
}

#endif  // NQ_TESTS_FUZZ_READING_FUZZ_H
