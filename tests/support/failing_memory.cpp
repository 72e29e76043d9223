#include "tests/support/failing_memory.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

long left = -1;  // allocations until one fails; -1: none does
bool forever = false;
bool failed = false;
long blocks = 0;

bool refuses() {
  if (left < 0) return failed && forever;
  if (left-- > 0) return false;
  failed = true;
  return true;
}

}  // namespace

FailingMemory::FailingMemory(long successes, bool forGood) {
  failed = false;
  forever = forGood;
  left = successes;
}

void FailingMemory::stop() {
  left = -1;
  forever = false;
}

bool FailingMemory::hasFailed() const {
  return failed;
}

long FailingMemory::live() {
  return blocks;
}

// The linker's names: __wrap_X is called in place of X, which is then __real_X.
extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* memory, std::size_t size);
void __real_free(void* memory);

void* __wrap_malloc(std::size_t size) {
  void* const memory = refuses() ? nullptr : __real_malloc(size);
  if (memory != nullptr) ++blocks;
  return memory;
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
  void* const memory = refuses() ? nullptr : __real_calloc(count, size);
  if (memory != nullptr) ++blocks;
  return memory;
}

void* __wrap_realloc(void* memory, std::size_t size) {
  void* const moved = refuses() ? nullptr : __real_realloc(memory, size);
  if (memory == nullptr && moved != nullptr) ++blocks;
  return moved;
}

void __wrap_free(void* memory) {
  if (memory != nullptr) --blocks;
  __real_free(memory);
}
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return __wrap_malloc(size == 0 ? 1 : size);
}
void* operator new(std::size_t size) {
  void* const memory = operator new(size, std::nothrow);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return operator new(size, std::nothrow);
}
void* operator new[](std::size_t size) {
  return operator new(size);
}
void operator delete(void* memory) noexcept {
  __wrap_free(memory);
}
void operator delete[](void* memory) noexcept {
  __wrap_free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  __wrap_free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  __wrap_free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
  __wrap_free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
  __wrap_free(memory);
}
