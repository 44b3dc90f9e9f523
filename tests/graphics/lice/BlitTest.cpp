// Blits and fills against byte arithmetic done by hand and one pixel at a time.
#include <climits>
#include <cmath>
#include <limits>
#include <memory>

#include "tests/graphics/lice/Pixels.h"

namespace {

constexpr int kAlpha = LICE_BLIT_USE_ALPHA;

LICE_pixel BlitPixel(LICE_pixel d, LICE_pixel s, float weight, int mode) {
  LICE_MemBitmap dest(1, 1), src(1, 1);
  *dest.getBits() = d;
  *src.getBits() = s;
  LICE_Blit(&dest, &src, 0, 0, 0, 0, 1, 1, weight, mode);
  return *dest.getBits();
}

// One byte of the plain modes, in real arithmetic.
double MixByte(int op, double d, double s, double a) {
  const double part = std::trunc(s * a / 256.0);
  switch (op) {
    case LICE_BLIT_MODE_COPY: return s + std::trunc((d - s) * (256.0 - a) / 256.0);
    case LICE_BLIT_MODE_ADD: return d + part;
    case LICE_BLIT_MODE_DODGE: return std::floor(d * 256.0 / std::max(256.0 - part, 1.0));
    default: return std::floor((s * a + (256.0 - a) * 256.0) * d / 65536.0);
  }
}

LICE_pixel MixPixel(LICE_pixel d, LICE_pixel s, int a, int mode, bool of_blit) {
  const int op = mode & LICE_BLIT_MODE_MASK, sa = LICE_GETA(s);
  const bool use_alpha = (mode & kAlpha) != 0 && of_blit;
  if (use_alpha && sa == 0) return d;
  const int weight = use_alpha ? static_cast<int>(std::trunc((sa + 1) * a / 256.0)) : a;
  const auto mix = [&](int (*get)(LICE_pixel)) {
    return static_cast<int>(std::clamp(MixByte(op, get(d), get(s), weight), 0.0, 255.0));
  };
  int alpha = mix(LICE_GETA);
  if (use_alpha && op == LICE_BLIT_MODE_COPY) {
    alpha = std::clamp(LICE_GETA(d) + (a == 256 ? sa : weight), 0, 255);
  }
  return LICE_RGBA(mix(LICE_GETR), mix(LICE_GETG), mix(LICE_GETB), alpha);
}

float RandomWeight(Random& random) {
  constexpr float kWeights[] = {1.0f, 1.0f, 0.5f, 0.25f, 0.999f, 0.003f, 0.0f, 2.5f, -0.4f};
  const int i = random.integer(0, 11);
  return i < 9 ? kWeights[i] : random.unit();
}

std::unique_ptr<LICE_IBitmap> RandomBitmap(Random& random) {
  const int w = random.integer(1, 24), h = random.integer(1, 12), align = random.integer(0, 16);
  std::unique_ptr<LICE_IBitmap> bitmap = std::make_unique<FlippedBitmap>(w, h);
  if (random.integer(0, 1)) bitmap = std::make_unique<LICE_MemBitmap>(w, h, align);
  Randomise(*bitmap, random);
  return bitmap;
}

constexpr int kCopy = LICE_BLIT_MODE_COPY, kAdd = LICE_BLIT_MODE_ADD, kDodge = LICE_BLIT_MODE_DODGE,
              kMultiply = LICE_BLIT_MODE_MULTIPLY, kOverlay = LICE_BLIT_MODE_OVERLAY,
              kHSV = LICE_BLIT_MODE_HSVADJUST;

constexpr int kExactModes[] = {kCopy, kAdd, kDodge, kMultiply};

constexpr LICE_pixel P(int r, int g, int b, int a) { return LICE_RGBA(r, g, b, a); }

TEST(Blit, MixesBytesAsComputedByHand) {
  struct Case {
    int mode;
    float weight;
    LICE_pixel d, s, expected;
  };
  const Case cases[] = {
      {kCopy, 1.0f, P(1, 2, 3, 4), P(9, 8, 7, 6), P(9, 8, 7, 6)},
      // 200 - 75, 10 - 0, 10 + 0, and alpha alike: quotients are cut toward zero.
      {kCopy, 0.25f, P(100, 9, 11, 0), P(200, 10, 10, 4), P(125, 10, 10, 1)},
      // Each half is rounded down by itself.
      {kCopy, 0.5f, P(3, 255, 1, 7), P(1, 255, 1, 0), P(1, 254, 0, 3)},
      {kAdd, 1.0f, P(200, 200, 0, 1), P(55, 56, 9, 2), P(255, 255, 9, 3)},
      {kAdd, 0.5f, P(200, 200, 0, 0), P(101, 255, 1, 2), P(250, 255, 0, 1)},
      {kDodge, 1.0f, P(100, 1, 0, 60), P(128, 255, 255, 0), P(200, 255, 0, 60)},
      {kMultiply, 1.0f, P(200, 200, 255, 0), P(128, 0, 255, 9), P(100, 0, 254, 0)},
      {kMultiply, 0.5f, P(200, 0, 0, 0), P(128, 1, 2, 3), P(150, 0, 0, 0)},
      {kCopy | kAlpha, 1.0f, P(100, 0, 255, 50), P(200, 255, 0, 128), P(151, 129, 126, 178)},
      {kCopy | kAlpha, 1.0f, P(1, 2, 3, 4), P(9, 8, 7, 255), P(9, 8, 7, 255)},
      {kCopy | kAlpha, 1.0f, P(1, 2, 3, 4), P(9, 8, 7, 0), P(1, 2, 3, 4)},
      {kCopy | kAlpha, 0.5f, P(100, 0, 0, 200), P(200, 0, 0, 255), P(150, 0, 0, 255)},
      {kAdd | kAlpha, 1.0f, P(10, 0, 0, 1), P(100, 0, 0, 127), P(60, 0, 0, 64)},
      {kOverlay, 1.0f, P(51, 204, 0, 255), P(255, 255, 255, 255), P(102, 255, 0, 255)},
      // Half a turn of the hue; white loses half its value and has no hue to turn.
      {kHSV, 1.0f, P(255, 0, 0, 7), P(0, 128, 128, 0), P(0, 255, 255, 7)},
      {kHSV, 1.0f, P(255, 255, 255, 7), P(9, 128, 64, 0), P(128, 128, 128, 7)},
      {77, 1.0f, P(1, 2, 3, 4), P(9, 8, 7, 6), P(1, 2, 3, 4)},
  };
  for (const Case& c : cases) {
    const LICE_pixel actual = BlitPixel(c.d, c.s, c.weight, c.mode);
    EXPECT_EQ(actual, c.expected) << "case " << &c - cases << std::hex << " " << actual << " "
                                  << c.expected;
  }
}

// What the bitmap shows when each of its pixels in a rectangle has gone through `paint`, which gets
// the pixel and its place in the rectangle.
template <typename Paint>
std::vector<LICE_pixel> PaintedOneByOne(const LICE_IBitmap& dest, int left, int top, int w, int h,
                                        const Paint& paint) {
  std::vector<LICE_pixel> pixels = Screen(dest);
  for (int y = std::max(top, 0); y < std::min(top + h, dest.getHeight()); ++y) {
    for (int x = std::max(left, 0); x < std::min(left + w, dest.getWidth()); ++x) {
      paint(pixels[static_cast<std::size_t>(y * dest.getWidth() + x)], x - left, y - top);
    }
  }
  return pixels;
}

TEST(Blit, AndFillEqualOnePixelAtATimeInEveryModeAndClipping) {
  for (int seed = 0; seed < 4000; ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    const auto dest = RandomBitmap(random), src = RandomBitmap(random);
    const int dx = random.integer(-30, 30), dy = random.integer(-15, 15);
    const int sx = random.integer(-30, 30), sy = random.integer(-15, 15);
    const int w = random.integer(-3, 40), h = random.integer(-3, 20);
    const int mode = kExactModes[random.integer(0, 3)] | (random.integer(0, 1) ? kAlpha : 0);
    const LICE_pixel color = RandomPixel(random);
    const float weight = RandomWeight(random);
    const int a = static_cast<int>(weight * 256.0);
    auto expected = PaintedOneByOne(*dest, dx, dy, w, h, [&](LICE_pixel& d, int i, int j) {
      if (sx + i < 0 || sy + j < 0 || sx + i >= src->getWidth() || sy + j >= src->getHeight()) {
        return;
      }
      const LICE_pixel s = LICE_GetPixel(src.get(), sx + i, sy + j);
      const bool halves = mode == LICE_BLIT_MODE_COPY && weight == 0.5f;
      if (a)
        d = halves ? (s / 2 & 0x7F7F7F7F) + (d / 2 & 0x7F7F7F7F) : MixPixel(d, s, a, mode, true);
    });
    LICE_Blit(dest.get(), src.get(), dx, dy, sx, sy, w, h, weight, mode);
    ASSERT_TRUE(SameScreen(*dest, expected))
        << "seed " << seed << " mode " << mode << " weight " << weight;

    // A fill folds the colour's alpha into its weight.
    const float share = mode & kAlpha ? static_cast<float>(LICE_GETA(color)) / 255.0f : 1.0f;
    const int fill = static_cast<int>(weight * share * 256.0f);
    expected = PaintedOneByOne(*dest, dx, dy, w, h, [&](LICE_pixel& d, int, int) {
      if (!fill) return;
      const int alpha = std::clamp(LICE_GETA(d) + fill, 0, 255);  // copied alpha adds up
      d = MixPixel(d, color, fill, mode, false);
      if (mode == (kCopy | kAlpha)) d = (d & ~LICE_pixel{0xFF}) | static_cast<LICE_pixel>(alpha);
    });
    LICE_FillRect(dest.get(), dx, dy, w, h, color, weight, mode);
    ASSERT_TRUE(SameScreen(*dest, expected)) << "fill, seed " << seed << " mode " << mode;
  }
}

TEST(Blit, PaintsNothingForWhatIsMissingEmptyOrFarAway) {
  LICE_MemBitmap dest(4, 4), src(4, 4), empty;
  LICE_FillRect(&src, 0, 0, 4, 4, 0xFFFFFFFF);
  LICE_Blit(nullptr, &src, 0, 0, 0, 0, 4, 4, 1.0f, 0);
  LICE_Blit(&dest, nullptr, 0, 0, 0, 0, 4, 4, 1.0f, 0);
  LICE_Blit(&dest, &empty, 0, 0, 0, 0, 4, 4, 1.0f, 0);
  LICE_Blit(&dest, &src, 0, 0, 0, 0, 4, 4, 0.0f, 0);
  LICE_Blit(&dest, &src, 0, 0, 0, 0, 4, 4, std::numeric_limits<float>::quiet_NaN(), 0);
  LICE_Blit(&dest, &src, INT_MAX, INT_MIN, INT_MIN, INT_MAX, INT_MAX, INT_MAX, 1.0f, 0);
  LICE_ScaledBlit(&dest, &src, INT_MAX, 0, INT_MAX, 4, 0, 0, 4, 4, 1.0f, 0);
  LICE_ScaledBlit(&dest, &src, 0, 0, 4, 4, NAN, 0, 4, 4, 1.0f, 0);
  LICE_RotatedBlit(&dest, &src, NAN, 0, 0, 0, 0, 1.0f, 0);
  LICE_RotatedBlit(&dest, &src, 0, 0, 0, 0, INFINITY, 1.0f, 0);
  LICE_FillRect(&dest, INT_MIN, 0, INT_MAX, 4, 0xFFFFFFFF);
  LICE_PutPixel(&dest, 4, 0, 0xFFFFFFFF);
  EXPECT_EQ(PaintedCount(dest), 0);
  EXPECT_EQ(LICE_GetPixel(&src, -1, 0), 0U);

  // The largest rectangles that do reach the bitmap cover it, and absurd weights stay in bounds.
  LICE_FillRect(&dest, -5, -5, INT_MAX, INT_MAX, 0x01010101, 1e30f, LICE_BLIT_MODE_ADD);
  EXPECT_EQ(LICE_GetPixel(&dest, 3, 3), 0x10101010U);
  LICE_Blit(&dest, &src, 0, 0, 0, 0, 4, 4, -1e30f, LICE_BLIT_MODE_DODGE);
  LICE_Blit(&dest, &src, INT_MIN + 8, 0, INT_MIN + 8, 0, INT_MAX, INT_MAX, 1.0f, 0);
  EXPECT_TRUE(SameScreen(dest, Screen(src)));
}

TEST(ScaledBlit, RepeatsMirrorsAndInterpolates) {
  Random random(7);
  LICE_MemBitmap src(6, 4), same(6, 4), twice(12, 8), mirrored(6, 4), wide(8, 1);
  Randomise(src, random);
  LICE_ScaledBlit(&same, &src, 0, 0, 6, 4, 0, 0, 6, 4, 1.0f, LICE_BLIT_FILTER_BILINEAR);
  EXPECT_TRUE(SameScreen(same, Screen(src)));
  LICE_ScaledBlit(&twice, &src, 0, 0, 12, 8, 0, 0, 6, 4, 1.0f, 0);
  LICE_ScaledBlit(&mirrored, &src, 0, 0, 6, 4, 6, 0, -6, 4, 1.0f, 0);
  for (int i = 0; i < 24; ++i) {
    const int x = i % 6, y = i / 6;
    EXPECT_EQ(LICE_GetPixel(&twice, 2 * x + 1, 2 * y), LICE_GetPixel(&src, x, y));
    EXPECT_EQ(LICE_GetPixel(&mirrored, 5 - x, y), LICE_GetPixel(&src, x, y));
  }
  // Two pixels stretched to eight: flat outside the two centres, even steps between them.
  LICE_MemBitmap two(2, 1);
  two.getBits()[1] = LICE_RGBA(128, 128, 128, 128);
  LICE_ScaledBlit(&wide, &two, 0, 0, 8, 1, 0, 0, 2, 1, 1.0f, LICE_BLIT_FILTER_BILINEAR);
  const int steps[] = {0, 0, 16, 48, 80, 112, 128, 128};
  for (int x = 0; x < 8; ++x) EXPECT_EQ(LICE_GETR(LICE_GetPixel(&wide, x, 0)), steps[x]) << x;
}

TEST(RotatedBlit, TurnsClockwiseAboutThePointAndSmoothsTheBorder) {
  Random random(8);
  LICE_MemBitmap src(5, 5), turned(9, 9), block(10, 10), soft(20, 20);
  Randomise(src, random);
  const auto quarter = static_cast<float>(std::acos(0.0));
  LICE_RotatedBlit(&turned, &src, 4.5f, 4.5f, 2.5f, 2.5f, quarter, 1.0f, 0);
  for (int i = 0; i < 25; ++i) {
    EXPECT_EQ(LICE_GetPixel(&turned, 6 - i / 5, 2 + i % 5), LICE_GetPixel(&src, i % 5, i / 5));
  }
  EXPECT_EQ(LICE_GetPixel(&turned, 1, 4), 0U);
  LICE_FillRect(&block, 0, 0, 10, 10, 0xFFFFFFFF);
  LICE_RotatedBlit(&soft, &block, 10, 10, 5, 5, 0.3f, 1.0f, kAlpha | LICE_BLIT_FILTER_BILINEAR);
  EXPECT_NEAR(PaintedArea(soft), 100.0, 2.0);
  EXPECT_GT(PaintedCount(soft), 110) << "pixels of the border are painted in part";
}

}  // namespace
