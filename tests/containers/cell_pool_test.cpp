#include "nq/containers/cell_pool_internal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <deque>
#include <mutex>
#include <random>
#include <thread>
#include <vector>

#include "nq/containers/dlist.h"
#include "nq/containers/slist.h"
#include "tests/containers/test_peer.h"

using nqdetail::CellPool;

namespace {

// Sizes that nothing else in this program uses.
using Pool = CellPool<48>;
using ThreadedPool = CellPool<56>;
using LatePool = CellPool<72>;

constexpr std::size_t kMany = 20000;  // places of several slabs

template <class P>
std::vector<void*> take(std::size_t count) {
  std::vector<void*> places(count);
  for (void*& place : places) place = P::allocate();
  return places;
}

template <class P>
void giveBack(const std::vector<void*>& places) {
  for (void* const place : places) P::release(place);
}

TEST(CellPool, GivesDistinctPlacesInAscendingOrderAndReusesThem) {
  std::vector<void*> places = take<Pool>(kMany);
  const int slabs = NQTestPeer::slabs<Pool>();
  std::mt19937 random(7);
  for (int round = 0; round < 5; ++round) {
    for (void* const place : places) {
      ASSERT_NE(place, nullptr);
      ASSERT_EQ(reinterpret_cast<std::uintptr_t>(place) % alignof(void*), 0u);
      std::memset(place, round, 48);
    }
    auto sorted = places;
    std::sort(sorted.begin(), sorted.end());
    for (std::size_t i = 1; i < sorted.size(); ++i) {
      ASSERT_GE(static_cast<char*>(sorted[i]) - static_cast<char*>(sorted[i - 1]), 48);
    }
    std::shuffle(places.begin(), places.end(), random);
    const std::size_t half = places.size() / 2;
    for (std::size_t i = 0; i < half; ++i) Pool::release(places[i]);
    for (std::size_t i = 0; i < half; ++i) places[i] = Pool::allocate();
    const auto descents = std::count_if(
        places.begin() + 1, places.begin() + static_cast<std::ptrdiff_t>(half),
        [](void*& place) { return place < (&place)[-1]; });
    EXPECT_LT(descents, 4 * slabs);
    EXPECT_EQ(NQTestPeer::slabs<Pool>(), slabs);
  }
  giveBack<Pool>(places);
  EXPECT_EQ(NQTestPeer::slabs<Pool>(), 1) << "one empty slab is kept";
  void* const first = Pool::allocate();
  Pool::release(first);
  EXPECT_EQ(Pool::allocate(), first);
  Pool::release(first);
}

TEST(CellPool, ReturnsEmptySlabsWhateverTheOrder) {
  std::mt19937 random(8);
  auto places = take<Pool>(kMany);
  std::shuffle(places.begin(), places.end(), random);
  giveBack<Pool>(places);
  EXPECT_EQ(NQTestPeer::slabs<Pool>(), 1);
  // Slabs go as the places do, and going up and down across a border keeps none.
  places = take<Pool>(4000);
  const int slabs = NQTestPeer::slabs<Pool>();
  EXPECT_GE(slabs, 4);
  for (int i = 0; i < 6000; ++i) {
    Pool::release(places.back());
    places.pop_back();
    if (i % 2 == 0) places.push_back(Pool::allocate());
    EXPECT_LE(NQTestPeer::slabs<Pool>(), slabs);
  }
  EXPECT_LE(NQTestPeer::slabs<Pool>(), slabs / 2 + 1);
  giveBack<Pool>(places);
  EXPECT_EQ(NQTestPeer::slabs<Pool>(), 1);
}

#if defined(NQ_POISONING)
TEST(CellPool, PoisonsFreePlaces) {
  std::array<void*, 3> places = {Pool::allocate(), Pool::allocate(), Pool::allocate()};
  const auto poisoned = [](void* place) {
    return __asan_region_is_poisoned(place, 48) == place &&
           __asan_address_is_poisoned(static_cast<char*>(place) + 47);
  };
  for (void* const place : places) {
    EXPECT_FALSE(poisoned(place));
    Pool::release(place);
    EXPECT_TRUE(poisoned(place));
  }
  void* const again = Pool::allocate();
  EXPECT_EQ(__asan_region_is_poisoned(again, 48), nullptr);
  std::thread([again] { Pool::release(again); }).join();
  EXPECT_TRUE(poisoned(again));
}
#endif

TEST(CellPool, TakesBackWhatOtherThreadsRelease) {
  const auto places = take<ThreadedPool>(kMany);
  const int slabs = NQTestPeer::slabs<ThreadedPool>();
  // Each slab is shared by two threads and this one.
  const auto releaseEvery = [&](std::size_t start, std::size_t end) {
    for (std::size_t i = start; i < end; i += 3) ThreadedPool::release(places[i]);
  };
  std::thread a(releaseEvery, 0, kMany);
  std::thread b(releaseEvery, 1, kMany);
  releaseEvery(2, kMany);
  a.join();
  b.join();
  const auto again = take<ThreadedPool>(kMany);
  EXPECT_LE(NQTestPeer::slabs<ThreadedPool>(), slabs + 1);
  giveBack<ThreadedPool>(again);
}

// One thread allocates, another releases: the first must find the room again.
TEST(CellPool, DoesNotGrowBetweenAProducerAndAConsumer) {
  std::mutex mutex;
  std::condition_variable changed;
  std::deque<std::vector<void*>> queue;
  bool done = false;
  int mostSlabs = 0;
  std::thread consumer([&] {
    std::unique_lock lock(mutex);
    while (true) {
      changed.wait(lock, [&] { return done || !queue.empty(); });
      if (queue.empty()) return;
      const auto batch = std::move(queue.front());
      queue.pop_front();
      changed.notify_all();
      lock.unlock();
      giveBack<ThreadedPool>(batch);
      lock.lock();
    }
  });
  std::thread producer([&] {
    for (int i = 0; i < 400; ++i) {
      auto batch = take<ThreadedPool>(1000);
      mostSlabs = std::max(mostSlabs, NQTestPeer::slabs<ThreadedPool>());
      std::unique_lock lock(mutex);
      changed.wait(lock, [&] { return queue.size() < 4; });
      queue.push_back(std::move(batch));
      changed.notify_all();
    }
    const std::lock_guard lock(mutex);
    done = true;
    changed.notify_all();
  });
  producer.join();
  consumer.join();
  // 6000 places out at most, in slabs of some 600; 400,000 in all.
  EXPECT_LE(mostSlabs, 40);
}

// The address sanitizer's leak check sees whether slabs of ended threads go.
TEST(CellPool, OutlivesTheThreadThatMadeASlab) {
  std::vector<void*> places;
  std::thread([&] {
    places = take<ThreadedPool>(kMany);
    for (std::size_t i = 0; i < kMany; i += 2) ThreadedPool::release(places[i]);
  }).join();
  EXPECT_FALSE(NQTestPeer::isOwned(places[1]));
  std::vector<void*> halves[2];
  for (std::size_t i = 1; i < kMany; i += 2) halves[i / 2 % 2].push_back(places[i]);
  for (void* const place : halves[0]) std::memset(place, 1, 56);
  std::thread other([&] { giveBack<ThreadedPool>(halves[1]); });
  giveBack<ThreadedPool>(halves[0]);
  other.join();
}

// Threads end while others release what they made.
TEST(CellPool, EndsThreadsWhileOthersRelease) {
  for (int round = 0; round < 50; ++round) {
    std::array<std::atomic<void*>, 3000> slots = {};
    std::thread maker([&] {
      for (auto& slot : slots)
        slot.store(ThreadedPool::allocate(), std::memory_order_release);
    });
    for (auto& slot : slots) {
      void* place = nullptr;
      while (place == nullptr) {
        place = slot.load(std::memory_order_acquire);
        if (place == nullptr) std::this_thread::yield();
      }
      ThreadedPool::release(place);
    }
    maker.join();
  }
}

// Destroyed after the thread's heap has ended, since it was made before that
// heap; it then allocates and releases.
struct LateUser {
  ~LateUser() {
    LatePool::release(place);
    std::array<void*, 10> more = {};
    for (void*& each : more) each = LatePool::allocate();
    for (void* const each : more) {
      std::memset(each, 2, 72);
      LatePool::release(each);
    }
    survivor = LatePool::allocate();
    ++ended;
  }
  void* place = nullptr;

