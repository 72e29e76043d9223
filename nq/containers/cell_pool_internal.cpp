#include "nq/containers/cell_pool_internal.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <utility>

#if defined(_WIN32)
#include <malloc.h>
#endif

namespace nqdetail {

namespace {

// How many full slabs are looked through before a new one is made.
constexpr int kFullSlabsToTry = 8;

#if defined(_WIN32)
void* alignedMemory(std::size_t size, std::size_t alignment) {
  return _aligned_malloc(size, alignment);
}
void freeAlignedMemory(void* memory) {
  _aligned_free(memory);
}
#else
void* alignedMemory(std::size_t size, std::size_t alignment) {
  void* memory = nullptr;
  return posix_memalign(&memory, alignment, size) == 0 ? memory : nullptr;
}
void freeAlignedMemory(void* memory) {
  std::free(memory);
}
#endif

}  // namespace

// ---- CellSlab

CellSlab* CellSlab::make(CellHeap* owner, std::size_t placeSize, std::size_t maxPlaces) {
  const std::size_t room = kSize - sizeof(CellSlab);
  const std::size_t places = std::min(room / placeSize, maxPlaces);
  void* const memory = alignedMemory(
      places < maxPlaces ? kSize : sizeof(CellSlab) + places * placeSize, kAlignment);
  if (memory == nullptr) return nullptr;
  auto* const slab = new (memory) CellSlab(owner, places);
  poison(slab->pPlaces(), places * placeSize);
  return slab;
}

CellSlab::CellSlab(CellHeap* owner, std::size_t places)
    : pOwner_(owner), places_(static_cast<std::uint32_t>(places)) {
  std::fill_n(free_, places / kWordBits, ~std::uint64_t{0});
  free_[places / kWordBits] = (std::uint64_t{1} << (places % kWordBits)) - 1;
}

void CellSlab::destroy(CellSlab* slab, std::size_t placeSize) {
  if (slab == nullptr) return;
  unpoison(slab->pPlaces(), slab->places_ * placeSize);
  slab->~CellSlab();
  freeAlignedMemory(slab);
}

bool CellSlab::findRoom() {
  if (used_ == places_) return false;
  while (free_[word_] == 0) word_ = word_ + 1 == kWords ? 0 : word_ + 1;
  return true;
}

void CellSlab::handBack(void* place, std::size_t placeSize) noexcept {
  poison(place, placeSize);
  std::uintptr_t state = handover_.load(std::memory_order_relaxed);
  std::uintptr_t next = 0;
  do {
    if (state % 2 == 0) {
      setNextHandedBack(place, reinterpret_cast<void*>(state));
      next = reinterpret_cast<std::uintptr_t>(place);
    } else {
      next = state - (ownerless(1) - ownerless(0));
    }
    // Whoever collects the place, or frees the slab, must see what this thread
    // and those before it did with their places.
  } while (!handover_.compare_exchange_weak(state, next, std::memory_order_acq_rel,
                                            std::memory_order_relaxed));
  if (next == ownerless(0)) destroy(this, placeSize);
}

void CellSlab::collect(std::size_t placeSize) {
  if (handover_.load(std::memory_order_relaxed) == 0) return;
  auto* place = reinterpret_cast<void*>(handover_.exchange(0, std::memory_order_acquire));
  while (place != nullptr) {
    void* const next = nextHandedBack(place);
    (void)putBack(place, placeSize);
    place = next;
  }
}

void CellSlab::abandon(std::size_t placeSize) {
  pOwner_.store(nullptr, std::memory_order_relaxed);
  std::uintptr_t nothing = 0;
  do {
    nothing = 0;
    collect(placeSize);
    if (used_ == 0) return destroy(this, placeSize);
  } while (!handover_.compare_exchange_weak(
      nothing, ownerless(used_), std::memory_order_release, std::memory_order_relaxed));
}

// ---- CellHeap

// Ends the heaps of a thread together with it.
class CellHeapEnd {
 public:
  ~CellHeapEnd() {
    for (CellHeap* heap = pFirstHeap_; heap != nullptr; heap = heap->pNextHeap_) {
      heap->end();
    }
  }
  static void watch(CellHeap* heap) {
    static thread_local CellHeapEnd end;
    heap->pNextHeap_ = end.pFirstHeap_;
    end.pFirstHeap_ = heap;
  }

