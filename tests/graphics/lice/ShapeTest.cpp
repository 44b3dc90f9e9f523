// Circles, arcs, rounded rectangles and polygons.
#include <climits>
#include <cmath>
#include <limits>
#include <numbers>

#include "tests/graphics/lice/Pixels.h"

namespace {

constexpr LICE_pixel kWhite = 0xFFFFFFFF;
constexpr LICE_pixel kOnce = LICE_RGBA(1, 1, 1, 1);
constexpr auto kPi = std::numbers::pi_v<float>;

TEST(Circle, CoversTheAreaOfItsRadius) {
  for (float r = 1.0f; r < 20.0f; r += 0.37f) {
    LICE_MemBitmap disc(64, 64), ring(64, 64);
    LICE_FillCircle(&disc, 31.3f, 30.8f, r, kWhite);
    LICE_Circle(&ring, 31.3f, 30.8f, r, kWhite);
    EXPECT_NEAR(PaintedArea(disc), kPi * r * r, 0.3 + 0.01 * r * r) << r;
    EXPECT_NEAR(PaintedArea(ring), 2 * kPi * r, 0.3 + 0.05 * r) << r;
  }
}

TEST(Circle, SharpFormsPaintEachPixelOnceSymmetricallyAndMeet) {
  for (int r = 0; r <= 15; ++r) {
    LICE_MemBitmap ring(33, 33), disc(33, 33);
    const auto radius = static_cast<float>(r);
    LICE_Circle(&ring, 16, 16, radius, kOnce, 1.0f, LICE_BLIT_MODE_ADD, false);
    LICE_FillCircle(&disc, 16, 16, radius, kOnce, 1.0f, LICE_BLIT_MODE_ADD, false);
    for (int y = -16; y <= 16; ++y) {
      int reach = -1;  // of the ring in this row, to either side
      for (int x = -16; x <= 16; ++x) {
        const LICE_pixel p = LICE_GetPixel(&ring, 16 + x, 16 + y);
        EXPECT_EQ(p, LICE_GetPixel(&ring, 16 - y, 16 + x));
        EXPECT_EQ(p, LICE_GetPixel(&ring, 16 - x, 16 + y));
        if (!p) continue;
        EXPECT_EQ(p, kOnce);
        EXPECT_EQ(std::lround(std::hypot(x, y)), r);
        reach = std::max(reach, x);
      }
      for (int x = -16; x <= 16; ++x) {
        EXPECT_EQ(LICE_GetPixel(&disc, 16 + x, 16 + y), std::abs(x) <= reach ? kOnce : 0U)
            << r << ": " << x << " " << y;
      }
    }
  }
}

TEST(Arc, TurnsClockwiseFromTheTopAndCompletesACircle) {
  LICE_MemBitmap quarter(41, 41), halves(41, 41), circle(41, 41);
  LICE_Arc(&quarter, 20, 20, 15, 0.01f, kPi / 2 - 0.01f, kWhite);
  for (int y = 0; y < 41; ++y) {
    for (int x = 0; x < 41; ++x) {
      EXPECT_TRUE(!LICE_GetPixel(&quarter, x, y) || (x > 20 && y < 20)) << x << " " << y;
    }
  }
  EXPECT_NEAR(PaintedArea(quarter), kPi / 2 * 15, 1.5);
  // The ends lie between pixels, so that none belongs to both halves.
  LICE_Arc(&halves, 20, 20, 15, 0.3f, 0.3f + kPi, kOnce, 1.0f, LICE_BLIT_MODE_ADD, false);
  LICE_Arc(&halves, 20, 20, 15, 0.3f - kPi, 0.3f, kOnce, 1.0f, LICE_BLIT_MODE_ADD, false);
  LICE_Circle(&circle, 20, 20, 15, kOnce, 1.0f, LICE_BLIT_MODE_ADD, false);
  EXPECT_TRUE(SameScreen(halves, Screen(circle)));
}

TEST(RoundRect, FillsItsSidesAndCutsItsCorners) {
  for (const bool smooth : {false, true}) {
    LICE_MemBitmap outline(40, 30), filled(40, 30), square(40, 30), plain(40, 30);
    LICE_RoundRect(&outline, 5, 4, 30, 20, 6, kWhite, 1.0f, 0, smooth);
    LICE_FillRoundRect(&filled, 5, 4, 30, 20, 6, kWhite, 1.0f, 0, smooth);
    for (int x = 11; x < 29; ++x) {
      for (const int y : {4, 23}) {
        EXPECT_EQ(LICE_GetPixel(&outline, x, y), kWhite);
        EXPECT_EQ(LICE_GetPixel(&filled, x, y), kWhite);
      }
      for (const int y : {3, 5, 22, 24}) EXPECT_EQ(LICE_GetPixel(&outline, x, y), 0U);
      for (const int y : {3, 24}) EXPECT_EQ(LICE_GetPixel(&filled, x, y), 0U);
    }
    EXPECT_EQ(LICE_GetPixel(&outline, 5, 4) | LICE_GetPixel(&filled, 34, 23), 0U);
    EXPECT_NEAR(PaintedArea(filled), 600 - (4 - kPi) * 6.5 * 6.5, 5.0);
    // Without corners it is the rectangle.
    LICE_FillRoundRect(&square, 5, 4, 30, 20, 0, kWhite, 1.0f, 0, smooth);
    LICE_FillRect(&plain, 5, 4, 30, 20, kWhite);
    EXPECT_TRUE(SameScreen(square, Screen(plain)));
  }
}

TEST(Shapes, HaveTheSamePixelsWhenTheBitmapCutsThem) {
  // Each shifted to the left and up.
  void (*const draws[])(LICE_IBitmap*, int, int) = {
      [](LICE_IBitmap* b, int x, int y) {
        LICE_FillCircle(b, static_cast<float>(40 - x), static_cast<float>(30 - y), 25.5f, kWhite);
      },
      [](LICE_IBitmap* b, int x, int y) {
        LICE_Arc(b, static_cast<float>(40 - x), static_cast<float>(30 - y), 20, -2.0f, 2.0f,
                 kWhite);
      },
      [](LICE_IBitmap* b, int x, int y) {
        LICE_RoundRect(b, static_cast<float>(10 - x), static_cast<float>(5 - y), 60, 50, 9, kWhite);
      },
      [](LICE_IBitmap* b, int x, int y) {
        LICE_FillTriangle(b, 3 - x, 60 - y, 75 - x, 40 - y, 30 - x, 2 - y, kWhite);
      },
  };
  for (const auto& draw : draws) {
    LICE_MemBitmap whole(80, 64);
    draw(&whole, 0, 0);
    EXPECT_GT(PaintedCount(whole), 50);
    for (const auto& [x, y] : {std::pair{0, 0}, {50, 0}, {5, 44}, {50, 44}, {25, 20}}) {
      FlippedBitmap window(30, 20);
      draw(&window, x, y);
      EXPECT_TRUE(SameScreen(window, Part(whole, x, y, 30, 20)))
          << &draw - draws << " at " << x << " " << y;
    }
  }
}

TEST(Shapes, PaintNothingOutOfReasonAndStayInBounds) {
  LICE_MemBitmap b(16, 12);
  for (const float odd : {std::numeric_limits<float>::quiet_NaN(), -1.0f}) {
    LICE_FillCircle(&b, 5, 5, odd, kWhite);
    LICE_Circle(&b, 5, 5, odd, kWhite);
  }
  LICE_FillCircle(&b, NAN, 5, 3, kWhite);
  LICE_Circle(&b, 1e30f, 5, 3, kWhite);
  LICE_Arc(&b, 5, 5, 3, NAN, 1, kWhite);
  LICE_FillRoundRect(&b, 5, 5, -4, 4, 1, kWhite);
  LICE_RoundRect(&b, NAN, 5, 4, 4, 1, kWhite);
  LICE_FillConvexPolygon(&b, nullptr, nullptr, 0, kWhite);
  EXPECT_EQ(PaintedCount(b), 0);
  LICE_FillCircle(&b, 5, 5, 1e30f, kWhite);
  EXPECT_EQ(PaintedCount(b), 16 * 12);
  LICE_FillRect(&b, 0, 0, 16, 12, 0);
  LICE_FillTriangle(&b, INT_MIN, INT_MIN, INT_MAX, INT_MIN, 0, INT_MAX, kWhite);
  EXPECT_EQ(PaintedCount(b), 16 * 12);
}

TEST(FillTriangle, TakesThePixelsWhoseCentresLieInIt) {
  for (int seed = 0; seed < 2000; ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    int x[3], y[3];
    for (int i = 0; i < 3; ++i) {
      x[i] = random.integer(-10, 30);
      y[i] = random.integer(-10, 25);
    }
    const auto [left, right] = std::minmax({x[0], x[1], x[2]});
    const auto [top, bottom] = std::minmax({y[0], y[1], y[2]});
    LICE_MemBitmap b(20, 15);
    LICE_FillTriangle(&b, x[0], y[0], x[1], y[1], x[2], y[2], kOnce, 1.0f, LICE_BLIT_MODE_ADD);
    for (int p = 0; p < 20 * 15; ++p) {
      const int px = p % 20, py = p / 20;
      // Not strictly on different sides of any two edges, and within the corners' bounds.
      int least = 0, most = 0;
      for (int i = 0; i < 3; ++i) {
        const int j = (i + 1) % 3;
        const int side = (x[j] - x[i]) * (py - y[i]) - (y[j] - y[i]) * (px - x[i]);
        least = std::min(least, side);
        most = std::max(most, side);
      }
      const bool bounded = px >= left && px <= right && py >= top && py <= bottom;
      ASSERT_EQ(LICE_GetPixel(&b, px, py), bounded && (least == 0 || most == 0) ? kOnce : 0U)
          << "seed " << seed << " at " << px << " " << py;
    }
  }
}

}  // namespace
