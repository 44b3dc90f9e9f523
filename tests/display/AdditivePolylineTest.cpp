#include "display/AdditivePolyline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "graphics/IGraphicsOffscreen.h"
#include "tests/support/Random.h"

namespace {

constexpr int kWidth = 40, kHeight = 30;

// A picture of random colours, black for every third seed.
class Canvas : public IGraphicsOffscreen {
 public:
  explicit Canvas(std::uint64_t seed) : IGraphicsOffscreen(nullptr, kWidth, kHeight, 25) {
    PrepDraw();
    Random random(seed);
    for (int i = 0; i < kWidth * kHeight && seed % 3 != 0; ++i) {
      const IColor color(random.integer(0, 255), random.integer(0, 255), random.integer(0, 255), 0);
      ForcePixel(&color, i % kWidth, i / kWidth);
    }
  }
};

using Points = std::vector<std::pair<float, float>>;

// Mostly many points to a column, sometimes far jumps, points beyond the counted rows and the
// canvas, and no numbers at all.
Points RandomPoints(Random& random) {
  constexpr float infinity = std::numeric_limits<float>::infinity();
  Points points;
  float x = -2.0f;
  for (int i = 0; i < 1500; ++i) {
    x += random.uniform(0.0f, 0.04f);
    float y = random.uniform(5.0f, 20.0f);
    switch (random.integer(0, 60)) {
      case 0: y = random.uniform(-40.0f, 80.0f); break;
      case 1: y = random.integer(0, 1) ? infinity : -1e30f; break;
      case 2: y = std::nanf(""); break;
      case 3: y = static_cast<float>(random.integer(3, 21)); break;
      case 4: x -= random.uniform(0.0f, 0.6f); break;
      default: break;
    }
    points.emplace_back(x, y);
  }
  if (random.integer(0, 1) == 0) return points;
  points.emplace_back(1e20f, 7.0f);
  points.emplace_back(std::nanf(""), 7.0f);
  return points;
}

TEST(AdditivePolyline, PaintsThePixelsThatSingleLinesPaint) {
  const IChannelBlend add(IChannelBlend::kBlendAdd, 1.0f);
  const IColor colors[] = {{178, 255, 0, 0}, {255, 255, 187, 1}, {9, 40, 255, 0}, {0, 5, 5, 5}};
  for (std::uint64_t seed = 0; seed < 12; ++seed) {
    Random random(seed);
    const Points points = RandomPoints(random);
    const IColor& color = colors[seed % 4];
    Canvas single(seed), counted(seed);
    {
      AdditivePolyline line(counted, color, points[0].first, points[0].second, 4, 19);
      for (const auto& [x, y] : points) line.LineTo(x, y);
    }
    std::pair<float, float> last = points[0];
    for (const auto& point : points) {
      single.DrawLine(&color, last.first, last.second, point.first, point.second, &add, false);
      last = point;
    }
    for (int i = 0; i < kWidth * kHeight; ++i) {
      ASSERT_EQ(counted.GetPoint(i % kWidth, i / kWidth), single.GetPoint(i % kWidth, i / kWidth))
          << "seed " << seed << ", pixel " << i % kWidth << ", " << i / kWidth;
    }
  }
}

}  // namespace
