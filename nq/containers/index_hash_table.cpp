#include "nq/containers/index_hash_table.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <new>

#include "nq/core/hash_internal.h"
#include "nq/core/memory_internal.h"

namespace {

std::uint64_t magnitude(nqInt64 value) {
  const auto bits = static_cast<std::uint64_t>(value);
  return value < 0 ? 0 - bits : bits;
}

// Takes remainders by a fixed number, not 0, without a division.
class Modulus {
 public:
  explicit Modulus(std::uint64_t number)
      : number_(number), inverse_(~std::uint64_t{0} / number) {}

  std::uint64_t remainder(std::uint64_t dividend) const {
    const std::uint64_t quotient = nqdetail::multiply(dividend, inverse_).high;
    const std::uint64_t rest = dividend - quotient * number_;
    return rest < number_ ? rest : rest - number_;  // the quotient may be one too low
  }

 private:
  std::uint64_t number_;
  std::uint64_t inverse_;  // 2^64 / number_, rounded down or one less
};

}  // namespace

// The second index: open addressing, at most half of the slots taken. A key
// belongs into the slot that its bits name, which keeps apart and in order what is
// regularly spaced, or into one of the few after it. When these are taken it moves
// on in steps of its own, drawn from a seeded hash, so that neither dense keys nor
// hostile ones gather into long searches.
struct NQIndexHashTable::Index {
  struct Slot {
    nqInt64 key;
    nqInt64 value;  // as in the entry, to spare a lookup the way there
  };

  // So many slots in a row are tried; they share a cache line, or three.
  static constexpr std::uint64_t kRun = 8;

  // What stands in every vacant slot: a key that is not in the index, and the
  // error value, so that a lookup need not tell a vacant slot from one taken.
  Slot vacant{std::numeric_limits<nqInt64>::min(), 0};
  nqdetail::HeapArray<Slot> slots;      // a power of two and kRun - 1 more, or none
  nqdetail::HeapArray<nqLong> entries;  // the number of the entry of each slot
  std::uint64_t mask = 0;               // the power of two less one
  int alikeBits = 0;  // low bits in which the keys did not differ at the rebuild
  nqdetail::HashSeed seed = nqdetail::newHashSeed(this);

  bool hasRoomFor(nqLong count) const {
    return slots != nullptr && 2 * static_cast<std::uint64_t>(count) <= mask;
  }

  // Makes larger, vacant tables for keys that differ in the bits of `spread`; when
  // false, memory is exhausted and nothing has changed.
  bool rebuild(nqLong count, std::uint64_t spread) {
    const std::uint64_t power = std::bit_ceil(2 * static_cast<std::uint64_t>(count) + 2);
    const std::uint64_t number = power + kRun - 1;
    if (!nqdetail::resize(entries, number)) return false;
    if (!nqdetail::resize(slots, number)) return false;
    std::fill_n(slots.get(), number, vacant);
    mask = power - 1;
    alikeBits = spread == 0 ? 0 : std::countr_zero(spread);
    return true;
  }

  // The slot of `key`, or the vacant one where it may be put.
  Slot& slotOf(nqInt64 key) const {
    const std::uint64_t home = (static_cast<std::uint64_t>(key) >> alikeBits) & mask;
    Slot* slot = &slots[home];
    if (isFor(*slot, key)) return *slot;
    ++slot;
    return isFor(*slot, key) ? *slot : furtherSlotOf(key, home);
  }

  nqLong& entryOf(const Slot& slot) const {
    return entries[static_cast<std::size_t>(&slot - slots.get())];
  }

  void put(Slot& slot, nqInt64 key, nqInt64 value, nqLong entry) {
    slot = {key, value};
    entryOf(slot) = entry;
  }

