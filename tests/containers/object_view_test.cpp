#include "nq/containers/object_view.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ranges>
#include <vector>

#include "nq/containers/bin_heap.h"
#include "nq/containers/sorted_bin_tree.h"
#include "nq/containers/sorted_list.h"
#include "tests/support/counted.h"

namespace {

class ByValue : public NQSortedBinTree {
 protected:
  int virtualObjectCompare(const NQObject* a, const NQObject* b) const override {
    return NQCounted::castDown(a)->value() - NQCounted::castDown(b)->value();
  }
};
class InOrder : public NQSortedDList {
 protected:
  int virtualObjectCompare(const NQObject* a, const NQObject* b) const override {
    return NQCounted::castDown(a)->value() - NQCounted::castDown(b)->value();
  }
};

// Whether an object can be replaced through an iterator of the container.
template <class Container>
constexpr bool kReplaces = requires(Container container, NQObject* object) {
  *container.begin() = object;
};
static_assert(kReplaces<NQDList> && kReplaces<NQSList> && kReplaces<NQBinTree>);
static_assert(!kReplaces<ByValue> && !kReplaces<InOrder> && !kReplaces<NQBinHeap>);

template <class Container>
void checkView(const Container& container, const std::vector<int>& values) {
  const auto view = nqObjects<NQCounted>(container);
  using View = std::remove_const_t<decltype(view)>;
  static_assert(std::ranges::view<View> && std::ranges::borrowed_range<View> &&
                std::ranges::sized_range<View> && std::ranges::forward_range<View>);
  static_assert(std::ranges::bidirectional_range<View> !=
                std::derived_from<Container, NQSList>);
  static_assert(!kReplaces<View>);
  std::vector<int> walked;
  for (const NQCounted* const each : view) walked.push_back(each->value());
  EXPECT_EQ(walked, values);
  EXPECT_EQ(view.size(), values.size());
  EXPECT_TRUE(std::ranges::equal(view, values, {}, &NQCounted::value));
  const auto found = std::ranges::find(view, values.back(), &NQCounted::value);
  ASSERT_NE(found, view.end());
  EXPECT_EQ(found.pCell()->pObject(), *found);
  EXPECT_EQ(std::count_if(view.begin(), view.end(),
                          [](const NQCounted* each) { return each->value() > 1; }),
            std::ranges::count_if(values, [](int value) { return value > 1; }));
  if constexpr (std::ranges::bidirectional_range<View>) {
    auto last = view.end();
    EXPECT_EQ((*--last)->value(), values.back());
  }
}

TEST(ObjectView, WalksEveryContainer) {
  NQCounted three(3);
  NQCounted one(1);
  NQCounted two(2);
  NQDList list;
  NQSList single;
  NQBinTree tree;
  ByValue sortedTree;
  InOrder sortedList;
  NQBinHeap heap;
  for (NQCounted* const each : {&three, &one, &two}) {
    list.appendObject(each);
    single.appendObject(each);
    tree.appendObject(each);
    sortedTree.addObject(each);
    sortedList.addObject(each);
    heap.addObject(each, each->value());
  }
  checkView(list, {3, 1, 2});
  checkView(single, {3, 1, 2});
  checkView(tree, {3, 1, 2});
  checkView(sortedTree, {1, 2, 3});
  checkView(sortedList, {1, 2, 3});
  checkView(heap, {1, 3, 2});

  NQDList empty;
  empty.appendObject(nullptr);
  EXPECT_EQ(*nqObjects<const NQCounted>(empty).begin(), nullptr);
  empty.deleteAllCells();
  EXPECT_TRUE(nqObjects<NQCounted>(empty).empty());

  // What a heap finds can be given a new value.
  heap.changeValue(heap.searchObject(&two), 0);
  EXPECT_EQ(heap.pMinObject(), &two);
  EXPECT_EQ(heap.pCellInPosition(1), heap.searchCell(heap.pFirstCell()));
}

}  // namespace
