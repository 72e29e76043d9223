// hash_internal.h -- seeded hashing, and the index that turns hashes into codes.
//
// Every index draws a seed of its own, so that nobody outside the program can
// choose texts or keys that meet in it. Words are mixed by multiplying 64 by 64
// bits and folding the two halves of the product (Wang Yi, "wyhash"); every
// factor depends on the seed, so that no input is neutral for all seeds.

#ifndef NQ_CORE_HASH_INTERNAL_H
#define NQ_CORE_HASH_INTERNAL_H

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "nq/core/memory_internal.h"
#include "nq/platform/types.h"

namespace nqdetail {

struct WideProduct {
  std::uint64_t low;
  std::uint64_t high;
};

inline WideProduct multiply(std::uint64_t a, std::uint64_t b) {
  __extension__ using Wide = unsigned __int128;
  const Wide product = Wide{a} * b;
  return {static_cast<std::uint64_t>(product), static_cast<std::uint64_t>(product >> 64)};
}

inline std::uint64_t mix(std::uint64_t a, std::uint64_t b) {
  const WideProduct product = multiply(a, b);
  return product.low ^ product.high;
}

struct HashSeed {
  std::uint64_t first;
  std::uint64_t second;
};

// A seed from what an outsider cannot know: the clock, and where the system has
// put the program and `owner`.
inline HashSeed newHashSeed(const void* owner) {
  static const char kInProgram = 0;
  const auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
  const auto address = [](const void* place) {
    return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(place));
  };
  const std::uint64_t time = static_cast<std::uint64_t>(ticks) * 0x9e3779b97f4a7c15U;
  const std::uint64_t heap = address(owner) ^ 0xd6e8feb86659fd93U;
  const std::uint64_t program = address(&kInProgram) ^ 0xa0761d6478bd642fU;
  const std::uint64_t first = mix(time ^ heap, program);
  return {first, mix(time + first, heap ^ (program << 16)) | 1};
}

inline std::uint32_t hashKey(nqInt64 key, const HashSeed& seed) {
  return static_cast<std::uint32_t>(
      mix(static_cast<std::uint64_t>(key) ^ seed.first, seed.second));
}

// Eight characters at a time, with the letters a to z made upper case.
inline std::uint64_t upperCase(std::uint64_t characters) {
  constexpr std::uint64_t kOnes = 0x0101010101010101U;
  constexpr std::uint64_t kTopBits = 0x80 * kOnes;
  const std::uint64_t low = characters & ~kTopBits;
  const std::uint64_t fromA = low + (0x80 - 'a') * kOnes;
  const std::uint64_t pastZ = low + (0x80 - 'z' - 1) * kOnes;
  const std::uint64_t lowerCase = fromA & ~pastZ & ~characters & kTopBits;
  return characters ^ (lowerCase >> 2);
}

inline void makeUpperCase(char* text, std::size_t length) {
  std::size_t at = 0;
  for (std::uint64_t word; length - at >= sizeof word; at += sizeof word) {
    std::memcpy(&word, text + at, sizeof word);
    word = upperCase(word);
    std::memcpy(text + at, &word, sizeof word);
  }
  for (; at < length; ++at) {
    if (text[at] >= 'a' && text[at] <= 'z')
      text[at] = static_cast<char>(text[at] & ~0x20);
  }
}

// The characters of a text as words. A text is covered by words that may
// overlap, so that nothing outside it is read.
template <bool kUpperCase>
struct TextWords {
  static std::uint64_t eight(const char* text) {
    std::uint64_t word;
    std::memcpy(&word, text, sizeof word);
    return kUpperCase ? upperCase(word) : word;
  }
  // A whole text of fewer than eight characters.
  static std::uint64_t few(const char* text, std::size_t length) {
    std::uint64_t word = 0;
    if (length >= 4) {
      std::uint32_t head;
      std::uint32_t tail;
      std::memcpy(&head, text, sizeof head);
      std::memcpy(&tail, text + length - 4, sizeof tail);
      word = std::uint64_t{head} << 32 | tail;
    } else if (length > 0) {
      const auto at = [text](std::size_t place) {
        return std::uint64_t{static_cast<unsigned char>(text[place])};
      };
      word = at(0) << 16 | at(length / 2) << 8 | at(length - 1);
    }
    return kUpperCase ? upperCase(word) : word;
  }
};

