#include "tests/support/failing_memory.h"

#include <cstdlib>
#include <new>

long allocationsLeft = -1;

void* operator new(std::size_t size) {
  void* const memory = allocationsLeft == 0 ? nullptr : std::malloc(size);
  if (memory == nullptr) throw std::bad_alloc();
  if (allocationsLeft > 0) --allocationsLeft;
  return memory;
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
