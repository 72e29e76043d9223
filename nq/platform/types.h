// types.h -- the integer widths that every signature of the library relies on.
//
// Counts, positions and coordinates have 32 bits on every system. Where the
// system's own long has 32 bits, nqLong is that type, so that code written
// there with plain long keeps compiling; elsewhere it is std::int32_t.

#ifndef NQ_PLATFORM_TYPES_H
#define NQ_PLATFORM_TYPES_H

#include <climits>
#include <cstdint>

#if LONG_MAX == 2147483647L
using nqLong = long;
using nqULong = unsigned long;
#else
using nqLong = std::int32_t;
using nqULong = std::uint32_t;
#endif
using nqInt64 = std::int64_t;

static_assert(sizeof(nqLong) == 4 && sizeof(nqULong) == 4);
static_assert(sizeof(int) == 4 && sizeof(unsigned int) == 4);
static_assert(sizeof(nqInt64) == 8 && sizeof(double) == 8);
static_assert(sizeof(void*) == 8, "nq runs on 64-bit systems");

#endif  // NQ_PLATFORM_TYPES_H
