// section_path.h -- section paths and the sections they match.
//
// A section path has four bits for each level, the outermost in the lowest four,
// up to eight levels. Each holds the number of a section among its siblings, 1
// to 14, or 15, the wildcard, which stands for every section on that level. The
// first 0 ends the path; 0 as a whole means outside any section.
//
// "Tree order" is depth first, each section before its subsections, siblings as
// the lists have them. No function recurses; a match costs at most a walk
// through the sections that agree with the pattern so far.

#ifndef NQ_OML_GRAMMAR_SECTION_PATH_H
#define NQ_OML_GRAMMAR_SECTION_PATH_H

#include <bit>

#include "nq/oml/definitions.h"

namespace nqdetail {

constexpr int kPathLevels = 8;
constexpr nqULong kPathWildcard = 15;
constexpr nqLong kMaxSectionNumber = 14;

// The number on a level (0 to 7).
constexpr nqULong pathNumber(nqULong path, int level) {
  return path >> (4 * level) & 15;
}

// The place of the highest number that is not 0, counted from 1; 0 for path 0.
constexpr int pathDepth(nqULong path) {
  return (35 - std::countl_zero(path)) / 4;
}

// 15 on every level but the wildcards', 0 there.
constexpr nqULong pathMask(nqULong pattern) {
  nqULong wild = pattern & pattern >> 1;
  wild &= wild >> 2;
  return ~((wild & 0x11111111U) * 15U);
}

constexpr bool hasWildcard(nqULong path) {
  return pathMask(path) != ~nqULong{0};
}

// The lowest level whose number is 0; kPathLevels when there is none.
constexpr int firstEmptyLevel(nqULong path) {
  int level = 0;
  while (level < kPathLevels && pathNumber(path, level) != 0) ++level;
  return level;
}

// `path` with `number` on its first empty level; `path` itself when it is full.
constexpr nqULong extendPath(nqULong path, nqULong number) {
  const int level = firstEmptyLevel(path);
  return level == kPathLevels ? path : path | number << (4 * level);
}

// The first section of the type that matches the pattern, in tree order: equal
// to it but for the wildcards, and on its level. Null when there is none, and
// for path 0.
NQOMLDefSection* firstMatch(const NQOMLDefObjType* type, nqULong pattern);
// The next one after `section`, which matches the pattern.
NQOMLDefSection* nextMatch(const NQOMLDefSection* section, nqULong pattern);

// The section named so anywhere below `scope` (on any level), provided that the
// name stands there exactly once; else null.
NQOMLDefSection* uniqueSectionBelow(const NQOMLDefScope* scope, nqLong nameIndex);

// The path that a section's name leads to from `path`: to a direct subsection of the
// sections that match it, failing that to the only section of that name below each; the
// wildcard's name adds a wildcard. 0 when there is none, and when the sections found
// differ in more than what `path` leaves open.
nqULong subsectionPath(const NQOMLDefObjType* type, nqULong path, nqLong nameIndex);

}  // namespace nqdetail

#endif  // NQ_OML_GRAMMAR_SECTION_PATH_H
