// list_text.h -- lists written as texts: "abc" holds the objects a, b and c, and
// "-" stands for null.

#ifndef NQ_TESTS_CONTAINERS_LIST_TEXT_H
#define NQ_TESTS_CONTAINERS_LIST_TEXT_H

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "nq/containers/dlist.h"
#include "nq/containers/slist.h"
#include "tests/support/counted.h"

inline NQObject* object(char name) {
  static std::array<NQObject, 26> objects;
  return name == '-' ? nullptr : &objects[static_cast<std::size_t>(name - 'a')];
}

// An object whose clones belong to a keeper, so that copies of what holds it
// may be dropped.
class NQKept : public NQCounted {
 public:
  using Keeper = std::vector<std::unique_ptr<NQObject>>;
  NQKept(int value, Keeper& keeper) : NQCounted(value), keeper_(keeper) {}

 protected:
  NQObject* vCloneObject() const override {
    return keeper_.emplace_back(new NQKept(value(), keeper_)).get();
  }

 private:
  Keeper& keeper_;
};

inline int valueOf(const NQObject* counted) {
  return counted == nullptr ? -1 : static_cast<const NQCounted*>(counted)->value();
}

template <class List>
void fill(List& list, const std::string& text) {
  list.deleteAllCells();
  for (const char name : text) ASSERT_NE(list.appendObject(object(name)), nullptr);
}

template <class List>
std::unique_ptr<List> listOf(const std::string& text) {
  auto list = std::make_unique<List>();
  fill(*list, text);
  return list;
}

// Checks that the ends, the links in both directions and the length agree.
template <class List>
void checkLinks(const List& list) {
  decltype(list.pFirstCell()) previous = nullptr;
  nqLong count = 0;
  for (auto cell = list.pFirstCell(); cell != nullptr; cell = cell->pNextCell()) {
    if constexpr (requires { cell->pPreviousCell(); }) {
      ASSERT_EQ(cell->pPreviousCell(), previous) << "backward link of cell " << count + 1;
    }
    previous = cell;
    ASSERT_LE(++count, list.length()) << "more cells than counted, or a circle";
  }
  ASSERT_EQ(list.pLastCell(), previous) << "last cell";
  ASSERT_EQ(list.length(), count) << "length";
}

template <class List>
std::string text(const List& list) {
  checkLinks(list);
  std::string result;
  for (const NQObject* const each : list) {
    char name = 'a';
    while (name <= 'z' && object(name) != each) ++name;
    result += each == nullptr ? '-' : name <= 'z' ? name : '?';
  }
  return result;
}

#endif  // NQ_TESTS_CONTAINERS_LIST_TEXT_H
