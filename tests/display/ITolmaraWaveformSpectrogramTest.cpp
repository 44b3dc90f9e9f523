#include "display/ITolmaraWaveformSpectrogram.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "graphics/IGraphicsOffscreen.h"
#include "tests/support/AllocationGuard.h"
#include "tests/support/Random.h"

namespace {

constexpr IRECT kRect(68, 44, 496, 306);
constexpr IRECT kWaveRect(68, 44, 496, 160);
constexpr IRECT kSpectrogramRect(68, 178, 496, 306);
constexpr int kLeft = 72, kWidth = 424, kWaveBottom = 144;

struct Label {
  std::string text;
  IRECT rect;
  IColor color;
  bool operator==(const Label&) const = default;
};

void PrintTo(const Label& label, std::ostream* out) {
  const IRECT& r = label.rect;
  *out << label.text << " (" << r.L << ", " << r.T << ", " << r.R << ", " << r.B << ")";
}

// A black canvas that notes texts instead of drawing them.
class Canvas : public IGraphicsOffscreen {
 public:
  Canvas() : IGraphicsOffscreen(nullptr, 500, 320, 25) { Wipe(); }
  void Wipe() {
    PrepDraw();
    const IRECT all(0, 0, Width(), Height());
    FillIRect(&kColorBlack, &all);
    labels.clear();
  }
  bool DrawIText(IText* text, const char* str, IRECT* rect) override {
    labels.push_back({str, *rect, text->mColor});
    return true;
  }
  int CountPainted() const {
    int count = 0;
    for (int y = 0; y < Height(); ++y) {
      for (int x = 0; x < Width(); ++x) count += GetPoint(x, y) != kColorBlack;
    }
    return count;
  }
  std::vector<Label> labels;
};

class Display : public ITolmaraWaveformSpectrogram {
 public:
  Display(int sampleRate, const AlignedVector<float>& fir)
      : ITolmaraWaveformSpectrogram(nullptr, kRect, kWaveRect, kSpectrogramRect,
                                    IText(14, kColorWhite), sampleRate, fir) {}
};

AlignedVector<float> Impulse(std::size_t size) {
  AlignedVector<float> fir(size);
  fir[0] = 1.0F;
  return fir;
}

// The argument of the logarithm is held in single precision, which decides some pixels.
int TimeToX(double fraction, int samples) {
  const auto step = static_cast<float>((M_E - 1.0) / samples);
  const float argument = static_cast<float>(fraction * samples) * step + 1.0F;
  return static_cast<int>(kLeft + kWidth * std::log(double{argument}));
}

TEST(Display, LabelsBothPanelsInDrawingOrder) {
  Display display(48000, Impulse(96000));
  Canvas canvas;
  ASSERT_TRUE(display.Draw(&canvas));
  const IColor time(178, 0, 255, 0), marks(178, 255, 255, 0);
  const auto at = [](double fraction) {
    const int x = TimeToX(fraction, 96000);
    return IRECT(x - 24, 145, x - 8, 153);
  };
  const std::vector<Label> expected = {
      {"Ready", {282, 44, 322, 60}, kColorGreen},
      {"2.00", at(1.0), time},
      {"1.00", at(0.5), time},
      {"0.50", at(0.25), time},
      {"0.25", at(0.125), time},
      {"Sec", {72, 145, 88, 153}, time},
      {"0.00 dB", {456, 44, 472, 52}, marks},
      {"-6.02 dB", {456, 94, 472, 102}, marks},
      {"-12.04 dB", {456, 119, 472, 127}, marks},
      {"-120 to 0 dB", {290, 178, 306, 186}, time},
      {"24 kHz", {456, 178, 472, 186}, marks},
      {"12 kHz", {456, 242, 472, 250}, marks},
      {"6 kHz", {456, 274, 472, 282}, marks},
  };
  EXPECT_EQ(canvas.labels, expected);

  display.SetResponse(44100, Impulse(100));
  display.SetComputing(true);
  canvas.Wipe();
  ASSERT_TRUE(display.Draw(&canvas));
  EXPECT_EQ(canvas.labels[0], (Label{"Computing", {282, 44, 322, 60}, kColorRed}));
  const std::vector<std::string> kHz = {canvas.labels[10].text, canvas.labels[11].text,
                                        canvas.labels[12].text};
  EXPECT_EQ(kHz, (std::vector<std::string>{"22 kHz", "11 kHz", "5 kHz"}));
}

TEST(Display, DrawsOpaqueMarksFromTheSecondOn) {
  Display display(48000, Impulse(4800));
  Canvas canvas;
  ASSERT_TRUE(display.Draw(&canvas));
  for (const double fraction : {0.5, 0.25, 0.125}) {
    const int x = TimeToX(fraction, 4800);
    EXPECT_EQ(canvas.GetPoint(x, 44).G, 255) << x;
    EXPECT_EQ(canvas.GetPoint(x, kWaveBottom), IColor(178, 0, 255, 0)) << x;
    EXPECT_EQ(canvas.GetPoint(x, kWaveBottom + 1), kColorBlack) << x;
  }
  EXPECT_NE(canvas.GetPoint(TimeToX(1.0, 4800), 60).G, 255);
  for (const int y : {94, 119, 242, 274}) {
    EXPECT_EQ(canvas.GetPoint(kLeft, y), IColor(178, 255, 255, 0)) << y;
    EXPECT_EQ(canvas.GetPoint(496, y), IColor(178, 255, 255, 0)) << y;
    EXPECT_EQ(canvas.GetPoint(kLeft - 1, y), kColorBlack) << y;
  }
}

TEST(Display, DrawsTheRectifiedWaveformAdditively) {
  AlignedVector<float> fir(16);  // time marks stand at samples 8, 4 and 2
  fir[0] = 0.5F;
  fir[6] = -1.0F;
  Display display(48000, fir);
  Canvas canvas;
  ASSERT_TRUE(display.Draw(&canvas));
  const int once = 255 * 178 / 256;
  EXPECT_EQ(canvas.GetPoint(kLeft, 100).R, once);
  EXPECT_EQ(canvas.GetPoint(kLeft, 100).G, 0);
  EXPECT_EQ(canvas.GetPoint(kLeft, 93).R, 0);
  EXPECT_EQ(canvas.GetPoint(TimeToX(6.0 / 16.0, 16), 44).R,
            255);  // two segments meet at the negative peak
  // The polyline begins on the zero line; the axis ends beyond the last sample.
  EXPECT_EQ(canvas.GetPoint(kLeft, kWaveBottom).R, once);
  EXPECT_EQ(canvas.GetPoint(TimeToX(15.0 / 16.0, 16) + 1, kWaveBottom).R, 0);
}

// Holds every pixel of the lower panel against the level that the analysis has for it.
void ExpectSpectrogram(const AlignedVector<float>& fir, int& wrapped) {
  Display display(48000, fir);
  Canvas canvas;
  ASSERT_TRUE(display.Draw(&canvas));
  const FIRSpectrogram<float> levels(48000, fir, FIRSpectrogram<float>::Blackman, 256, 128, 256,
                                     1e-6F);
  const auto frames = static_cast<int>((fir.size() + 127) / 128);
  const auto column = [&](int j) {
    const auto x = [&](int frame) {
      return static_cast<int>(kLeft + kWidth * std::log(1.0 + (M_E - 1.0) * 128.0 * frame /
                                                                  static_cast<double>(fir.size())));
    };
    return j < frames ? x(j) : x(frames - 1) + 1;
  };
  for (int j = 0; j < frames; ++j) {
    const auto& row = levels.get_half_density_dB(static_cast<float>(j) * levels.get_min_timestep());
    for (int x = column(j); x < column(j + 1); ++x) {
      for (int k = 0; k < 129; ++k) {
        const int y = static_cast<int>(std::floor(306.0 - k * 128.0 / 129.0));
        if (y == 242 || y == 274) continue;  // under the marks
        const double v = (double{row[static_cast<std::size_t>(k)]} + 120.0) / 120.00000868;
        const double red = 255.0 * v, green = 187.0 * v;
        wrapped += red >= 256.0;
        // A float that lies this close to a whole number may truncate to either side.
        if (std::abs(red - std::round(red)) > 1e-4) {
          ASSERT_EQ(canvas.GetPoint(x, y).R, static_cast<int>(red) & 255) << x << ", " << k;
        }
        if (std::abs(green - std::round(green)) > 1e-4) {
          ASSERT_EQ(canvas.GetPoint(x, y).G, static_cast<int>(green) & 255) << x << ", " << k;
        }
        ASSERT_EQ(canvas.GetPoint(x, y).B, 0);
      }
    }
  }
  EXPECT_EQ(canvas.GetPoint(column(frames), 300), kColorBlack);
}

TEST(Display, ShowsLevelsLinearInDecibelsAndWrapsOverloadedOnes) {
  int wrapped = 0;
  AlignedVector<float> quiet = Random(1).signal(3000);
  for (float& v : quiet) v *= 0.001F;
  ExpectSpectrogram(quiet, wrapped);
  EXPECT_EQ(wrapped, 0);
  ExpectSpectrogram(Random(2).signal(40000), wrapped);  // late frames share pixels
  EXPECT_GT(wrapped, 1000);
  ExpectSpectrogram(Impulse(1), wrapped);
}

TEST(Display, LocksAndDirtiesOnlyForAChangeOfTheStatus) {
  Display display(48000, Impulse(1));
  display.SetClean();
  display.SetResponse(48000, Impulse(10));
  EXPECT_FALSE(display.IsDirty());
  const LockCount count;
  display.SetComputing(false);
  EXPECT_EQ(count.locks(), 0);
  EXPECT_FALSE(display.IsDirty());
  display.SetComputing(true);
  EXPECT_EQ(count.locks(), 1);
  EXPECT_TRUE(display.IsDirty());
  display.SetClean();
  EXPECT_TRUE(display.IsDirty()) << "a frame may have drawn the old status just before";
  display.SetClean();
  EXPECT_FALSE(display.IsDirty());
}

TEST(Display, DrawsNothingWhileAResponseIsPrepared) {
  Display display(48000, Impulse(1));
  std::atomic<bool> done = false;
  std::thread worker([&] {
    display.SetComputing(true);
    display.SetResponse(44100, Random(3).signal(881767));
    display.SetComputing(false);
    done = true;
  });
  int refused = 0;
  Canvas canvas;
  while (!done) {
    canvas.Wipe();
    if (!display.Draw(&canvas) && ++refused == 1) {
      EXPECT_EQ(canvas.CountPainted(), 0);
      EXPECT_TRUE(canvas.labels.empty());
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  worker.join();
  EXPECT_GT(refused, 0);
  EXPECT_TRUE(display.IsDirty());
  canvas.Wipe();
  ASSERT_TRUE(display.Draw(&canvas));
  EXPECT_EQ(canvas.labels[1].text, "19.99");
}

TEST(Display, SurvivesSilenceAndValuesThatAreNoNumbers) {
  constexpr float infinity = std::numeric_limits<float>::infinity();
  for (const float value : {0.0F, -infinity, std::numeric_limits<float>::quiet_NaN(), 3e38F}) {
    AlignedVector<float> fir(1000);
    fir[500] = value;
    Display display(48000, fir);
    Canvas canvas;
    EXPECT_TRUE(display.Draw(&canvas));
    EXPECT_EQ(canvas.labels.size(), 13U);
    EXPECT_EQ(canvas.GetPoint(300, 242), IColor(178, 255, 255, 0)) << value;
  }
  Display empty(48000, {});
  Canvas canvas;
  EXPECT_TRUE(empty.Draw(&canvas));
}

}  // namespace