  // Marks the vacant slots with another key when `key` is about to come in. Nobody
  // can foresee which, so nobody can make this happen often.
  void keepApartFrom(nqInt64 key) {
    if (key != vacant.key) return;
    Slot other = vacant;
    do {
      other.key = static_cast<nqInt64>(
          nqdetail::mix(static_cast<std::uint64_t>(other.key) + seed.first, seed.second));
    } while (other.key == vacant.key || slotOf(other.key).key == other.key);
    const auto isVacant = [this](const Slot& slot) { return slot.key == vacant.key; };
    std::replace_if(slots.get(), slots.get() + mask + kRun, isVacant, other);
    vacant = other;
  }

 private:
  bool isFor(const Slot& slot, nqInt64 key) const {
    return slot.key == key || slot.key == vacant.key;
  }

  // Out of line, to keep the way to the first places short. An odd step comes by
  // every slot.
  [[gnu::noinline]] Slot& furtherSlotOf(nqInt64 key, std::uint64_t place) const {
    const std::uint64_t step = nqdetail::hashKey(key, seed) | 1;
    for (;; place = (place + step) & mask) {
      for (std::uint64_t next = place; next < place + kRun; ++next) {
        if (isFor(slots[next], key)) return slots[next];
      }
    }
  }
};

struct NQIndexHashTable::Entries {
  Modulus buckets;
  int divisorBits;  // log2 of the divisor's magnitude, or -1 where that is not whole
  nqdetail::BlockArray<NQIndexHash> all;  // in the order of their arrival
  std::uint64_t spread = 0;               // the bits in which their keys differ
  Index index;
  nqLong indexed = 0;  // so many entries, the oldest, are in the index

  Entries(std::uint64_t size, std::uint64_t divisor, nqLong errorValue)
      : buckets(size),
        divisorBits(std::has_single_bit(divisor) ? std::countr_zero(divisor) : -1) {
    index.vacant.value = errorValue;
  }

  NQIndexHash* append(const NQIndexHash& entry) {
    NQIndexHash* const kept = all.append(entry);
    if (kept != nullptr) spread |= static_cast<std::uint64_t>(entry.key ^ all[0].key);
    return kept;
  }

  // Brings the index up to date, with room for one more; false when memory is
  // exhausted.
  bool extendIndex() {
    if (!index.hasRoomFor(all.size() + 1)) {
      if (!index.rebuild(all.size() + 1, spread)) return false;
      indexed = 0;
    }
    for (; indexed < all.size(); ++indexed) {
      const NQIndexHash& entry = all[indexed];
      index.keepApartFrom(entry.key);
      index.put(index.slotOf(entry.key), entry.key, entry.value, indexed);
    }
    return true;
  }
};

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): copyObject() looks for it.
NQ_COPY_PROTOCOL_IMPL(NQIndexHashTable)

NQIndexHashTable::NQIndexHashTable(nqLong hashTableSize, nqLong divisor,
                                   nqLong errorValue)
    : errorValue_(errorValue) {
  makeBuckets(hashTableSize, divisor);
}

NQIndexHashTable::~NQIndexHashTable() = default;

nqLong NQIndexHashTable::sizeOf() const {
  const nqInt64 entries = entries_ == nullptr ? 0 : entries_->all.size();
  const nqInt64 size = 48 + 8 * nqInt64{hashTableSize_} + 24 * entries;
  return static_cast<nqLong>(std::min<nqInt64>(size, std::numeric_limits<nqLong>::max()));
}

nqInt64 NQIndexHashTable::lookup(nqInt64 key) {
  if (index_ != nullptr || updateIndex()) return index_->slotOf(key).value;
  const NQIndexHash* const entry = walkFor(key);
  return entry == nullptr ? errorValue_ : entry->value;
}

