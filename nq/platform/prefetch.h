// prefetch.h -- memory that will soon be needed.

#ifndef NQ_PLATFORM_PREFETCH_H
#define NQ_PLATFORM_PREFETCH_H

namespace nqdetail {

// Fetches what stands at `place` into the cache; any pointer is harmless. Functions
// that do nothing else are to be inlined always: compilers leave out calls of what
// has no effect.
[[gnu::always_inline]] inline void prefetch([[maybe_unused]] const void* place) {
#if defined(__GNUC__)
  __builtin_prefetch(place);
#endif
}

}  // namespace nqdetail

#endif  // NQ_PLATFORM_PREFETCH_H
