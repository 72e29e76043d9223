// object_view.h -- the objects of a container, typed.
//
//   for (const Node* node : nqObjects<Node>(nodes)) std::puts(node->name());
//   const auto named = std::ranges::count_if(nqObjects<Node>(nodes), &Node::hasName);
//
// nqObjects<Node>(container) is a view of a list, sorted list, tree or heap: it owns
// nothing, costs what a walk costs, and goes wherever ranges go. It hands out pointers
// to Node, or to a const one for nqObjects<const Node>; null stays null. Objects cannot
// be replaced through it, so that it keeps every order.
//
// That the objects are of that class is the caller's word. Programs with assertions ask
// for it with dynamic_cast at each object, others not at all. A view is valid as
// long as its container, an iterator until its cell leaves the container.

#ifndef NQ_CONTAINERS_OBJECT_VIEW_H
#define NQ_CONTAINERS_OBJECT_VIEW_H

#include <cassert>
#include <concepts>
#include <cstddef>
#include <iterator>
#include <ranges>
#include <type_traits>

#include "nq/containers/linked_list.h"

// Walks like `Iterator`, the container's own.
template <class Object, class Iterator>
class NQTypedIterator {
 public:
  using iterator_concept = typename Iterator::iterator_category;
  using iterator_category = std::input_iterator_tag;  // as it hands out no references
  using value_type = Object*;
  using difference_type = std::ptrdiff_t;
  using pointer = void;
  using reference = Object*;

  NQTypedIterator() = default;
  explicit NQTypedIterator(Iterator at) : at_(at) {}

  // The cell; null at the end.
  auto pCell() const { return at_.pCell(); }

  Object* operator*() const {
    NQObject* const object = *at_;
    assert(object == nullptr || dynamic_cast<Object*>(object) != nullptr);
    return static_cast<Object*>(object);
  }
  NQTypedIterator& operator++() {
    ++at_;
    return *this;
  }
  NQTypedIterator operator++(int) {
    const NQTypedIterator old = *this;
    ++*this;
    return old;
  }
  NQTypedIterator& operator--() requires std::bidirectional_iterator<Iterator> {
    --at_;
    return *this;
  }
  NQTypedIterator operator--(int) requires std::bidirectional_iterator<Iterator> {
    const NQTypedIterator old = *this;
    --*this;
    return old;
  }
  friend bool operator==(const NQTypedIterator& a, const NQTypedIterator& b) {
    return a.at_ == b.at_;
  }

 private:
  Iterator at_;
};

template <class Object, class Container>
class NQObjectView : public std::ranges::view_base {
 public:
  using iterator = NQTypedIterator<Object, typename Container::const_iterator>;

  explicit NQObjectView(const Container& container) : pContainer_(&container) {}

  iterator begin() const { return iterator(pContainer_->begin()); }
  iterator end() const { return iterator(pContainer_->end()); }
  bool empty() const { return pContainer_->length() == 0; }
  std::size_t size() const { return static_cast<std::size_t>(pContainer_->length()); }

 private:
  const Container* pContainer_;
};

#if !defined(NQ_DOCUMENTING)  // which Doxygen takes for an undeclared symbol
template <class Object, class Container>
inline constexpr bool
    std::ranges::enable_borrowed_range<NQObjectView<Object, Container>> = true;
#endif

template <class Object, class Container>
NQObjectView<Object, Container> nqObjects(const Container& container) {
  return NQObjectView<Object, Container>(container);
}
// A container that is about to go has no view.
template <class Object, class Container>
void nqObjects(const Container&& container) = delete;

#endif  // NQ_CONTAINERS_OBJECT_VIEW_H
