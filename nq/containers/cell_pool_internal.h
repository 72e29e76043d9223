// cell_pool_internal.h -- memory for cells: places of one size, cut from slabs.
//
// CellPool<N>::allocate() gives a place of N bytes, or null when memory is
// exhausted; release() takes one back, on whichever thread. Both cost a few
// instructions. Memory goes back to the system a slab at a time; a thread keeps
// at most one empty slab of each kind. What other threads release goes back when
// its owner next runs out of places, or ends.
//
// How it works
//   A slab is a block of memory aligned to its size: a header, then places.
//   Masking the address of a place finds its slab. A bit for each place tells
//   whether it is free. Places are given out in the order of their addresses,
//   and near the last one that came back: so a list that is filled, or refilled
//   after removals anywhere, runs through memory in one direction.
//
//   Every thread has a heap for each size of place: the slab it takes from, the
//   slabs with room, the full ones, and perhaps an empty one. A slab belongs to
//   the heap that made it, and only that heap's thread touches its counts and
//   links, so none of this is atomic. A place that another thread releases is
//   pushed on the slab's `handover` stack. The owner collects from there when
//   the slab is exhausted, and before it makes a slab it looks at a few of its
//   full ones in turn: so one thread that only allocates beside one that only
//   releases does not grow without bound.
//
//   When a thread ends, its slabs lose their owner. `handover` then counts the
//   places still out, and whoever brings back the last one frees the slab. What
//   is allocated still later, by other destructors of that thread, gets a small
//   slab for itself.

#ifndef NQ_CONTAINERS_CELL_POOL_INTERNAL_H
#define NQ_CONTAINERS_CELL_POOL_INTERNAL_H

#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "nq/core/memory_internal.h"

#if defined(NQ_POISONING)
#define NQ_NO_SANITIZE_ADDRESS __attribute__((no_sanitize("address")))
#else
#define NQ_NO_SANITIZE_ADDRESS
#endif

// Heaps are looked up on every call; in this model that is one addition.
#if defined(__ELF__)
#define NQ_INITIAL_EXEC __attribute__((tls_model("initial-exec")))
#else
#define NQ_INITIAL_EXEC
#endif

class NQTestPeer;

namespace nqdetail {

class CellHeap;

class alignas(64) CellSlab {
 public:
  static constexpr std::size_t kMinPlaceSize = 24;

  static CellSlab* of(void* place) {
    const auto offset = reinterpret_cast<std::uintptr_t>(place) % kAlignment;
    return reinterpret_cast<CellSlab*>(static_cast<char*>(place) - offset);
  }

  bool belongsTo(const CellHeap& heap) const {
    return pOwner_.load(std::memory_order_relaxed) == &heap;
  }

  // For the owner: a free place, or null.
  void* take(std::size_t placeSize) {
    if (free_[word_] == 0 && !findRoom()) return nullptr;
    const std::uint64_t bits = free_[word_];
    free_[word_] = bits & (bits - 1);
    ++used_;
    const std::size_t index =
        word_ * kWordBits + static_cast<std::size_t>(std::countr_zero(bits));
    void* const place = pPlaces() + index * placeSize;
    unpoison(place, placeSize);
    return place;
  }

  // For the owner. True when the heap must look after the slab: it is empty
  // now, or was full.
  bool putBack(void* place, std::size_t placeSize) {
    poison(place, placeSize);
    const std::size_t index =
        static_cast<std::size_t>(static_cast<char*>(place) - pPlaces()) / placeSize;
    word_ = static_cast<std::uint32_t>(index / kWordBits);
    free_[word_] |= std::uint64_t{1} << (index % kWordBits);
    return --used_ == 0 || role_ == Role::kFull;
  }

  // For every other thread.
  void handBack(void* place, std::size_t placeSize) noexcept;

 private:
  friend class CellHeap;
  friend class ::NQTestPeer;

  enum class Role : unsigned char { kCurrent, kRoomy, kFull, kSpare };

  // A slab leaves the allocator room for its own header, so that one slab can
  // follow another. Whoever walks a list then crosses gaps of some 300 bytes,
  // which do not stop the processor from fetching ahead (500 would).
  static constexpr std::size_t kAlignment = std::size_t{32} * 1024;
  static constexpr std::size_t kSize = kAlignment - 16;
  static constexpr std::size_t kWordBits = 64;
  static constexpr std::size_t kWords = kAlignment / kMinPlaceSize / kWordBits + 1;

  // Null when memory is exhausted; at most `maxPlaces` places.
  static CellSlab* make(CellHeap* owner, std::size_t placeSize, std::size_t maxPlaces);
  static void destroy(CellSlab* slab, std::size_t placeSize);
  CellSlab(CellHeap* owner, std::size_t places);

  // An odd number, as no address of a place is.
  static std::uintptr_t ownerless(std::uint32_t placesOut) {
    return std::uintptr_t{placesOut} * 2 + 1;
  }
  char* pPlaces() { return reinterpret_cast<char*>(this + 1); }
  bool findRoom();                      // sets word_; false when all places are out
  void collect(std::size_t placeSize);  // takes what other threads handed back
  // Gives up the slab at the end of the owner's thread.
  void abandon(std::size_t placeSize);

  // Free places are poisoned for the address sanitizer; the links between those
  // that are handed back are reached where it does not look.
  NQ_NO_SANITIZE_ADDRESS static void* nextHandedBack(void* place) {
    return *static_cast<void**>(place);
  }
  NQ_NO_SANITIZE_ADDRESS static void setNextHandedBack(void* place, void* next) {
    *static_cast<void**>(place) = next;
  }

