#include "display/ITolmaraWaveformSpectrogram.h"

#include <gtest/gtest.h>

#include <algorithm>
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

constexpr IColor kTime(178, 0, 255, 0), kMarks(178, 255, 255, 0);

// A text, where it stands and its colour, as words.
std::string Label(const std::string& text, const IRECT& r, const IColor& c) {
  std::string label = text + " at";
  for (const int number : {r.L, r.T, r.R, r.B, c.A, c.R, c.G, c.B}) {
    label += " " + std::to_string(number);
  }
  return label;
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
    labels.push_back(Label(str, *rect, text->mColor));
    return true;
  }
  bool IsBlack() const {
    const auto black = [](uint32_t pixel) { return pixel == kColorBlack.Pixel(); };
    return std::all_of(GetBits(), GetBits() + Width() * Height(), black);
  }
  std::vector<std::string> labels;
};

class Display : public ITolmaraWaveformSpectrogram {
 public:
  Display(int sampleRate, const AlignedVector<float>& fir)
      : ITolmaraWaveformSpectrogram(nullptr, kRect, kWaveRect, kSpectrogramRect,
                                    IText(14, kColorWhite), sampleRate, fir) {}
};

AlignedVector<float> Impulse(std::size_t size) {
  AlignedVector<float> fir(size);
  fir[0] = 1.0f;
  return fir;
}

// The argument of the logarithm is held in single precision, which decides some pixels.
int TimeToX(double fraction, int samples) {
  const auto step = static_cast<float>((M_E - 1.0) / samples);
  const float argument = static_cast<float>(fraction * samples) * step + 1.0f;
  return static_cast<int>(kLeft + kWidth * std::log(double{argument}));
}

TEST(Display, LabelsAndMarksBothPanelsInDrawingOrder) {
  Display display(48000, Impulse(96000));
  Canvas canvas;
  ASSERT_TRUE(display.Draw(&canvas));
  std::vector<std::string> expected = {Label("Ready", {282, 44, 322, 60}, kColorGreen)};
  for (const auto& [text, fraction] : {std::pair("2.00", 1.0), std::pair("1.00", 0.5),
                                       std::pair("0.50", 0.25), std::pair("0.25", 0.125)}) {
    const int x = TimeToX(fraction, 96000);
    expected.push_back(Label(text, {x - 24, 145, x - 8, 153}, kTime));
  }
  expected.push_back(Label("Sec", {72, 145, 88, 153}, kTime));
  expected.push_back(Label("0.00 dB", {456, 44, 472, 52}, kMarks));
  expected.push_back(Label("-6.02 dB", {456, 94, 472, 102}, kMarks));
  expected.push_back(Label("-12.04 dB", {456, 119, 472, 127}, kMarks));
  expected.push_back(Label("-120 to 0 dB", {290, 178, 306, 186}, kTime));
  expected.push_back(Label("24 kHz", {456, 178, 472, 186}, kMarks));
  expected.push_back(Label("12 kHz", {456, 242, 472, 250}, kMarks));
  expected.push_back(Label("6 kHz", {456, 274, 472, 282}, kMarks));
  EXPECT_EQ(canvas.labels, expected);

  display.SetResponse(44100, Impulse(4800));
  display.SetComputing(true);
  canvas.Wipe();
  ASSERT_TRUE(display.Draw(&canvas));
  EXPECT_EQ(canvas.labels[0], Label("Computing", {282, 44, 322, 60}, kColorRed));
  for (const auto& [label, text] :
       {std::pair(10, "22 kHz"), std::pair(11, "11 kHz"), std::pair(12, "5 kHz")}) {
    EXPECT_EQ(canvas.labels[static_cast<std::size_t>(label)].find(text), 0U);
  }

  // Marks are opaque and stand from the second label on.
  for (const double fraction : {0.5, 0.25, 0.125}) {
    const int x = TimeToX(fraction, 4800);
    EXPECT_EQ(canvas.GetPoint(x, 44).G, 255) << x;
    EXPECT_EQ(canvas.GetPoint(x, kWaveBottom), kTime) << x;
    EXPECT_EQ(canvas.GetPoint(x, kWaveBottom + 1), kColorBlack) << x;
  }
  EXPECT_NE(canvas.GetPoint(TimeToX(1.0, 4800), 60).G, 255);
  for (const int y : {94, 119, 242, 274}) {
    EXPECT_EQ(canvas.GetPoint(kLeft, y), kMarks) << y;
    EXPECT_EQ(canvas.GetPoint(496, y), kMarks) << y;
    EXPECT_EQ(canvas.GetPoint(kLeft - 1, y), kColorBlack) << y;
  }
}

