#include "tests/support/AllocationGuard.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

#include "numeric/AlignedVector.h"

namespace {

void* volatile escape;  // keeps the compiler from dropping a pair of calls

using Counts = std::pair<long, long>;  // allocations and frees

template <class Use>
Counts counts_of(Use use) {
  const AllocationGuard guard;
  use();
  return {guard.allocations(), guard.frees()};
}

template <class T>
T* kept(T* p) {
  escape = p;
  return p;
}

TEST(AllocationGuard, SeesEveryRoadToTheHeap) {
  EXPECT_EQ(counts_of([] { delete kept(new int(1)); }), Counts(1, 1));
  EXPECT_EQ(counts_of([] { free(kept(aligned_alloc(64, 128))); }), Counts(1, 1));
  EXPECT_EQ(counts_of([] { const AlignedVector<float> buffer(100); }), Counts(1, 1));
  EXPECT_EQ(counts_of([] { delete kept(new std::string(1000, 'x')); }), Counts(2, 2));
  EXPECT_GE(counts_of([] { free(kept(realloc(kept(malloc(8)), 100000))); }).first, 2);
}

TEST(AllocationGuard, CountsOnlyItsOwnThread) {
  std::atomic<bool> go = false;
  std::thread other([&go] {
    while (!go) std::this_thread::yield();
    free(kept(malloc(10)));
  });
  const AllocationGuard guard;
  go = true;
  other.join();
  EXPECT_EQ(guard.allocations(), 0);
}

TEST(LockCount, CountsBlockingLocksAndNoTryLocks) {
  std::mutex mutex;
  const LockCount count;
  { const std::lock_guard lock(mutex); }
  EXPECT_EQ(count.locks(), 1);
  { const std::unique_lock lock(mutex, std::try_to_lock); }
  EXPECT_EQ(count.locks(), 1);
}

}  // namespace
