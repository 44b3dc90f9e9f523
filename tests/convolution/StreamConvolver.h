// Runs a convolver of fixed blocks over a whole signal, and holds its output against the truth.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <span>

#include "numeric/AlignedVector.h"
#include "tests/support/Random.h"
#include "tests/support/Reference.h"

inline AlignedVector<float> random_signal(int size, std::uint64_t seed) {
  return Random(seed).signal(static_cast<std::size_t>(size));
}

// Feeds the whole blocks of x through the convolver and returns its output, as many samples as
// those blocks hold. The convolver gets one and the same array for input and output.
template <class Convolver>
AlignedVector<float> stream(Convolver& convolver, int block_size, const AlignedVector<float>& x) {
  const auto size = static_cast<std::size_t>(block_size);
  AlignedVector<float> block(size);
  AlignedVector<float> y;
  for (std::size_t i = 0; i + size <= x.size(); i += size) {
    std::copy_n(x.data() + i, size, block.data());
    convolver.process(block, block);
    y.insert(y.end(), block.begin(), block.end());
  }
  return y;
}

// The streamed y holds the beginning of expected, to the rounding of the transforms.
inline void expect_stream(const AlignedVector<float>& y, std::span<const double> expected) {
  expected = expected.first(std::min(expected.size(), y.size()));
  EXPECT_LT(reference::relative_error(y, expected), 6e-7) << reference::worst(y, expected);
}
