// The wrapper: transforms from any address, new lengths, and the searches for fast lengths.
#include "numeric/FFTWrap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "tests/support/Random.h"
#include "tests/support/Reference.h"

namespace {

using Wrap = FFTWrap<float>;

// The defining sum and the way back, at one length, from arrays `offset` elements off alignment.
void check_length(Wrap& fft, int n, std::size_t offset) {
  const auto count = static_cast<std::size_t>(n), bins = count / 2 + 1;
  Random random(static_cast<std::uint64_t>(n));
  AlignedVector<float> x = random.signal(count + offset);
  const AlignedVector<float> before = x;
  AlignedVector<complex> X(bins + offset);
  fft.forward_real_2_cpx(x.data() + offset, X.data() + offset);
  const auto expected = reference::dft(std::span(x).subspan(offset));
  const auto actual = std::span<const complex>(X).subspan(offset);
  EXPECT_LE(reference::relative_error(actual, expected), reference::transform_limit(n))
      << "length " << n << ", " << reference::worst(actual, expected);
  EXPECT_TRUE(reference::same_bits(x, before)) << "length " << n;

  AlignedVector<float> back(count + offset);
  fft.inverse_cpx_2_real(back.data() + offset, X.data() + offset, 0);
  EXPECT_LE(reference::relative_error(std::span<const float>(back).subspan(offset),
                                      std::span<const float>(x).subspan(offset)),
            reference::transform_limit(n))
      << "length " << n;
}

TEST(FFTWrap, ServesAnyLengthInAnyOrderFromAnyAddress) {
  Wrap fft;
  fft.free_cfg();
  std::size_t offset = 0;
  for (const int n : {64, 1, 1018, 2, 63, 3, 882, 17, 1000, 128}) {
    fft.update(n);
    check_length(fft, n, offset++ % 4);
    for (int again = 0; again < 2 && n > 900; ++again) fft.free_cfg();
  }
}

TEST(FFTWrap, VectorFormsEqualPointerForms) {
  constexpr int n = 96;
  Wrap fft(n);
  Random random(7);
  AlignedVector<float> x = random.signal(n), y(n), z(n);
  AlignedVector<complex> X(n / 2 + 1), Y(n / 2 + 1);
  fft.forward_real_2_cpx(x, X);
  fft.forward_real_2_cpx(x.data(), Y.data());
  EXPECT_EQ(X, Y);
  fft.inverse_cpx_2_real(y, X);
  fft.inverse_cpx_2_real(z.data(), X.data(), 5);
  EXPECT_EQ(y, z);
  EXPECT_EQ(X, Y) << "the inverse changed its input";
}

TEST(FFTWrap, FastLengthsAreTheNextProductsOfTheirPrimes) {
  const std::vector<int> of_2357 = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 12,
                                    14, 15, 16, 18, 20, 21, 24, 25, 27, 28, 30};
  const std::vector<int> even_of_235 = {2, 4, 6, 8, 10, 12, 16, 18, 20, 24, 30};
  for (int n = 1; n <= 30; ++n) {
    EXPECT_EQ(Wrap::FFT_next_fast_size_lib(n), *std::ranges::lower_bound(of_2357, n)) << n;
    EXPECT_EQ(Wrap::FFT_next_even_fast_size(n), *std::ranges::lower_bound(even_of_235, n)) << n;
  }
  EXPECT_EQ(Wrap::FFT_next_fast_size_lib(1000), 1000);
  EXPECT_EQ(Wrap::FFT_next_fast_size_lib(1023), 1024);
  EXPECT_EQ(Wrap::FFT_next_fast_size_lib(2 * 1701 * 1701 + 1), 5788125);
  EXPECT_EQ(Wrap::FFT_next_fast_size_arbitrary(5, {2}), 8);
  EXPECT_EQ(Wrap::FFT_next_fast_size_arbitrary(23, {11, 3}), 27);
  EXPECT_EQ(Wrap::FFT_next_fast_size_arbitrary(1, {}), 1);
}

}  // namespace