void NQIndexHashTable::update(nqInt64 key, nqInt64 value) {
  if (hashTable_ == nullptr) return;
  if (key > maxHashIndex_) {
    index_ = nullptr;
    if (!push(key, value)) return;
  } else if (index_ != nullptr || updateIndex()) {
    index_->keepApartFrom(key);
    Index::Slot& slot = index_->slotOf(key);
    if (slot.key == key) {
      slot.value = value;
      entries_->all[index_->entryOf(slot)].value = value;
    } else {
      if (!push(key, value)) return;
      index_->put(slot, key, value, entries_->indexed++);
      if (!index_->hasRoomFor(entries_->indexed + 1)) index_ = nullptr;
    }
  } else if (NQIndexHash* const entry = walkFor(key); entry != nullptr) {
    entry->value = value;
  } else if (!push(key, value)) {
    return;
  }
  maxHashIndex_ = std::max(maxHashIndex_, key);
  maxValueIndex_ = std::max(maxValueIndex_, value);
}

void NQIndexHashTable::hashStatistics(const char*) const {}

void NQIndexHashTable::debugOutput(int) {}

void NQIndexHashTable::init() {
  empty();
}

// The magnitude of the quotient is the quotient of the magnitudes, which cannot
// overflow.
nqLong NQIndexHashTable::hash(nqInt64 key) const {
  const int bits = entries_->divisorBits;
  const std::uint64_t quotient =
      bits >= 0 ? magnitude(key) >> bits : magnitude(key) / magnitude(divisor_);
  return static_cast<nqLong>(entries_->buckets.remainder(quotient));
}

// Out of line, with the walk, to keep lookups short.
[[gnu::noinline]] bool NQIndexHashTable::updateIndex() {
  if (hashTable_ == nullptr || !entries_->extendIndex()) return false;
  index_ = &entries_->index;
  return true;
}

[[gnu::noinline]] NQIndexHash* NQIndexHashTable::walkFor(nqInt64 key) const {
  if (hashTable_ == nullptr) return nullptr;
  NQIndexHash* entry = hashTable_[static_cast<std::size_t>(hash(key))];
  while (entry != nullptr && entry->key != key) entry = entry->next;
  return entry;
}

bool NQIndexHashTable::push(nqInt64 key, nqInt64 value) {
  NQIndexHash*& head = hashTable_[static_cast<std::size_t>(hash(key))];
  NQIndexHash* const entry = entries_->append({key, value, head});
  if (entry == nullptr) return false;
  head = entry;
  return true;
}

// Without the memory for them the table stays without buckets.
void NQIndexHashTable::makeBuckets(nqLong hashTableSize, nqLong divisor) {
  divisor_ = divisor;
  if (hashTableSize < 1 || divisor == 0) return;
  const auto size = static_cast<std::size_t>(hashTableSize);
  entries_.reset(new (std::nothrow) Entries(size, magnitude(divisor), errorValue_));
  if (entries_ == nullptr) return;
  hashTable_.reset(static_cast<NQIndexHash**>(std::calloc(size, sizeof(void*))));
  if (hashTable_ == nullptr) {
    entries_.reset();
    return;
  }
  hashTableSize_ = hashTableSize;
}

// The error value stays.
void NQIndexHashTable::empty() {
  index_ = nullptr;
  hashTable_.reset();
  entries_.reset();
  hashTableSize_ = 0;
  divisor_ = 1;
  maxValueIndex_ = 0;
  maxHashIndex_ = 0;
}

void NQIndexHashTable::NQIndexHashTabledeepCopy(const NQIndexHashTable& source) {
  NQIndexHashTableattributeCopy(source);
  for (nqLong bucket = 0; bucket < hashTableSize_; ++bucket) {
    const NQIndexHash* entry = source.hashTable_[static_cast<std::size_t>(bucket)];
    for (; entry != nullptr; entry = entry->next) update(entry->key, entry->value);
  }
}

void NQIndexHashTable::NQIndexHashTableattributeCopy(const NQIndexHashTable& source) {
  NQCopyAccess::attributes<NQObject>(*this, source);
  empty();
  errorValue_ = source.errorValue_;
  makeBuckets(source.hashTableSize_, source.divisor_);
}
