// number_table.h -- what is kept for each of a set of numbers, found by the number.
//
// Programs number what they write: from 1 on, in steps, or by addresses, which are
// multiples of some power of two in no order. Numbers that fill at least a quarter of
// the range that they span, counted in their common step, have a place each in an
// array, found without a comparison. Others are found by hashing, with a seed that
// nobody outside the program can know. Either way a number costs at most 32 bytes,
// whatever the numbers are.

#ifndef NQ_OML_TREE_NUMBER_TABLE_H
#define NQ_OML_TREE_NUMBER_TABLE_H

#include <bit>
#include <cstddef>
#include <cstdint>

#include "nq/core/memory_internal.h"
#include "nq/platform/types.h"

namespace nqdetail {

struct HashSeed;

class NumberTable {
 public:
  static constexpr nqLong kNothing = -1;

  // The place of what is kept for `number`: kNothing for a new number, otherwise what
  // was put there, 0 or more. Valid until the next call; null when memory is
  // exhausted.
  nqLong* place(nqLong number, const HashSeed& seed) {
    const std::uint32_t key = keyOf(number);
    // A number off the step is far out of range once its low bits are at the top.
    const std::uint32_t index = std::rotr(key - base_, step_);
    if (index < rowSize_ && row_[index] != kNothing) return &row_[index];
    return placeElsewhere(key, seed);
  }

 private:
  struct Slot {
    std::uint32_t key;
    nqLong value;  // kFree in a slot of no number
  };
  static constexpr nqLong kFree = -2;

  // The order of the keys is that of the numbers.
  static std::uint32_t keyOf(nqLong number) {
    return static_cast<std::uint32_t>(number) ^ 0x80000000U;
  }
  std::uint32_t numberOfSlots() const { return slots_ == nullptr ? 0 : mask_ + 1; }

  nqLong* placeElsewhere(std::uint32_t key, const HashSeed& seed);
  // Counts a new number, which widens the range.
  void note(std::uint32_t key);
  // Whether the numbers noted fill a quarter of their range.
  bool isDense() const;
  // Moves everything into a row for the range that is noted, with more room to grow
  // where `key` extended it.
  bool makeRow(std::uint32_t key);
  // Moves everything into hashed slots, at least twice as many as numbers.
  bool makeSlots(const HashSeed& seed);
  // Calls take(key, value) for all that is kept.
  template <class Take>
  void forAll(Take take) const;
  // The slot of `key`, or the free one that it would take.
  static Slot& slotOf(Slot* slots, std::uint32_t mask, std::uint32_t key,
                      const HashSeed& seed);
  Slot& slotOf(std::uint32_t key, const HashSeed& seed) const {
    return slotOf(slots_.get(), mask_, key, seed);
  }

  // One of the two is in use once there are two numbers.
  HeapArray<nqLong> row_;
  HeapArray<Slot> slots_;
  std::uint32_t rowSize_ = 0;
  std::uint32_t base_ = 0;  // the key of the row's first place
  int step_ = 0;            // from place to place: the power of two
  std::uint32_t mask_ = 0;  // the number of slots less one, a power of two less one
  std::uint32_t count_ = 0;
  std::uint32_t least_ = 0;
  std::uint32_t greatest_ = 0;
  std::uint32_t first_ = 0;      // the key that came first
  std::uint32_t differing_ = 0;  // the bits in which others differ from it
  nqLong only_ = kNothing;       // what is kept for it while it is the only one
};

}  // namespace nqdetail

#endif  // NQ_OML_TREE_NUMBER_TABLE_H
