#include "numeric/AlignedVector.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <memory>
#include <vector>

namespace {

double resident_mib() {
  std::ifstream file("/proc/self/statm");
  double total = 0.0, resident = 0.0;
  file >> total >> resident;
  return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1 << 20);
}

TEST(AlignedVector, LargeBlocksLeaveNoMemoryInTheHeap) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "the sanitizer has a heap of its own";
#endif
  constexpr std::size_t kFloats = 1 << 20;  // 4 MiB
  AlignedVector<float>(kFloats, 1.0F);      // from now on blocks of this size come from the heap
  std::vector<AlignedVector<float>> blocks(8);
  for (auto& block : blocks) block.assign(kFloats, 1.0F);
  const auto end_of_heap = std::make_unique<std::vector<char>>(50000);  // keeps it from shrinking
  const double before = resident_mib();
  blocks.clear();
  EXPECT_LT(resident_mib(), before - 28.0);
}

}  // namespace
