// The kernel that sums products of spectra stored by blocks of bins, written over a vector type.
// Everything here has internal linkage: each instruction set compiles its own copy, and the linker
// must never merge one that a lesser processor would run.
#pragma once

#include "numeric/SpectrumBlocks.h"

namespace {

// One block of bins of each channel's sums, in registers.
template <class Vector, int kChannels>
struct BlockSums {
  static constexpr int lanes = sizeof(Vector) / sizeof(float);
  static constexpr int vectors = kBinBlock / lanes;
  Vector re[kChannels][vectors], im[kChannels][vectors];

  BlockSums(float* const* y, std::ptrdiff_t at) {
    for (int c = 0; c < kChannels; ++c) {
      for (int i = 0; i < vectors; ++i) {
        const float* const pairs = y[c] + at + 2 * lanes * i;
        const Vector a = Vector::load(pairs), b = Vector::load(pairs + lanes);
        re[c][i] = Vector::even(a, b);
        im[c][i] = Vector::odd(a, b);
      }
    }
  }
  void store(float* const* y, std::ptrdiff_t at) const {
    for (int c = 0; c < kChannels; ++c) {
      for (int i = 0; i < vectors; ++i) {
        float* const pairs = y[c] + at + 2 * lanes * i;
        Vector::interleave_low(re[c][i], im[c][i]).store(pairs);
        Vector::interleave_high(re[c][i], im[c][i]).store(pairs + lanes);
      }
    }
  }
  // Adds the products of `rows` consecutive rows, in ascending order. Each element of h is loaded
  // once for all channels.
  void add(const float* const* x, std::ptrdiff_t at, const float* h, int rows) {
    for (int p = 0; p < rows; ++p, at += kBlockRow, h += kBlockRow) {
      for (int i = 0; i < vectors; ++i) {
        const Vector hr = Vector::load(h + lanes * i), hi = Vector::load(h + kBinBlock + lanes * i);
        for (int c = 0; c < kChannels; ++c) {
          const float* const row = x[c] + at + lanes * i;
          const Vector xr = Vector::load(row), xi = Vector::load(row + kBinBlock);
          re[c][i] = re[c][i] + (xr * hr - hi * xi);
          im[c][i] = im[c][i] + (hr * xi + xr * hi);
        }
      }
    }
  }
};

// See SpectrumKernel.
template <class Vector, int kChannels>
void sum_products(float* const* y, const float* const* x, const float* h, int blocks, int rows,
                  int head) {
  const std::ptrdiff_t run = std::ptrdiff_t{kBlockRow} * rows;
  const std::ptrdiff_t start = std::ptrdiff_t{kBlockRow} * head;
  for (int b = 0; b < blocks; ++b) {
    BlockSums<Vector, kChannels> sums(y, std::ptrdiff_t{kBlockRow} * b);
    sums.add(x, run * b + start, h + run * b, rows - head);
    sums.add(x, run * b, h + (run * (b + 1) - start), head);
    sums.store(y, std::ptrdiff_t{kBlockRow} * b);
  }
}

}  // namespace
