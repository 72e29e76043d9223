// records.h -- the platform's point, size and rectangle records.
//
// Geometry converts to and from these. On Windows they are the system's own
// and only declared here, so that no header of the library pulls in the
// system's; code that looks inside includes <windows.h> itself. Elsewhere they
// are defined with the same members in the same order.
//
// Classes that hand out their fields viewed as a record carry
// NQ_VIEWED_AS_RECORD: compilers that tell types apart by their names must not
// assume that a change through the view leaves the object alone.

#ifndef NQ_PLATFORM_RECORDS_H
#define NQ_PLATFORM_RECORDS_H

#include "nq/platform/types.h"

#if defined(__GNUC__)
#define NQ_VIEWED_AS_RECORD __attribute__((may_alias))
#else
#define NQ_VIEWED_AS_RECORD
#endif

#if defined(_WIN32)

struct tagPOINT;
struct tagSIZE;
struct tagRECT;

#else

struct tagPOINT {
  nqLong x;
  nqLong y;
};

struct tagSIZE {
  nqLong cx;
  nqLong cy;
};

struct tagRECT {
  nqLong left;
  nqLong top;
  nqLong right;
  nqLong bottom;
};

static_assert(sizeof(tagPOINT) == 8 && sizeof(tagSIZE) == 8 && sizeof(tagRECT) == 16);

#endif

#endif  // NQ_PLATFORM_RECORDS_H