  static inline std::atomic<void*> survivor = nullptr;
  static inline std::atomic<int> ended = 0;
};

TEST(CellPool, ServesDestructorsThatRunAtTheEndOfAThread) {
  std::thread([] {
    static thread_local LateUser user;
    user.place = LatePool::allocate();
  }).join();
  EXPECT_EQ(LateUser::ended, 1);
  ASSERT_NE(LateUser::survivor, nullptr);
  EXPECT_FALSE(NQTestPeer::isOwned(LateUser::survivor));
  LatePool::release(LateUser::survivor.exchange(nullptr));
}

// Lists handed between threads, with the cells of one slab in lists of two.
TEST(CellPool, LetsThreadsUseListsOfTheirOwn) {
  static NQObject objects[4];
  constexpr int kCells = 20000;
  NQDList lists[2];
  NQSList small;
  for (int i = 0; i < kCells; ++i) {
    lists[i % 2].appendObject(&objects[i % 2]);
    small.appendObject(&objects[2]);
  }
  const auto churn = [](NQDList& list, NQObject* own) {
    for (int i = 0; i < kCells; ++i) {
      list.discardCell(list.pFirstCell());
      list.appendObject(own);
    }
  };
  std::thread a(churn, std::ref(lists[0]), &objects[0]);
  std::thread b(churn, std::ref(lists[1]), &objects[1]);
  std::thread c([&] { small.deleteAllCells(); });
  a.join();
  b.join();
  c.join();
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(lists[i].length(), kCells / 2);
    EXPECT_TRUE(
        std::ranges::all_of(lists[i], [&](NQObject* o) { return o == &objects[i]; }));
  }
}

}  // namespace