 private:
  CellHeap* pFirstHeap_ = nullptr;
};

void CellHeap::SlabList::pushFront(CellSlab* slab, CellSlab::Role role) {
  slab->role_ = role;
  slab->pPrevious_ = nullptr;
  slab->pNext_ = pFirst;
  (pFirst == nullptr ? pLast : pFirst->pPrevious_) = slab;
  pFirst = slab;
}

void CellHeap::SlabList::pushBack(CellSlab* slab, CellSlab::Role role) {
  slab->role_ = role;
  slab->pPrevious_ = pLast;
  slab->pNext_ = nullptr;
  (pLast == nullptr ? pFirst : pLast->pNext_) = slab;
  pLast = slab;
}

CellSlab* CellHeap::SlabList::takeFirst() {
  CellSlab* const slab = pFirst;
  if (slab == nullptr) return nullptr;
  pFirst = slab->pNext_;
  (pFirst == nullptr ? pLast : pFirst->pPrevious_) = nullptr;
  return slab;
}

void CellHeap::SlabList::remove(CellSlab* slab) {
  (slab->pPrevious_ == nullptr ? pFirst : slab->pPrevious_->pNext_) = slab->pNext_;
  (slab->pNext_ == nullptr ? pLast : slab->pNext_->pPrevious_) = slab->pPrevious_;
}

void* CellHeap::allocateSlowly() noexcept {
  if (ended_) return allocateAfterEnd();
  if (!started_) {
    CellHeapEnd::watch(this);
    started_ = true;
  }
  if (pCurrent_ != nullptr) {
    pCurrent_->collect(placeSize_);
    if (void* const place = pCurrent_->take(placeSize_)) return place;
    full_.pushBack(pCurrent_, CellSlab::Role::kFull);
    pCurrent_ = nullptr;
  }
  pCurrent_ = nextSlab();
  return pCurrent_ == nullptr ? nullptr : pCurrent_->take(placeSize_);
}

void* CellHeap::allocateAfterEnd() {
  CellSlab* const slab = CellSlab::make(nullptr, placeSize_, 1);
  if (slab == nullptr) return nullptr;
  slab->handover_.store(CellSlab::ownerless(1), std::memory_order_relaxed);
  return slab->take(placeSize_);
}

// A slab with room that is in no list any more, or null.
CellSlab* CellHeap::nextSlab() {
  if (roomy_.pFirst == nullptr) collectFromFullSlabs();
  CellSlab* slab = roomy_.takeFirst();
  if (slab == nullptr) slab = std::exchange(pSpare_, nullptr);
  if (slab == nullptr) slab = CellSlab::make(this, placeSize_, CellSlab::kAlignment);
  if (slab != nullptr) slab->role_ = CellSlab::Role::kCurrent;
  return slab;
}

void CellHeap::collectFromFullSlabs() {
  for (int tries = 0; tries < kFullSlabsToTry; ++tries) {
    CellSlab* const slab = full_.takeFirst();
    if (slab == nullptr) return;
    slab->collect(placeSize_);
    if (slab->used_ == slab->places_) {
      full_.pushBack(slab, CellSlab::Role::kFull);
    } else {
      keepOrDestroy(slab);
    }
  }
}

void CellHeap::settle(CellSlab* slab) noexcept {
  const bool empty = slab->used_ == 0;
  if (slab == pCurrent_) {
    if (empty) {
      CellSlab::destroy(pSpare_, placeSize_);
      pSpare_ = nullptr;
    }
  } else if (slab->role_ == CellSlab::Role::kFull) {
    full_.remove(slab);
    keepOrDestroy(slab);
  } else if (empty) {
    roomy_.remove(slab);
    keepOrDestroy(slab);
  }
}

// Takes in a slab that has room and is in no list.
void CellHeap::keepOrDestroy(CellSlab* slab) {
  if (slab->used_ != 0) {
    roomy_.pushFront(slab, CellSlab::Role::kRoomy);
  } else if (pSpare_ == nullptr && (pCurrent_ == nullptr || pCurrent_->used_ != 0)) {
    pSpare_ = slab;
    slab->role_ = CellSlab::Role::kSpare;
  } else {
    CellSlab::destroy(slab, placeSize_);
  }
}

void CellHeap::end() noexcept {
  ended_ = true;
  if (pCurrent_ != nullptr) pCurrent_->abandon(placeSize_);
  CellSlab::destroy(pSpare_, placeSize_);
  pCurrent_ = pSpare_ = nullptr;
  for (SlabList* list : {&roomy_, &full_}) {
    while (CellSlab* const slab = list->takeFirst()) slab->abandon(placeSize_);
  }
}

// ---- Memory beside the pool

void* allocateUnpooled(std::size_t size) noexcept {
  return ::operator new(size, std::nothrow);
}

void* allocateUnpooled(std::size_t size, std::align_val_t alignment) noexcept {
  return ::operator new(size, alignment, std::nothrow);
}

void releaseUnpooled(void* memory) noexcept {
  ::operator delete(memory);
}

void releaseUnpooled(void* memory, std::align_val_t alignment) noexcept {
  ::operator delete(memory, alignment);
}

}  // namespace nqdetail
