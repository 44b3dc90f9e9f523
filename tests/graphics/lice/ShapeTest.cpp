// Circles, arcs, rounded rectangles and polygons.
#include <climits>
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>

#include "tests/graphics/lice/Pixels.h"

namespace {

constexpr LICE_pixel kWhite = 0xFFFFFFFF;
constexpr LICE_pixel kOnce = LICE_RGBA(1, 1, 1, 1);
constexpr auto kPi = std::numbers::pi_v<float>;

// Painted area in pixels, by brightness.
double Area(const LICE_IBitmap& b) {
  double area = 0.0;
  for (const LICE_pixel p : Screen(b)) area += LICE_GETR(p) / 255.0;
  return area;
}

using Draw = std::function<void(LICE_IBitmap&, float dx, float dy)>;

TEST(Circle, CoversTheAreaOfItsRadius) {
  for (float r = 1.0f; r < 20.0f; r += 0.37f) {
    LICE_MemBitmap disc(64, 64), ring(64, 64);
    LICE_FillCircle(&disc, 31.3f, 30.8f, r, kWhite);
    LICE_Circle(&ring, 31.3f, 30.8f, r, kWhite);
    EXPECT_NEAR(Area(disc), kPi * r * r, 0.3 + 0.01 * r * r) << r;
    EXPECT_NEAR(Area(ring), 2 * kPi * r, 0.3 + 0.05 * r) << r;
  }
}

TEST(Circle, SharpFormsPaintEachPixelOnceSymmetricallyAndMeet) {
  for (int r = 0; r <= 15; ++r) {
    LICE_MemBitmap ring(33, 33), disc(33, 33), both(33, 33);
    const auto radius = static_cast<float>(r);
    LICE_Circle(&ring, 16, 16, radius, kOnce, 1.0f, LICE_BLIT_MODE_ADD, false);
    LICE_FillCircle(&disc, 16, 16, radius, kOnce, 1.0f, LICE_BLIT_MODE_ADD, false);
    for (int y = -16; y <= 16; ++y) {
      int left = 99, right = -99;
      for (int x = -16; x <= 16; ++x) {
        const LICE_pixel p = LICE_GetPixel(&ring, 16 + x, 16 + y);
        EXPECT_TRUE(p == 0 || p == kOnce);
        EXPECT_EQ(p, LICE_GetPixel(&ring, 16 - y, 16 + x));
        EXPECT_EQ(p, LICE_GetPixel(&ring, 16 - x, 16 + y));
        if (p) {
          EXPECT_EQ(std::lround(std::hypot(x, y)), r);
          left = std::min(left, x);
          right = std::max(right, x);
        }
      }
      for (int x = -16; x <= 16; ++x) {
        EXPECT_EQ(LICE_GetPixel(&disc, 16 + x, 16 + y), x >= left && x <= right ? kOnce : 0u)
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
  EXPECT_NEAR(Area(quarter), kPi / 2 * 15, 1.5);
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
      for (const int y : {3, 5, 22, 24}) EXPECT_EQ(LICE_GetPixel(&outline, x, y), 0u);
      for (const int y : {3, 24}) EXPECT_EQ(LICE_GetPixel(&filled, x, y), 0u);
    }
    EXPECT_EQ(LICE_GetPixel(&outline, 5, 4) | LICE_GetPixel(&filled, 34, 23), 0u);
    EXPECT_NEAR(Area(filled), 600 - (4 - kPi) * 6.5 * 6.5, 5.0);
    // Without corners it is the rectangle.
    LICE_FillRoundRect(&square, 5, 4, 30, 20, 0, kWhite, 1.0f, 0, smooth);
    LICE_FillRect(&plain, 5, 4, 30, 20, kWhite);
    EXPECT_TRUE(SameScreen(square, Screen(plain)));
  }
}

TEST(Shapes, HaveTheSamePixelsWhenTheBitmapCutsThem) {
  const Draw draws[] = {
      [](LICE_IBitmap& b, float dx, float dy) {
        LICE_FillCircle(&b, 40 + dx, 30 + dy, 25.5f, kWhite);
      },
      [](LICE_IBitmap& b, float dx, float dy) {
        LICE_Circle(&b, 40 + dx, 30 + dy, 25.5f, kWhite, 0.5f);
      },
      [](LICE_IBitmap& b, float dx, float dy) {
        LICE_Arc(&b, 40 + dx, 30 + dy, 20, -2.0f, 2.0f, kWhite);
      },
      [](LICE_IBitmap& b, float dx, float dy) {
        LICE_RoundRect(&b, 10 + dx, 5 + dy, 60, 50, 9, kWhite);
      },
      [](LICE_IBitmap& b, float dx, float dy) {
        const int x = static_cast<int>(dx), y = static_cast<int>(dy);
        LICE_FillTriangle(&b, 3 + x, 60 + y, 75 + x, 40 + y, 30 + x, 2 + y, kWhite);
      },
  };
  for (const Draw& draw : draws) {
    LICE_MemBitmap whole(80, 64), part(30, 20);
    FlippedBitmap window(30, 20);
    draw(whole, 0, 0);
    EXPECT_GT(PaintedCount(whole), 50);
    for (const auto& [x, y] : {std::pair{0, 0}, {50, 0}, {5, 44}, {50, 44}, {25, 20}}) {
      LICE_FillRect(&window, 0, 0, 30, 20, 0);
      draw(window, static_cast<float>(-x), static_cast<float>(-y));
      LICE_Blit(&part, &whole, 0, 0, x, y, 30, 20, 1.0f, LICE_BLIT_MODE_COPY);
      EXPECT_TRUE(SameScreen(window, Screen(part))) << &draw - draws << " at " << x << " " << y;
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
    LICE_MemBitmap b(20, 15);
    LICE_FillTriangle(&b, x[0], y[0], x[1], y[1], x[2], y[2], kOnce, 1.0f, LICE_BLIT_MODE_ADD);
    std::vector<LICE_pixel> expected;
    for (int py = 0; py < 15; ++py) {
      for (int px = 0; px < 20; ++px) {
        // Not strictly on different sides of any two edges, and within the corners' bounds.
        bool left = false, right = false;
        for (int i = 0; i < 3; ++i) {
          const int j = (i + 1) % 3;
          const int side = (x[j] - x[i]) * (py - y[i]) - (y[j] - y[i]) * (px - x[i]);
          left |= side > 0;
          right |= side < 0;
        }
        const bool bounded = px >= *std::min_element(x, x + 3) &&
                             px <= *std::max_element(x, x + 3) &&
                             py >= *std::min_element(y, y + 3) && py <= *std::max_element(y, y + 3);
        expected.push_back(bounded && !(left && right) ? kOnce : 0);
      }
    }
    ASSERT_TRUE(SameScreen(b, expected)) << "seed " << seed;
  }
}

}  // namespace
