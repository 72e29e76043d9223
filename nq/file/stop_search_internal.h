// stop_search_internal.h -- the search for the bytes at which lines and texts end.
//
// How it works
//   Bytes are looked at 64 at a time, and what was seen is kept as one bit for each of
//   them: set where the byte is as low as the stops are. Few other bytes of a text are
//   (tabs), and those are told apart one by one. So the short lines of one look share
//   its cost, and no search has to wait for where the one before it has ended.

#ifndef NQ_FILE_STOP_SEARCH_INTERNAL_H
#define NQ_FILE_STOP_SEARCH_INTERNAL_H

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace nqdetail {

// Whether a line or the text ends with the byte.
inline bool isStop(char c) {
  return c == '\n' || c == '\r' || c == '\0';
}

class StopSearch {
 public:
  // The first stop of [first, last), or `last`; bytes may be looked at up to `end`. All
  // that one object is given are parts of the same bytes, unchanged.
  const char* find(const char* first, const char* last, const char* end) {
    while (first < last) {
      const std::uintptr_t passed = reinterpret_cast<std::uintptr_t>(first) -
                                    reinterpret_cast<std::uintptr_t>(place_);
      if (passed < kSeen) {
        for (std::uint64_t low = low_ >> passed; low != 0; low &= low - 1) {
          const char* const found = first + std::countr_zero(low);
          if (found >= last) [[unlikely]]
            return last;
          if (isStop(*found)) return found;
        }
        first += kSeen - passed;
        if (first >= last) break;
      }
      if (end - first < kSeen) return std::find_if(first, last, isStop);
      place_ = first;
      low_ = lowBytes(first);
    }
    return last;
  }

 private:
  static constexpr int kSeen = 64;  // bytes at a time

  static std::uint64_t lowBytes(const char* place) {
    std::uint64_t low = 0;
#if defined(__SSE2__)
    const __m128i highest = _mm_set1_epi8('\r');
    for (int at = 0; at < kSeen; at += 16) {
      const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(place + at));
      const int mask =
          _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_min_epu8(bytes, highest), bytes));
      low |= static_cast<std::uint64_t>(mask) << at;
    }
#else
    for (int at = 0; at < kSeen; ++at) {
      low |= std::uint64_t{static_cast<unsigned char>(place[at]) <= '\r'} << at;
    }
#endif
    return low;
  }

  const char* place_ = nullptr;  // where it looked last; null: nowhere
  std::uint64_t low_ = 0;
};

}  // namespace nqdetail

#endif  // NQ_FILE_STOP_SEARCH_INTERNAL_H