  std::atomic<CellHeap*> pOwner_;  // null when the owner's thread has ended
  std::uint32_t used_ = 0;         // places out, as far as the owner has seen
  std::uint32_t places_;
  std::uint32_t word_ = 0;  // of free_: where the next place is taken
  Role role_ = Role::kCurrent;
  CellSlab* pPrevious_ = nullptr;  // neighbours in the list of the role
  CellSlab* pNext_ = nullptr;

  std::uint64_t free_[kWords] = {};  // a bit for each place

  // With an owner: the top of the stack of places handed back. Without:
  // ownerless(number of places out). Far from what the owner writes often.
  std::atomic<std::uintptr_t> handover_ = 0;
};

// One thread's slabs for places of one size. Needs no destructor of its own:
// the first slab arranges for end() to be called when the thread ends.
class CellHeap {
 public:
  constexpr explicit CellHeap(std::size_t placeSize) : placeSize_(placeSize) {}

  CellSlab* pCurrent() { return pCurrent_; }

  void* allocateSlowly() noexcept;       // when the current slab gives nothing
  void settle(CellSlab* slab) noexcept;  // when putBack() asks for it

 private:
  friend class ::NQTestPeer;
  friend class CellHeapEnd;

  struct SlabList {
    void pushFront(CellSlab* slab, CellSlab::Role role);
    void pushBack(CellSlab* slab, CellSlab::Role role);
    CellSlab* takeFirst();  // null when there is none
    void remove(CellSlab* slab);

    CellSlab* pFirst = nullptr;
    CellSlab* pLast = nullptr;
  };

  void* allocateAfterEnd();
  CellSlab* nextSlab();
  void collectFromFullSlabs();
  void keepOrDestroy(CellSlab* slab);
  void end() noexcept;

  std::size_t placeSize_;
  CellSlab* pCurrent_ = nullptr;
  CellSlab* pSpare_ = nullptr;  // empty; null while the current one is empty
  SlabList roomy_;
  SlabList full_;
  CellHeap* pNextHeap_ = nullptr;  // of this thread
  bool started_ = false;           // end() will be called
  bool ended_ = false;
};

template <std::size_t kPlaceSize>
class CellPool {
  static_assert(kPlaceSize >= CellSlab::kMinPlaceSize &&
                kPlaceSize % alignof(void*) == 0);

 public:
  static void* allocate() noexcept {
    CellSlab* const slab = heap_.pCurrent();
    if (slab != nullptr) {
      void* const place = slab->take(kPlaceSize);
      if (place != nullptr) return place;
    }
    return heap_.allocateSlowly();
  }

  static void release(void* place) noexcept {
    CellSlab* const slab = CellSlab::of(place);
    if (!slab->belongsTo(heap_)) {
      slab->handBack(place, kPlaceSize);
    } else if (slab->putBack(place, kPlaceSize)) {
      heap_.settle(slab);
    }
  }

 private:
  friend class ::NQTestPeer;

  NQ_INITIAL_EXEC static constinit inline thread_local CellHeap heap_{kPlaceSize};
};

// The bodies of the operators new and delete of a class of cells. What is
// derived from it and larger has memory of its own; so has every cell under the
// address sanitizer, which then watches cells as it watches anything else.
#if defined(NQ_POISONING)
inline constexpr bool kPoolCells = false;
#else
inline constexpr bool kPoolCells = true;
#endif

void* allocateUnpooled(std::size_t size) noexcept;
void* allocateUnpooled(std::size_t size, std::align_val_t alignment) noexcept;
void releaseUnpooled(void* memory) noexcept;
void releaseUnpooled(void* memory, std::align_val_t alignment) noexcept;

template <class Cell>
void* allocateCell(std::size_t size) noexcept {
  if (kPoolCells && size == sizeof(Cell)) return CellPool<sizeof(Cell)>::allocate();
  return allocateUnpooled(size);
}

template <class Cell>
void releaseCell(void* place, std::size_t size) noexcept {
  if (!kPoolCells || size != sizeof(Cell)) return releaseUnpooled(place);
  if (place != nullptr) CellPool<sizeof(Cell)>::release(place);
}

}  // namespace nqdetail

// Defines the operators that NQ_CELL_MEMORY declares.
#define NQ_CELL_MEMORY_IMPL(Class)                                                   \
  void* Class::operator new(std::size_t size) noexcept {                             \
    return nqdetail::allocateCell<Class>(size);                                      \
  }                                                                                  \
  void* Class::operator new(std::size_t size, const std::nothrow_t&) noexcept {      \
    return nqdetail::allocateCell<Class>(size);                                      \
  }                                                                                  \
  void* Class::operator new(std::size_t size, std::align_val_t alignment) noexcept { \
    return nqdetail::allocateUnpooled(size, alignment);                              \
  }                                                                                  \
  void* Class::operator new(std::size_t size, std::align_val_t alignment,            \
                            const std::nothrow_t&) noexcept {                        \
    return nqdetail::allocateUnpooled(size, alignment);                              \
  }                                                                                  \
  void Class::operator delete(void* place, std::size_t size) noexcept {              \
    nqdetail::releaseCell<Class>(place, size);                                       \
  }                                                                                  \
  void Class::operator delete(void* place, std::size_t,                              \
                              std::align_val_t alignment) noexcept {                 \
    nqdetail::releaseUnpooled(place, alignment);                                     \
  }

#endif  // NQ_CONTAINERS_CELL_POOL_INTERNAL_H
