// little_memory.h -- lets allocations fail.

#ifndef NQ_TESTS_SUPPORT_LITTLE_MEMORY_H
#define NQ_TESTS_SUPPORT_LITTLE_MEMORY_H

#if defined(__linux__) && !defined(__SANITIZE_ADDRESS__)
#include <sys/resource.h>

#include <cstdlib>
#include <utility>

// While one lives, large allocations fail: the address space does not grow, and what is
// free of it in large pieces is taken.
class LittleMemory {
 public:
  static constexpr bool kWorks = true;

  LittleMemory() {
    getrlimit(RLIMIT_AS, &before_);
    const rlimit little{1, before_.rlim_max};
    setrlimit(RLIMIT_AS, &little);
    while (void* const piece = std::malloc(kLarge)) {
      *static_cast<void**>(piece) = std::exchange(taken_, piece);
    }
  }
  ~LittleMemory() {
    setrlimit(RLIMIT_AS, &before_);
    while (taken_ != nullptr) {
      std::free(std::exchange(taken_, *static_cast<void**>(taken_)));
    }
  }
  LittleMemory(const LittleMemory&) = delete;
  LittleMemory& operator=(const LittleMemory&) = delete;

 private:
  static constexpr std::size_t kLarge = std::size_t{1} << 20;

  rlimit before_;
  void* taken_ = nullptr;  // each piece begins with the next one's address
};
#else
// Not on this system, or not under its sanitizer.
struct LittleMemory {
  static constexpr bool kWorks = false;

  LittleMemory() {}  // NOLINT: not trivial, so that an unused one is no mistake
};
#endif

#endif  // NQ_TESTS_SUPPORT_LITTLE_MEMORY_H
