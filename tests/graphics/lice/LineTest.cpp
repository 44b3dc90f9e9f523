// Lines against the ideal line rounded pixel by pixel.
#include <climits>
#include <cmath>
#include <limits>

#include "tests/graphics/lice/Pixels.h"

namespace {

constexpr LICE_pixel kWhite = 0xFFFFFFFF;
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

void SharpLine(LICE_IBitmap& b, float x1, float y1, float x2, float y2, LICE_pixel color = kWhite,
               int mode = LICE_BLIT_MODE_COPY) {
  LICE_Line(&b, x1, y1, x2, y2, color, 1.0f, mode, false);
}

// The pixel at `major` of a line that starts at (m0, n0) and runs up the major axis: the nearest,
// halves away from n0. Exact: long double holds 64 bits.
std::int64_t MinorAt(std::int64_t major, std::int64_t m0, std::int64_t n0, std::int64_t dm,
                     std::int64_t dn) {
  const auto moved = std::floor(static_cast<long double>(2 * (major - m0) * std::abs(dn) + dm) /
                                static_cast<long double>(2 * dm));
  return n0 + (dn < 0 ? -1 : 1) * static_cast<std::int64_t>(moved);
}

std::vector<bool> ReferenceLine(int w, int h, std::int64_t x1, std::int64_t y1, std::int64_t x2,
                                std::int64_t y2) {
  std::vector<bool> pixels(static_cast<std::size_t>(w * h));
  const bool steep = std::abs(y2 - y1) > std::abs(x2 - x1);
  if (steep ? y1 > y2 : x1 > x2) {
    std::swap(x1, x2);
    std::swap(y1, y2);
  }
  for (std::int64_t y = 0; y < h; ++y) {
    for (std::int64_t x = 0; x < w; ++x) {
      bool on = x == x1 && y == y1;
      if (steep && y >= y1 && y <= y2) on = x == MinorAt(y, y1, x1, y2 - y1, x2 - x1);
      if (!steep && x2 > x1 && x >= x1 && x <= x2) on = y == MinorAt(x, x1, y1, x2 - x1, y2 - y1);
      pixels[static_cast<std::size_t>(y * w + x)] = on;
    }
  }
  return pixels;
}

TEST(SharpLine, TakesTheNearestPixelsOnceWhateverTheDistanceOfItsEnds) {
  constexpr int kReaches[] = {12, 40, 1000, 1 << 20, 1 << 29};
  constexpr int kModes[] = {LICE_BLIT_MODE_COPY, LICE_BLIT_MODE_ADD | LICE_BLIT_USE_ALPHA};
  for (int seed = 0; seed < 5000; ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    const int w = random.integer(1, 30), h = random.integer(1, 20);
    const int reach = kReaches[random.integer(0, 4)], mode = kModes[random.integer(0, 1)];
    // Whole numbers that a float holds.
    const auto coordinate = [&](int size) {
      return static_cast<float>(random.integer(0, 2) ? random.integer(-reach, reach)
                                                     : random.integer(0, size - 1));
    };
    const float x1 = coordinate(w), y1 = coordinate(h), y2 = coordinate(h);
    const float x2 = random.integer(0, 3) ? coordinate(w) : x1;
    const LICE_pixel color = RandomPixel(random);
    LICE_MemBitmap expected(w, h), there(w, h);
    FlippedBitmap back(w, h);
    Randomise(expected, random);
    LICE_Blit(&there, &expected, 0, 0, 0, 0, w, h, 1.0f, LICE_BLIT_MODE_COPY);
    LICE_Blit(&back, &expected, 0, 0, 0, 0, w, h, 1.0f, LICE_BLIT_MODE_COPY);
    const auto line =
        ReferenceLine(w, h, std::lrint(x1), std::lrint(y1), std::lrint(x2), std::lrint(y2));
    for (int i = 0; i < w * h; ++i) {
      if (line[static_cast<std::size_t>(i)])
        LICE_PutPixel(&expected, i % w, i / w, color, 1.0f, mode);
    }
    SharpLine(there, x1, y1, x2, y2, color, mode);
    SharpLine(back, x2, y2, x1, y1, color, mode);
    ASSERT_TRUE(SameScreen(there, Screen(expected)))
        << "seed " << seed << ": " << x1 << " " << y1 << " " << x2 << " " << y2;
    ASSERT_TRUE(SameScreen(back, Screen(expected))) << "seed " << seed << ", backward";
  }
}

TEST(SharpLine, RoundsItsEndsDownToWholePixels) {
  LICE_MemBitmap b(8, 8);
  SharpLine(b, 2.9f, 1.0f, 2.1f, 4.99f);
  SharpLine(b, -0.5f, 6.0f, -0.1f, 7.0f);
  EXPECT_EQ(PaintedCount(b), 4);
  for (int y = 1; y <= 4; ++y) EXPECT_EQ(LICE_GetPixel(&b, 2, y), kWhite);
}

TEST(Line, EndsAndStaysInPlaceForCoordinatesBeyondReason) {
  for (const bool smooth : {false, true}) {
    LICE_MemBitmap b(40, 30);
    const auto draw = [&](float x1, float y1, float x2, float y2) {
      LICE_FillRect(&b, 0, 0, 40, 30, 0);
      LICE_Line(&b, x1, y1, x2, y2, kWhite, 1.0f, LICE_BLIT_MODE_COPY, smooth);
      return PaintedCount(b);
    };
    EXPECT_EQ(draw(kNaN, 1, 2, 3) + draw(1, 1, 2, kNaN) + draw(kInfinity, 5, kInfinity, 9) +
                  draw(-1e30f, -2e9f, 1e30f, -2e9f),
              0);
    EXPECT_EQ(draw(7, -1e38f, 7, 1e38f), 30);
    EXPECT_EQ(draw(7, 3, 7, kInfinity), 27);
    draw(1e30f, 1e30f, 3, 3);
    for (int i = 0; i < 30; ++i) EXPECT_EQ(LICE_GetPixel(&b, i, i), i < 3 ? 0 : kWhite) << i;
    EXPECT_EQ(draw(-kInfinity, 5, kInfinity, 5), 40);
    EXPECT_EQ(LICE_GetPixel(&b, 20, 5), kWhite);
    draw(-1e30f, -1e30f, 1e30f, 1e30f);
    for (int i = 0; i < 30; ++i) EXPECT_EQ(LICE_GetPixel(&b, i, i), kWhite) << i;
  }
  LICE_Line(nullptr, 0, 0, 1, 1, kWhite);
}

TEST(SmoothLine, HasTheSamePixelsInAnyWindow) {
  for (int seed = 0; seed < 500; ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    constexpr int kLeft = 64, kTop = 32;
    LICE_MemBitmap whole(192, 128), window(50, 40);
    // Quarters of pixels: moving the line by whole pixels is then exact.
    const auto quarters = [&](int limit) {
      return static_cast<float>(random.integer(-40, 4 * limit)) / 4.0f;
    };
    const float x1 = quarters(200), y1 = quarters(140), x2 = quarters(200), y2 = quarters(140);
    LICE_Line(&whole, x1, y1, x2, y2, kWhite);
    LICE_Line(&window, x1 - kLeft, y1 - kTop, x2 - kLeft, y2 - kTop, kWhite);
    ASSERT_TRUE(SameScreen(window, Part(whole, kLeft, kTop, 50, 40))) << "seed " << seed;
  }
}

TEST(SmoothLine, SpreadsOneFullPixelOverEachColumn) {
  LICE_MemBitmap sharp(64, 64), smooth(64, 64);
  SharpLine(sharp, 5, 9, 50, 9);
  LICE_Line(&smooth, 5, 9, 50, 9, kWhite);
  EXPECT_TRUE(SameScreen(smooth, Screen(sharp)));

  LICE_Line(&smooth, 5.5f, 20, 50.25f, 41.7f, kWhite);
  for (int x = 5; x <= 51; ++x) {
    double sum = 0.0;
    for (int y = 12; y < 64; ++y) sum += LICE_GETR(LICE_GetPixel(&smooth, x, y)) / 255.0;
    EXPECT_NEAR(sum, x == 5 ? 0.5 : x == 51 ? 0.25 : 1.0, 0.02) << x;
  }
}

}  // namespace
