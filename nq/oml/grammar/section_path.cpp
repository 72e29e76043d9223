#include "nq/oml/grammar/section_path.h"

namespace nqdetail {

namespace {

// The section after `section` and its subsections in tree order; null when none
// is left below `top` (null: in the type).
NQOMLDefSection* behind(const NQOMLDefSection* section,
                        const NQOMLDefSection* top = nullptr) {
  while (section != top && section->pNext() == nullptr) section = section->pParent();
  return section == top ? nullptr : section->pNext();
}

// The first section from `section` on that matches; subtrees that the pattern
// excludes are left out.
NQOMLDefSection* matchFrom(NQOMLDefSection* section, nqULong pattern) {
  const int depth = pathDepth(pattern);
  const nqULong mask = pathMask(pattern);
  while (section != nullptr) {
    const nqULong levels = section->depth() == kPathLevels
                               ? ~nqULong{0}
                               : (nqULong{1} << (4 * section->depth())) - 1;
    const bool agrees = ((section->path() ^ pattern) & mask & levels) == 0;
    if (agrees && section->depth() == depth) return section;
    NQOMLDefSection* const below = section->pSectionList();
    section = agrees && below != nullptr ? below : behind(section);
  }
  return nullptr;
}

}  // namespace

NQOMLDefSection* firstMatch(const NQOMLDefObjType* type, nqULong pattern) {
  if (type == nullptr || pattern == 0) return nullptr;
  return hasWildcard(pattern) ? matchFrom(type->pSectionList(), pattern)
                              : type->pSectionAt(pattern);
}

NQOMLDefSection* nextMatch(const NQOMLDefSection* section, nqULong pattern) {
  return hasWildcard(pattern) ? matchFrom(behind(section), pattern) : nullptr;
}

NQOMLDefSection* uniqueSectionBelow(const NQOMLDefScope* scope, nqLong nameIndex) {
  NQOMLDefSection* found = nullptr;
  NQOMLDefSection* section = scope->pSectionList();
  const NQOMLDefSection* const top = section == nullptr ? nullptr : section->pParent();
  while (section != nullptr) {
    if (section->nameIndex() == nameIndex) {
      if (found != nullptr) return nullptr;
      found = section;
    }
    NQOMLDefSection* const below = section->pSectionList();
    section = below != nullptr ? below : behind(section, top);
  }
  return found;
}

}  // namespace nqdetail
