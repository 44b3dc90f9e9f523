#include "tests/support/AllocationGuard.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <atomic>
#include <mutex>
#include <string>
#include <thread>

#include "numeric/AlignedVector.h"

namespace {

void* volatile escape;  // keeps the compiler from dropping a pair of calls

TEST(AllocationGuard, SeesEveryRoadToTheHeap) {
  const AllocationGuard guard;
  escape = new int(1);
  EXPECT_EQ(guard.allocations(), 1);
  delete static_cast<int*>(escape);
  EXPECT_EQ(guard.frees(), 1);
  escape = malloc(8);
  escape = realloc(escape, 100000);
  EXPECT_GE(guard.allocations(), 3);
  free(escape);
  const AllocationGuard aligned;
  { const AlignedVector<float> buffer(100); }
  EXPECT_EQ(aligned.allocations(), 1);
  EXPECT_EQ(aligned.frees(), 1);
  const AllocationGuard over_aligned;
  escape = aligned_alloc(64, 128);
  EXPECT_EQ(over_aligned.allocations(), 1);
  free(escape);
  EXPECT_EQ(over_aligned.frees(), 1);
  const AllocationGuard in_library;
  escape = new std::string(1000, 'x');
  EXPECT_EQ(in_library.allocations(), 2);
  delete static_cast<std::string*>(escape);
  EXPECT_EQ(in_library.frees(), 2);
}

TEST(AllocationGuard, CountsOnlyItsOwnThread) {
  std::atomic<bool> go = false;
  std::thread other([&go] {
    while (!go) std::this_thread::yield();
    escape = malloc(10);
    free(escape);
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
