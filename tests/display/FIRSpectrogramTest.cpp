#include "display/FIRSpectrogram.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/support/Random.h"
#include "tests/support/Reference.h"

namespace {

using Spectrogram = FIRSpectrogram<float>;

constexpr int kRate = 48000;
constexpr float kEpsilon = 1e-6f;

// The middle of frame j, so that rounding cannot reach its neighbours.
float middle(const Spectrogram& s, int j) {
  return (static_cast<float>(j) + 0.5f) * s.get_min_timestep();
}

struct Shape {
  int size, window, overlap, fft_size_min, fft_size, hop;
};

TEST(FIRSpectrogram, HoldsTheWindowedTransformOfEveryFrame) {
  const Shape shapes[] = {{1000, 256, 128, 256, 256, 128},
                          {300, 257, 400, 0, 270, 1},  // hop never falls below 1
                          {100, 64, 0, 100, 100, 64},
                          {7, 16, 4, 3, 16, 12}};
  for (const Shape& shape : shapes) {
    const auto fir = Random(1).signal(static_cast<std::size_t>(shape.size));
    const Spectrogram s(kRate, fir, Spectrogram::Blackman, shape.window, shape.overlap,
                        shape.fft_size_min, kEpsilon);
    AlignedVector<float> window;
    Spectrogram::compute_window(window, Spectrogram::Blackman, shape.window);
    const int frames = (shape.size + shape.hop - 1) / shape.hop;
    ASSERT_EQ(s.get_num_half_bins(), shape.fft_size / 2 + 1);
    EXPECT_EQ(s.time_to_bin_idx(1e9f), frames - 1);
    EXPECT_EQ(s.time_to_bin_idx(-1.0f), 0);
    float largest = 0.0f;
    for (int j = 0; j < frames; ++j) {
      AlignedVector<float> frame(static_cast<std::size_t>(shape.fft_size));
      for (int i = 0; i < std::min(shape.window, shape.size - j * shape.hop); ++i) {
        const auto at = static_cast<std::size_t>(i);
        frame[at] = fir[static_cast<std::size_t>(j * shape.hop + i)] * window[at];
      }
      const auto expected = reference::dft(frame);
      const auto& power = s.get_half_density(middle(s, j));
      const auto& level = s.get_half_density_dB(middle(s, j));
      for (std::size_t k = 0; k < power.size(); ++k) {
        const double magnitude = std::abs(expected[k]) + 1e-6;
        ASSERT_NEAR(std::sqrt(power[k]), magnitude, 1e-5) << "frame " << j << ", bin " << k;
        ASSERT_NEAR(level[k], 10.0 * std::log10(double{power[k]}), 1e-4);
        largest = std::max(largest, power[k]);
      }
    }
    EXPECT_EQ(s.get_max_density(), largest);
    EXPECT_EQ(s.get_min_density(), 0.0f);
    EXPECT_FLOAT_EQ(s.get_max_time(), static_cast<float>(shape.size) / kRate);
  }
}

TEST(FIRSpectrogram, WindowsAreSymmetricAndUnknownOnesSilence) {
  AlignedVector<float> window;
  for (const int size : {2, 5, 256, 257}) {
    Spectrogram::compute_window(window, Spectrogram::Blackman, size);
    ASSERT_EQ(window.size(), static_cast<std::size_t>(size));
    for (int i = 0; i < size; ++i) {
      const double turn = 2.0 * M_PI * i / (size - 1);
      EXPECT_NEAR(window[static_cast<std::size_t>(i)],
                  0.42 - 0.5 * std::cos(turn) + 0.08 * std::cos(2.0 * turn), 1e-7);
    }
    EXPECT_TRUE(std::equal(window.begin(), window.end(), window.rbegin())) << size;
    Spectrogram::compute_window(window, Spectrogram::Rectangular, size);
    EXPECT_EQ(std::count(window.begin(), window.end(), 1.0f), size);
  }
  const auto fir = Random(2).signal(500);
  const Spectrogram s(kRate, fir, static_cast<Spectrogram::WindowType>(2), 64, 32, 64, kEpsilon);
  for (const float dB : s.get_half_density_dB(0.001f)) EXPECT_NEAR(dB, -120.0f, 1e-4f);
}

TEST(FIRSpectrogram, AnUpdateLeavesNoTraceOfTheLastAnalysis) {
  const auto first = Random(3).signal(5000);
  AlignedVector<float> second = Random(4).signal(700);
  second[300] = -3.0f;
  Spectrogram used(kRate, first, Spectrogram::Rectangular, 100, 10, 0, kEpsilon);
  used.update(kRate, second, Spectrogram::Blackman, 256, 128, 256, kEpsilon);
  // A second time from its own copy.
  used.update(kRate, used.get_fir(), Spectrogram::Blackman, 256, 128, 256, kEpsilon);
  const Spectrogram fresh(kRate, second, Spectrogram::Blackman, 256, 128, 256, kEpsilon);
  EXPECT_EQ(used.get_fir(), second);
  EXPECT_EQ(used.get_fir_peak(), 3.0f);
  EXPECT_EQ(used.get_max_density(), fresh.get_max_density());
  for (int j = 0; j < 6; ++j) {
    EXPECT_EQ(used.get_half_density(middle(used, j)), fresh.get_half_density(middle(fresh, j)));
  }
  used.update(kRate, {}, Spectrogram::Blackman, 256, 128, 256, kEpsilon);
  EXPECT_EQ(used.get_fir_peak(), 0.0f);
  EXPECT_EQ(used.get_max_density(), 0.0f);
  EXPECT_EQ(used.time_to_bin_idx(1.0f), 0);
}

}  // namespace
