// pool_size.h -- how many texts a pool of a grammar or read has room for.

#ifndef NQ_OML_GRAMMAR_POOL_SIZE_H
#define NQ_OML_GRAMMAR_POOL_SIZE_H

#include <algorithm>

#include "nq/platform/types.h"

namespace nqdetail {

// The room at first in a pool for which a grammar's user asks for `size` places.
// Pools grow by themselves, so that a wild size need not cost memory.
constexpr nqLong poolStart(nqLong size) {
  constexpr nqLong kLargestStart = 65536;
  return std::clamp(size, nqLong{1}, kLargestStart);
}

}  // namespace nqdetail

#endif  // NQ_OML_GRAMMAR_POOL_SIZE_H
