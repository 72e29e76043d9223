// failing_memory.h -- memory that is exhausted when a test says so.
//
// Every allocation of the test program comes by here: operator new, and malloc, calloc
// and realloc as the library calls them (the linker puts their replacements in).

#ifndef NQ_TESTS_SUPPORT_FAILING_MEMORY_H
#define NQ_TESTS_SUPPORT_FAILING_MEMORY_H

// While it lives, the allocation after `successes` others fails; for good, also every
// one that follows it.
class FailingMemory {
 public:
  // Not where throwing an exception without memory overflows the stack: in a program
  // built by mingw-w64, under wine at least.
#if defined(_WIN32)
  static constexpr bool kWorks = false;
#else
  static constexpr bool kWorks = true;
#endif

  FailingMemory(long successes, bool forGood);
  ~FailingMemory() {
    stop();
  }
  FailingMemory(const FailingMemory&) = delete;
  FailingMemory& operator=(const FailingMemory&) = delete;

  void stop();
  // Whether an allocation has failed.
  bool hasFailed() const;

  // Blocks that are allocated and not freed.
  static long live();
};

#endif  // NQ_TESTS_SUPPORT_FAILING_MEMORY_H
