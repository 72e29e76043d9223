#include "nq/oml/grammar/section_path.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>
#include <vector>

#include "nq/core/string_pool.h"
#include "nq/oml/grammar.h"

namespace {

std::string numbered(char letter, unsigned long number) {
  return std::to_string(number).insert(0, 1, letter);
}

using namespace nqdetail;

TEST(SectionPath, Arithmetic) {
  const struct {
    nqULong path;
    int depth;
    nqULong mask;
    int firstEmpty;
    nqULong extended;  // by 7
  } kRows[] = {
      {0x0, 0, 0xFFFFFFFF, 0, 0x7},
      {0x1, 1, 0xFFFFFFFF, 1, 0x71},
      {0xE, 1, 0xFFFFFFFF, 1, 0x7E},
      {0xF, 1, 0xFFFFFFF0, 1, 0x7F},
      {0x3F2, 3, 0xFFFFFF0F, 3, 0x73F2},
      {0x302, 3, 0xFFFFFFFF, 1, 0x372},
      {0xF0F0, 4, 0xFFFF0F0F, 0, 0xF0F7},
      {0x12345678, 8, 0xFFFFFFFF, 8, 0x12345678},
      {0xFFFFFFFF, 8, 0x0, 8, 0xFFFFFFFF},
      {0xE7BD7EB7, 8, 0xFFFFFFFF, 8, 0xE7BD7EB7},  // ones of neighbours do not add up
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(pathDepth(row.path), row.depth) << std::hex << row.path;
    EXPECT_EQ(pathMask(row.path), row.mask) << std::hex << row.path;
    EXPECT_EQ(hasWildcard(row.path), row.mask != 0xFFFFFFFF) << std::hex << row.path;
    EXPECT_EQ(firstEmptyLevel(row.path), row.firstEmpty) << std::hex << row.path;
    EXPECT_EQ(extendPath(row.path, 7), row.extended) << std::hex << row.path;
  }
}

struct Tree : NQOMLStatic {
  Tree()
      : NQOMLStatic(static_cast<const char* const*>(nullptr), nullptr, nullptr, nullptr,
                    9, 9, 9, 9, 9, 9),
        type(installObjTypeID("t", nullptr, nullptr, nullptr, nullptr)) {}
  using NQOMLStatic::addSectionDefinition;

  // All sections, found by plain recursion in tree order.
  std::vector<NQOMLDefSection*> all(const NQOMLDefScope* scope) const {
    std::vector<NQOMLDefSection*> found;
    for (auto* section = scope->pSectionList(); section != nullptr;
         section = section->pNext()) {
      found.push_back(section);
      const auto below = all(section);
      found.insert(found.end(), below.begin(), below.end());
    }
    return found;
  }

  NQOMLDefObjType* type;
};

std::vector<nqULong> matches(const NQOMLDefObjType* type, nqULong pattern) {
  std::vector<nqULong> paths;
  for (auto* section = firstMatch(type, pattern); section != nullptr;
       section = nextMatch(section, pattern)) {
    paths.push_back(section->path());
  }
  return paths;
}

TEST(SectionPath, MatchesWhatAPlainSearchFinds) {
  std::mt19937 random(11);
  for (int round = 0; round < 60; ++round) {
    Tree tree;
    std::vector<nqULong> paths = {0};
    for (int n = 0; n < 150; ++n) {
      // Names repeat, so that some sections are found again and some are unique.
      const std::string name = numbered('s', random() % 40);
      const nqULong path =
          tree.addSectionDefinition("t", paths[random() % paths.size()], name.c_str());
      if (path != 0) paths.push_back(path);
    }
    const auto sections = tree.all(tree.type);

    for (int n = 0; n < 200; ++n) {
      nqULong pattern = paths[random() % paths.size()];
      for (int level = 0; level < pathDepth(pattern); ++level) {
        if (random() % 2 == 0) pattern |= kPathWildcard << (4 * level);
      }
      if (random() % 8 == 0) pattern ^= static_cast<nqULong>(random() & 0xFFFF);
      std::vector<nqULong> expected;
      for (const NQOMLDefSection* section : sections) {
        const bool equal = ((section->path() ^ pattern) & pathMask(pattern)) == 0;
        if (equal && section->depth() == pathDepth(pattern)) {
          expected.push_back(section->path());
        }
      }
      ASSERT_EQ(matches(tree.type, pattern), expected) << std::hex << pattern;
    }

    for (nqLong name = 0; name < tree.pSectionPool()->decodeTableMax(); ++name) {
      for (const nqULong path : paths) {
        const NQOMLDefScope* const scope = tree.type->pScope(path);
        NQOMLDefSection* unique = nullptr;
        int count = 0;
        for (NQOMLDefSection* section : tree.all(scope)) {
          if (section->nameIndex() != name) continue;
          unique = section;
          ++count;
        }
        ASSERT_EQ(uniqueSectionBelow(scope, name), count == 1 ? unique : nullptr);
      }
    }
  }
}

TEST(SectionPath, MatchesNothingWhereNothingIs) {
  const Tree tree;
  for (const nqULong pattern : {0x0U, 0x1U, 0xFU, 0xF0U, 0xFFFFFFFFU}) {
    EXPECT_EQ(firstMatch(tree.type, pattern), nullptr);
    EXPECT_EQ(firstMatch(nullptr, pattern), nullptr);
  }
  EXPECT_EQ(uniqueSectionBelow(tree.type, 0), nullptr);
}

}  // namespace
