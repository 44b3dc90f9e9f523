// The kernel that sums products of spectra stored by blocks of bins, written over a vector type.
// Everything here has internal linkage: each instruction set compiles its own copy, and the linker
// must never merge one that a lesser processor would run.
#pragma once

#include "numeric/SpectrumBlocks.h"

namespace {

// The sums of one block of bins, in registers.
template <class Vector>
struct BlockSums {
  static constexpr int lanes = sizeof(Vector) / sizeof(float);
  static constexpr int vectors = kBinBlock / lanes;
  Vector re[vectors], im[vectors];

  explicit BlockSums(const float* pairs) {
    for (int i = 0; i < vectors; ++i) {
      const Vector a = Vector::load(pairs + 2 * lanes * i);
      const Vector b = Vector::load(pairs + 2 * lanes * i + lanes);
      re[i] = Vector::even(a, b);
      im[i] = Vector::odd(a, b);
    }
  }
  void store(float* pairs) const {
    for (int i = 0; i < vectors; ++i) {
      Vector::interleave_low(re[i], im[i]).store(pairs + 2 * lanes * i);
      Vector::interleave_high(re[i], im[i]).store(pairs + 2 * lanes * i + lanes);
    }
  }
  // Adds the products of `rows` consecutive rows, in ascending order.
  void add(const float* x, const float* h, int rows) {
    for (int p = 0; p < rows; ++p, x += 2 * kBinBlock, h += 2 * kBinBlock) {
      for (int i = 0; i < vectors; ++i) {
        const Vector xr = Vector::load(x + lanes * i), xi = Vector::load(x + kBinBlock + lanes * i);
        const Vector hr = Vector::load(h + lanes * i), hi = Vector::load(h + kBinBlock + lanes * i);
        re[i] = re[i] + (xr * hr - hi * xi);
        im[i] = im[i] + (hr * xi + xr * hi);
      }
    }
  }
};

// See SpectrumKernel.
template <class Vector>
void sum_products(float* y, const float* x, const float* h, int blocks, int rows, int head) {
  const std::ptrdiff_t run = std::ptrdiff_t{2 * kBinBlock} * rows;
  const std::ptrdiff_t start = std::ptrdiff_t{2 * kBinBlock} * head;
  for (int b = 0; b < blocks; ++b, y += 2 * kBinBlock, x += run, h += run) {
    BlockSums<Vector> sums(y);
    sums.add(x + start, h, rows - head);
    sums.add(x, h + (run - start), head);
    sums.store(y);
  }
}

}  // namespace
