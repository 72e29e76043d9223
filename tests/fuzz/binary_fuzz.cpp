#include "tests/fuzz/reading_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return readInput(data, size, true);
}