template <bool kUpperCase>
std::uint32_t hashText(const char* text, std::size_t length, const HashSeed& seed) {
  using Words = TextWords<kUpperCase>;
  std::uint64_t state = seed.first;
  std::uint64_t a;
  std::uint64_t b;
  if (length < 8) {
    a = Words::few(text, length);
    b = 0;
  } else if (length <= 16) {
    a = Words::eight(text);
    b = Words::eight(text + length - 8);
  } else {
    const char* const last = text + length - 16;
    for (; text < last; text += 16) {
      state = mix(Words::eight(text) ^ seed.second, Words::eight(text + 8) ^ state);
    }
    a = Words::eight(last);
    b = Words::eight(last + 8);
  }
  const WideProduct product = multiply(a ^ seed.second, b ^ state);
  return static_cast<std::uint32_t>(
      mix(product.low ^ seed.first ^ length, product.high ^ seed.second));
}

// Whether `text`, made upper case if so wished, is `stored`, of the same length.
template <bool kUpperCase>
bool equalsText(const char* text, const char* stored, std::size_t length) {
  using Words = TextWords<kUpperCase>;
  using StoredWords = TextWords<false>;
  if (length < 8) return Words::few(text, length) == StoredWords::few(stored, length);
  const std::size_t last = length - 8;
  for (std::size_t at = 0; at < last; at += 8) {
    if (Words::eight(text + at) != StoredWords::eight(stored + at)) return false;
  }
  return Words::eight(text + last) == StoredWords::eight(stored + last);
}

// Finds codes (0 to 2^31 - 2) by the hashes of what they stand for. Open
// addressing with linear probing, at most half full; growing needs the hashes
// alone, which are kept beside the codes.
class HashIndex {
 public:
  explicit HashIndex(const void* owner) : seed_(newHashSeed(owner)) {}

  const HashSeed& seed() const { return seed_; }

  // The code filed under `hash` for which matches(code) holds, or -1.
  template <class Matches>
  nqLong find(std::uint32_t hash, Matches matches) const {
    if (slots_ == nullptr) return -1;
    for (std::size_t place = hash & mask_;; place = (place + 1) & mask_) {
      const Slot slot = slots_[place];
      if (slot.code < 0) return -1;
      if (slot.hash == hash && matches(slot.code)) return slot.code;
    }
  }

  // Makes room for `count` codes in all; false when memory is exhausted.
  bool reserve(std::size_t count) {
    return 2 * count <= capacity() || rebuild(std::bit_ceil(2 * count));
  }

  // Files a code that is not there yet; there must be room.
  void insert(std::uint32_t hash, nqLong code) {
    std::size_t place = hash & mask_;
    while (slots_[place].code >= 0) place = (place + 1) & mask_;
    slots_[place] = {hash, code};
  }

 private:
  struct Slot {
    std::uint32_t hash;
    nqLong code;  // -1 in an empty slot
  };
  static constexpr std::size_t kFewestSlots = 16;

  std::size_t capacity() const { return slots_ == nullptr ? 0 : mask_ + 1; }

  bool rebuild(std::size_t slots) {
    slots = std::max(slots, kFewestSlots);
    HeapArray<Slot> old;
    if (!resize(old, slots)) return false;
    const std::size_t oldCapacity = capacity();
    old.swap(slots_);
    mask_ = slots - 1;
    std::fill_n(slots_.get(), slots, Slot{0, -1});
    for (std::size_t place = 0; place < oldCapacity; ++place) {
      if (old[place].code >= 0) insert(old[place].hash, old[place].code);
    }
    return true;
  }

  HeapArray<Slot> slots_;  // a power of two of them, or none
  std::size_t mask_ = 0;   // their number less one
  HashSeed seed_;
};

}  // namespace nqdetail

#endif  // NQ_CORE_HASH_INTERNAL_H
