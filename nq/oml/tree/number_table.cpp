#include "nq/oml/tree/number_table.h"

#include <algorithm>

#include "nq/core/hash_internal.h"

namespace nqdetail {

nqLong* NumberTable::placeElsewhere(std::uint32_t key, const HashSeed& seed) {
  if (slots_ != nullptr) {
    Slot& slot = slotOf(key, seed);
    if (slot.value != kFree) return &slot.value;
  } else if (count_ == 1 && key == first_) {
    return &only_;
  }
  note(key);
  if (count_ == 1) return &only_;
  const bool full = slots_ != nullptr
                        ? 4 * std::uint64_t{count_} > 3 * std::uint64_t{numberOfSlots()}
                        : std::rotr(key - base_, step_) >= rowSize_;
  if (full && !(isDense() ? makeRow(key) : makeSlots(seed))) return nullptr;
  if (slots_ == nullptr) return &row_[std::rotr(key - base_, step_)];
  Slot& slot = slotOf(key, seed);
  slot = {key, kNothing};
  return &slot.value;
}

void NumberTable::note(std::uint32_t key) {
  if (count_++ == 0) first_ = least_ = greatest_ = key;
  differing_ |= key ^ first_;
  least_ = std::min(least_, key);
  greatest_ = std::max(greatest_, key);
}

bool NumberTable::isDense() const {
  return (greatest_ - least_) >> std::countr_zero(differing_) < 4 * std::uint64_t{count_};
}

template <class Take>
void NumberTable::forAll(Take take) const {
  if (slots_ != nullptr) {
    for (std::uint32_t i = 0; i <= mask_; ++i) {
      if (slots_[i].value >= 0) take(slots_[i].key, slots_[i].value);
    }
  } else if (row_ != nullptr) {
    for (std::uint32_t i = 0; i < rowSize_; ++i) {
      if (row_[i] >= 0) take(base_ + (i << step_), row_[i]);
    }
  } else if (only_ >= 0) {
    take(first_, only_);
  }
}

bool NumberTable::makeRow(std::uint32_t key) {
  const int step = std::countr_zero(differing_);
  const std::uint32_t span = ((greatest_ - least_) >> step) + 1;
  // Some room at the other end, too: numbers may come at both by turns.
  const std::uint32_t room = span / 2 + 2;
  const std::uint32_t below =
      std::min(key == least_ ? room - room / 4 : room / 4, least_ >> step);
  const std::uint32_t above = std::min(room - below, (0xffffffffU - greatest_) >> step);
  const std::uint32_t size = below + span + above;
  HeapArray<nqLong> row;
  if (!resize(row, size)) return false;
  std::fill_n(row.get(), size, kNothing);
  const std::uint32_t base = least_ - (below << step);
  forAll([&](std::uint32_t from, nqLong value) { row[(from - base) >> step] = value; });
  slots_.reset();
  row_.swap(row);
  rowSize_ = size;
  base_ = base;
  step_ = step;
  return true;
}

bool NumberTable::makeSlots(const HashSeed& seed) {
  const std::uint32_t number = std::bit_ceil(2 * count_);
  HeapArray<Slot> slots;
  if (!resize(slots, number)) return false;
  std::fill_n(slots.get(), number, Slot{0, kFree});
  forAll([&](std::uint32_t key, nqLong value) {
    slotOf(slots.get(), number - 1, key, seed) = {key, value};
  });
  row_.reset();
  rowSize_ = 0;
  slots_.swap(slots);
  mask_ = number - 1;
  return true;
}

NumberTable::Slot& NumberTable::slotOf(Slot* slots, std::uint32_t mask, std::uint32_t key,
                                       const HashSeed& seed) {
  std::uint32_t place = hashKey(static_cast<nqInt64>(key), seed) & mask;
  while (slots[place].value != kFree && slots[place].key != key) {
    place = (place + 1) & mask;
  }
  return slots[place];
}

}  // namespace nqdetail
