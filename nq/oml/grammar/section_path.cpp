#include "nq/oml/grammar/section_path.h"

#include "nq/oml/grammar.h"

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

nqULong subsectionPath(const NQOMLDefObjType* type, nqULong path, nqLong nameIndex) {
  if (nameIndex == NQ_OML_WILDCARD_SECTION) {
    const nqULong extended = extendPath(path, kPathWildcard);
    return extended == path ? 0 : extended;
  }
  if (path == 0) {
    const NQOMLDefSection* found = type->pSection(nameIndex);
    if (found == nullptr) found = uniqueSectionBelow(type, nameIndex);
    return found == nullptr ? 0 : found->path();
  }
  // The path that `find` gives for the matching sections, if those where it finds
  // one agree; 0 when they do not. False when it finds none.
  const auto isFound = [&](auto find, nqULong& result) {
    const NQOMLDefSection* first = nullptr;
    for (auto* in = firstMatch(type, path); in != nullptr; in = nextMatch(in, path)) {
      const NQOMLDefSection* const found = find(*in);
      if (found == nullptr) continue;
      if (first == nullptr) first = found;
      if (((found->path() ^ first->path()) & pathMask(path)) != 0) {
        result = 0;
        return true;
      }
    }
    result = first == nullptr ? 0 : (first->path() & pathMask(path)) | path;
    return first != nullptr;
  };
  const auto direct = [nameIndex](const NQOMLDefSection& in) {
    return in.pSection(nameIndex);
  };
  const auto below = [nameIndex](const NQOMLDefSection& in) {
    return uniqueSectionBelow(&in, nameIndex);
  };
  nqULong result = 0;
  if (!isFound(direct, result)) (void)isFound(below, result);
  return result;
}

}  // namespace nqdetail
