// Bitmaps' sizes, row padding and memory.
#include <climits>
#include <cstdint>

#include "tests/graphics/lice/Pixels.h"

namespace {

TEST(MemBitmap, PadsRowsToTheLowestSetBitOfItsAlignment) {
  constexpr int kCases[][3] = {// alignment, width, row span
                               {4, 5, 8}, {4, 8, 8},  {1, 5, 5},    {0, 5, 5},   {-3, 5, 5},
                               {6, 5, 6}, {12, 5, 8}, {16, 17, 32}, {64, 17, 32}};
  for (const auto& [align, width, span] : kCases) {
    EXPECT_EQ(LICE_MemBitmap(width, 2, align).getRowSpan(), span) << align << " " << width;
  }
}

TEST(MemBitmap, KeepsItsMemoryWithinAQuarterOfGrowthAndFreesItAtZero) {
  LICE_MemBitmap b(40, 40);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(b.getBits()) % 64, 0U);
  *b.getBits() = 7;
  EXPECT_FALSE(b.resize(40, 40));
  EXPECT_TRUE(b.resize(40, 50));
  EXPECT_EQ(*b.getBits(), 7U);                  // new memory would be zero
  LICE_FillRect(&b, 0, 0, 40, 50, 0xFFFFFFFF);  // all of it is there
  EXPECT_TRUE(b.resize(0, 50));
  EXPECT_EQ(b.getBits(), nullptr);
  EXPECT_EQ(b.getWidth(), 0);
  EXPECT_EQ(b.getHeight(), 0);
}

TEST(Bitmaps, AreEmptyWhenTheirSizeCannotBeHad) {
  constexpr int kSizes[][2] = {
      {-1, 5}, {5, -1}, {INT_MIN, INT_MIN}, {INT_MAX, INT_MAX}, {INT_MAX, 1}, {1 << 16, 1 << 16}};
  for (const auto& [w, h] : kSizes) {
    LICE_MemBitmap mem(3, 3);
    LICE_SysBitmap sys(3, 3);
    for (LICE_IBitmap* b : {static_cast<LICE_IBitmap*>(&mem), static_cast<LICE_IBitmap*>(&sys)}) {
      EXPECT_TRUE(b->resize(w, h));
      EXPECT_EQ(b->getBits(), nullptr) << w << " " << h;
      EXPECT_EQ(b->getWidth() | b->getHeight(), 0);
      LICE_FillRect(b, 0, 0, 3, 3, 0xFFFFFFFF);
      EXPECT_TRUE(b->resize(7, 2));
      LICE_FillRect(b, 0, 0, 7, 2, 0xFFFFFFFF);
      EXPECT_EQ(PaintedCount(*b), 14);
    }
  }
}

TEST(SysBitmap, MakesANewContextOnlyWhenItIsOutgrown) {
  LICE_SysBitmap b(961, 600);
  EXPECT_EQ(b.getRowSpan(), 964);
  EXPECT_EQ(b.getDC(), b.getBits());
  const LICE_pixel* const before = b.getBits();
  b.resize(200, 100);
  EXPECT_EQ(b.getBits(), before);
  EXPECT_EQ(b.getRowSpan(), 964);
  b.resize(964, 600);
  EXPECT_EQ(b.getBits(), before);
  b.resize(10, 601);
  EXPECT_EQ(b.getRowSpan(), 12);
  EXPECT_EQ(b.getHeight(), 601);
  LICE_FillRect(&b, 0, 0, 10, 601, 0xFFFFFFFF);
  EXPECT_EQ(PaintedCount(b), 6010);
}

}  // namespace
