// memory_internal.h -- storage for many small things that are freed together.
//
// Arena hands out pieces of any size; BlockArray holds elements of one type that
// are also reached by number. Neither moves what it has handed out. What they
// hold in reserve is poisoned for the address sanitizer, which so finds a stray
// access as it would in separate allocations.
//
// Nothing here throws: null or false means that memory is exhausted.

#ifndef NQ_CORE_MEMORY_INTERNAL_H
#define NQ_CORE_MEMORY_INTERNAL_H

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <type_traits>

#include "nq/platform/system_internal.h"
#include "nq/platform/types.h"

#if defined(__SANITIZE_ADDRESS__)
#define NQ_POISONING 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define NQ_POISONING 1
#endif
#endif

#if defined(NQ_POISONING)
#include <sanitizer/asan_interface.h>
#endif

namespace nqdetail {

#if defined(NQ_POISONING)
inline constexpr std::size_t kPoisonUnit = 8;  // poison begins at multiples of it
inline void poison(const void* start, std::size_t count) {
  // Hides where the memory comes from: compilers take the call for a read of it.
  __asm__("" : "+r"(start));
  __asan_poison_memory_region(start, count);
}
inline void unpoison(const void* start, std::size_t count) {
  __asan_unpoison_memory_region(start, count);
}
#else
inline constexpr std::size_t kPoisonUnit = 0;
inline void poison(const void*, std::size_t) {}
inline void unpoison(const void*, std::size_t) {}
#endif

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};

// An owned array from the C heap, for elements that need no constructor.
template <class T>
using HeapArray = std::unique_ptr<T[], Free>;

// Gives `array` room for `count` elements. What fits of its contents stays, the
// rest is uninitialised; when false, the array is as it was.
template <class T>
bool resize(HeapArray<T>& array, std::size_t count) {
  static_assert(std::is_trivially_copyable_v<T>);
  if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) return false;
  const std::size_t bytes = std::max<std::size_t>(count, 1) * sizeof(T);
  void* const moved = std::realloc(static_cast<void*>(array.get()), bytes);
  if (moved == nullptr) return false;
  (void)array.release();
  array.reset(static_cast<T*>(moved));
  return true;
}

class Arena {
 public:
  static constexpr std::size_t kAlignment = std::max<std::size_t>(4, kPoisonUnit);

  Arena() = default;
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;
  ~Arena() {
    while (blocks_ != nullptr) {
      Block* const block = blocks_;
      blocks_ = block->next;
      unpoison(block, block->size);
      std::free(block);
    }
  }

  // `size` bytes (less than half the address space) at a multiple of kAlignment.
  void* allocate(std::size_t size) {
    const std::size_t step = (size + kPoisonUnit + kAlignment - 1) & ~(kAlignment - 1);
    char* piece = free_;
    if (step <= left_) {
      free_ += step;
      left_ -= step;
    } else {
      piece = allocateFromNewBlock(step);
      if (piece == nullptr) return nullptr;
    }
    unpoison(piece, size);
    return piece;
  }

 private:
  struct Block {
    Block* next;
    std::size_t size;  // with this header
  };
  static constexpr std::size_t kFirstBlock = 1024;
  static constexpr std::size_t kLargestBlock = std::size_t{1024} * 1024;
  static constexpr std::size_t kLargestPiece = std::size_t{16} * 1024;

  char* allocateFromNewBlock(std::size_t step) {
    // A large piece gets a block of its own, and the current one stays in use.
    const bool large = step > kLargestPiece;
    const std::size_t room = large ? step : std::max(step, nextBlock_);
    auto* const block = static_cast<Block*>(std::malloc(sizeof(Block) + room));
    if (block == nullptr) return nullptr;
    *block = {blocks_, sizeof(Block) + room};
    blocks_ = block;
    // An arena that came so far will fill this one too.
    if (room == kLargestBlock) prepareMemory(block, block->size);
    auto* const start = reinterpret_cast<char*>(block + 1);
    poison(start, room);
    if (!large) {
      free_ = start + step;
      left_ = room - step;
      nextBlock_ = std::min(2 * nextBlock_, kLargestBlock);
    }
    return start;
  }

  Block* blocks_ = nullptr;
  char* free_ = nullptr;  // the unused rest of the block in use, left_ bytes
  std::size_t left_ = 0;
  std::size_t nextBlock_ = kFirstBlock;
};

template <class T>
class BlockArray {
  static_assert(std::is_trivially_copyable_v<T> && sizeof(T) % 8 == 0);

 public:
  BlockArray() = default;
  BlockArray(const BlockArray&) = delete;
  BlockArray& operator=(const BlockArray&) = delete;
  ~BlockArray() {
    for (unsigned block = 0; block < blocks_.size() && blocks_[block] != nullptr;
         ++block) {
      unpoison(blocks_[block].get(), sizeOfBlock(block) * sizeof(T));
    }
  }

  nqLong size() const { return size_; }
  T& operator[](nqLong number) const {
    const std::size_t place = static_cast<std::size_t>(number) + kFirstBlock;
    const auto block = static_cast<unsigned>(std::bit_width(place / kFirstBlock)) - 1;
    return blocks_[block][place - sizeOfBlock(block)];
  }

  // Where the copy of `element` is kept; null also when no more have a number.
  T* append(const T& element) {
    if (next_ == end_ && !addBlock()) return nullptr;
    unpoison(next_, sizeof(T));
    *next_ = element;
    ++size_;
    return next_++;
  }

 private:
  static constexpr std::size_t kFirstBlock = 32;
  static constexpr std::size_t sizeOfBlock(unsigned block) {
    return kFirstBlock << block;
  }

  bool addBlock() {
    if (used_ == blocks_.size()) return false;
    const std::size_t room = sizeOfBlock(used_);
    if (!resize(blocks_[used_], room)) return false;
    next_ = blocks_[used_++].get();
    end_ = next_ + room;
    poison(next_, room * sizeof(T));
    return true;
  }

  // Each block is twice as large as the one before it: 2^31 - 32 elements in all,
  // so that every number is an nqLong.
  std::array<HeapArray<T>, 26> blocks_;
  unsigned used_ = 0;
  nqLong size_ = 0;
  T* next_ = nullptr;  // the unused rest of the last block
  T* end_ = nullptr;
};

}  // namespace nqdetail

#endif  // NQ_CORE_MEMORY_INTERNAL_H