TEST(Display, DrawsTheRectifiedWaveformAdditively) {
  AlignedVector<float> fir(16);  // time marks stand at samples 8, 4 and 2
  fir[0] = 0.5f;
  fir[6] = -1.0f;
  Display display(48000, fir);
  Canvas canvas;
  ASSERT_TRUE(display.Draw(&canvas));
  const int once = 255 * 178 / 256;
  EXPECT_EQ(canvas.GetPoint(kLeft, 100).R, once);
  EXPECT_EQ(canvas.GetPoint(kLeft, 100).G, 0);
  EXPECT_EQ(canvas.GetPoint(kLeft, 93).R, 0);
  EXPECT_EQ(canvas.GetPoint(TimeToX(6.0 / 16.0, 16), 44).R, 255) << "two meet at the peak";
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
                                     1e-6f);
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
        const IColor pixel = canvas.GetPoint(x, y);
        ASSERT_EQ(pixel.B, 0);
        for (const auto& [channel, level] : {std::pair(pixel.R, red), std::pair(pixel.G, green)}) {
          // A float that lies this close to a whole number may truncate to either side.
          if (std::abs(level - std::round(level)) < 1e-4) continue;
          ASSERT_EQ(channel, static_cast<int>(level) & 255) << x << ", " << k;
        }
      }
    }
  }
  EXPECT_EQ(canvas.GetPoint(column(frames), 300), kColorBlack);
}

TEST(Display, ShowsLevelsLinearInDecibelsAndWrapsOverloadedOnes) {
  int wrapped = 0;
  AlignedVector<float> quiet = Random(1).signal(3000);
  for (float& v : quiet) v *= 0.001f;
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
  EXPECT_FALSE(display.IsDirty()) << "one frame is enough";
  display.SetInFrame(true);
  display.SetComputing(false);
  display.SetClean();
  EXPECT_TRUE(display.IsDirty()) << "the frame may have drawn the old status";
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
      EXPECT_TRUE(canvas.IsBlack() && canvas.labels.empty());
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  worker.join();
  EXPECT_GT(refused, 0);
  EXPECT_TRUE(display.IsDirty());
  canvas.Wipe();
  ASSERT_TRUE(display.Draw(&canvas));
  EXPECT_EQ(canvas.labels[1].find("19.99 at"), 0U);
}

TEST(Display, DrawsNoMarkWhosePositionIsNoNumber) {
  constexpr float infinity = std::numeric_limits<float>::infinity();
  for (const float value : {0.0f, -infinity, std::numeric_limits<float>::quiet_NaN(), 3e38f}) {
    AlignedVector<float> fir(1000);
    fir[500] = value;
    Display display(48000, fir);
    Canvas canvas;
    EXPECT_TRUE(display.Draw(&canvas));
    const bool hasLevels = value == 3e38f;
    EXPECT_EQ(canvas.labels.size(), hasLevels ? 13U : 10U) << value;
    EXPECT_EQ(canvas.GetPoint(300, 242), kMarks) << value;
    EXPECT_EQ(canvas.GetPoint(300, 0), kColorBlack) << value;
  }
  Display empty(48000, {});
  Canvas canvas;
  EXPECT_TRUE(empty.Draw(&canvas));
  EXPECT_EQ(canvas.labels.size(), 6U) << "the status, two units and the frequencies";
  EXPECT_EQ(canvas.GetPoint(0, 50), kColorBlack);
}

}  // namespace
