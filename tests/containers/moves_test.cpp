// What holds for every container that is moved.

#include <gtest/gtest.h>

#include <concepts>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "nq/containers/bin_heap.h"
#include "nq/containers/sorted_bin_tree.h"
#include "nq/containers/sorted_list.h"
#include "tests/containers/list_text.h"
#include "tests/support/bin_tree_check.h"

namespace {

// A container that orders its objects itself, as an application derives one.
template <class Base>
class ByValue : public Base {
 public:
  ByValue() = default;
  ByValue(const ByValue&) : Base() {}
  ByValue(ByValue&&) noexcept = default;
  ByValue& operator=(ByValue&&) noexcept = default;

 protected:
  int virtualObjectCompare(const NQObject* a, const NQObject* b) const override {
    return valueOf(a) - valueOf(b);
  }
};

// Puts an object in, and tells what is wrong with the container.
template <class Container>
void put(Container& container, NQObject* object) {
  if constexpr (std::same_as<Container, NQBinHeap>) {
    container.addObject(object, valueOf(object));
  } else if constexpr (requires { container.addObject(object); }) {
    container.addObject(object);
  } else {
    container.appendObject(object);
  }
}
template <class Container>
std::string fault(const Container& container) {
  checkLinks(container);
  if constexpr (std::derived_from<Container, NQBinTree>) {
    return checkBinTree(container).fault;
  } else if constexpr (std::same_as<Container, NQBinHeap>) {
    return findHeapFault(container,
                         [](auto* a, auto* b) { return a->value() > b->value(); });
  }
  return "";
}

template <class Container>
class Moves : public ::testing::Test {};
using Containers =
    ::testing::Types<NQDList, NQSList, NQBinTree, NQBinHeap, ByValue<NQSortedDList>,
                     ByValue<NQSortedSList>, ByValue<NQSortedBinTree>>;
TYPED_TEST_SUITE(Moves, Containers);

TYPED_TEST(Moves, TakeOverTheCellsAndLeaveAnEmptyContainer) {
  static_assert(std::movable<TypeParam> &&
                std::is_nothrow_move_constructible_v<TypeParam> &&
                std::is_nothrow_move_assignable_v<TypeParam>);
  const int before = NQCounted::live();
  {
    std::vector<NQObject*> objects;
    const auto fill = [&](TypeParam& container, int count) {
      for (int i = 1; i <= count; ++i) {
        objects.push_back(new NQCounted(i));
        put(container, objects.back());
      }
    };
    TypeParam source;
    fill(source, 5);
    const auto* const cell = source.pFirstCell();
    TypeParam target(std::move(source));
    const auto expectMoved = [&] {
      EXPECT_EQ(target.pFirstCell(), cell);
      EXPECT_TRUE(
          std::equal(objects.begin(), objects.end(), target.begin(), target.end()));
      EXPECT_EQ(fault(target), "");
      EXPECT_EQ(source.length(), 0);  // NOLINT(bugprone-use-after-move)
      EXPECT_EQ(fault(source), "");
    };
    expectMoved();

    // Back, over what the other has got meanwhile.
    put(source, new NQCounted(7));
    NQObject* const former = source.pFirstCell()->pObject();
    source = std::move(target);
    std::swap(source, target);
    expectMoved();
    // As the copying assignment, which leaves the objects of trees alone.
    if (std::derived_from<TypeParam, NQBinTree>) delete former;
    EXPECT_EQ(NQCounted::live(), before + 5);
    TypeParam& self = target;
    target = std::move(self);
    expectMoved();

    std::vector<TypeParam> growing;
    for (int i = 0; i < 20; ++i) {
      growing.emplace_back();
      put(growing.back(), new NQCounted(i));
    }
    EXPECT_EQ(NQCounted::live(), before + 25);
    for (TypeParam& each : growing) {
      EXPECT_EQ(fault(each), "");
      each.deleteAllCellsAndObjects();
    }
    target.deleteAllCellsAndObjects();
  }
  EXPECT_EQ(NQCounted::live(), before);
}

TEST(Moves, TakeTypeAndColoursOfATree) {
  NQBinTree source(7, NQ_EXCLUSIVE_COLORS);
  NQBinTree target;
  target = std::move(source);
  EXPECT_EQ(target.binTreeType(), 7);
  EXPECT_EQ(target.exclusiveColors(), 1);
  EXPECT_EQ(NQBinTree(NQ_EXCLUSIVE_COLORS).binTreeType(), 1);
  EXPECT_EQ(NQBinTree(7).exclusiveColors(), 0);
}

// A tree is emptied into a list that is made of it, and does not become one.
TEST(Moves, TakeTheCellsOfATreeForAList) {
  NQBinTree tree;
  for (const char name : {'a', 'b', 'c'}) tree.appendObject(object(name));
  NQDList list(std::move(static_cast<NQDList&>(tree)));
  EXPECT_EQ(text(list), "abc");
  EXPECT_EQ(fault(tree), "");
  static_cast<NQDList&>(tree) = std::move(list);
  EXPECT_EQ(tree.length(), 0);
  EXPECT_EQ(text(list), "abc");  // NOLINT(bugprone-use-after-move)
}

}  // namespace
