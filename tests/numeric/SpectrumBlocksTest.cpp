// The sum of products over blocks of bins, in every form that this processor runs, beside one plain
// product after the other.
#include "numeric/SpectrumBlocks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "numeric/VectorizedFunctions.h"
#include "numeric/dft/Engine.h"
#include "tests/support/AllocationGuard.h"
#include "tests/support/Random.h"
#include "tests/support/Reference.h"

namespace {

using Spectra = std::vector<AlignedVector<complex>>;

// Random bins; `special` of them in 64 hold a zero, subnormal, huge, infinite or NaN part.
AlignedVector<complex> spectrum(Random& random, int bins, int special) {
  using Limits = std::numeric_limits<float>;
  const float parts[] = {0.0F,
                         -0.0F,
                         Limits::denorm_min(),
                         -1e-40F,
                         1e-30F,
                         3e38F,
                         -3e38F,
                         Limits::infinity(),
                         -Limits::infinity(),
                         Limits::quiet_NaN()};
  auto x = random.spectrum(static_cast<std::size_t>(bins));
  for (complex& bin : x) {
    if (random.integer(0, 63) >= special) continue;
    bin = {parts[random.integer(0, 9)],
           random.integer(0, 1) ? bin.imag() : parts[random.integer(0, 9)]};
  }
  return x;
}

SpectrumBlocks blocks_of(const Spectra& spectra) {
  SpectrumBlocks blocks(static_cast<int>(spectra.size()), static_cast<int>(spectra[0].size()));
  for (int row = 0; row < blocks.rows(); ++row)
    blocks.put(row, spectra[static_cast<std::size_t>(row)].data());
  return blocks;
}

// NaN has many encodings, which the order of a sum's operands chooses between; here all are one.
void unify_nans(AlignedVector<complex>& x) {
  for (float* v = reinterpret_cast<float*>(x.data());
       v < reinterpret_cast<float*>(x.data() + x.size()); ++v) {
    if (std::isnan(*v)) *v = std::numeric_limits<float>::quiet_NaN();
  }
}

std::span<const float> floats(const AlignedVector<complex>& x) {
  return {reinterpret_cast<const float*>(x.data()), 2 * x.size()};
}

struct Case {
  int rows, bins, special;
};

Spectra spectra(Random& random, const Case& c) {
  Spectra all;
  for (int p = 0; p < c.rows; ++p) all.push_back(spectrum(random, c.bins, c.special));
  return all;
}

void compare(const Case& c, Random& random) {
  const Spectra x[] = {spectra(random, c), spectra(random, c)}, h = spectra(random, c);
  const SpectrumBlocks x_blocks[] = {blocks_of(x[0]), blocks_of(x[1])}, h_blocks = blocks_of(h);
  for (int trial = 0; trial < 20; ++trial) {
    const int head = random.integer(0, c.rows - 1), first = random.integer(0, c.bins - 1);
    const int count = trial == 0 ? c.bins - first : random.integer(0, c.bins - first);
    AlignedVector<complex> expected[2], sum[2], lone;
    for (std::size_t channel = 0; channel < 2; ++channel) {
      AlignedVector<complex>& y = expected[channel];
      sum[channel] = lone = y = spectrum(random, c.bins, c.special);
      for (int p = 0; p < c.rows; ++p) {
        const auto row = static_cast<std::size_t>((head + p) % c.rows);
        VectorizedFunctions<float>::cpx_mult_inplace_add_fastest(
            y.data() + first, x[channel][row].data() + first,
            h[static_cast<std::size_t>(p)].data() + first, count);
      }
    }
    const SpectrumChannel pair[] = {{sum[0].data(), &x_blocks[0]}, {sum[1].data(), &x_blocks[1]}};
    const SpectrumChannel single[] = {{lone.data(), &x_blocks[1]}};
    const AllocationGuard guard;
    add_products(pair, head, h_blocks, first, count);
    add_products(single, head, h_blocks, first, count);
    EXPECT_EQ(guard.allocations(), 0);
    for (auto* y : {&expected[0], &expected[1], &sum[0], &sum[1], &lone}) unify_nans(*y);
    ASSERT_TRUE(reference::same_bits(floats(sum[0]), floats(expected[0])) &&
                reference::same_bits(floats(sum[1]), floats(expected[1])) &&
                reference::same_bits(floats(lone), floats(expected[1])))
        << c.rows << " rows, " << c.bins << " bins, head " << head << ", bins " << first << " to "
        << first + count - 1 << ", special " << c.special;
  }
}

TEST(SpectrumBlocks, SumsInEveryFormAsTheSequenceOfProducts) {
  const int index = ippJumpIndexForMergedLibs;
  for (int form = 0; form <= dft::best_engine(); ++form) {
    SCOPED_TRACE(testing::Message() << "index " << form);
    ippJumpIndexForMergedLibs = form;
    Random random(1);
    for (const int bins : {1, 2, 3, 5, 15, 16, 17, 33, 65, 128, 211}) {
      for (const int rows : {1, 2, 3, 40, 70}) {
        for (const int special : {0, 1, 24}) compare({rows, bins, special}, random);
      }
    }
  }
  ippJumpIndexForMergedLibs = index;
}

}  // namespace
