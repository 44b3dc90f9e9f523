// Spectra stored by blocks of bins: conversion from and to whole spectra, and the sum's edges.
#include "numeric/SpectrumBlocks.h"

#include <algorithm>
#include <atomic>
#include <cmath>

#include "numeric/ComplexProduct.h"
#include "numeric/dft/Engine.h"

namespace {

constexpr int kStrictBins = 4;  // a range's last bins, count modulo this, are strict products

SpectrumKernel chosen_kernel() {
  const std::atomic_ref index(ippJumpIndexForMergedLibs);
  if (index.load(std::memory_order_relaxed) < 0) ippInit();
  return spectrum_kernels[index.load(std::memory_order_relaxed)];
}

float* floats(complex* x) { return reinterpret_cast<float*>(x); }
bool is_nan(complex x) { return std::isnan(x.real()) && std::isnan(x.imag()); }

int blocks_of(int bins) { return (bins + kBinBlock - 1) / kBinBlock; }

}  // namespace

SpectrumBlocks::SpectrumBlocks(int rows, int bins)
    : row_count(rows), bin_count(bins), values(offset(blocks_of(bins), 0)) {}

void SpectrumBlocks::put(int row, const complex* spectrum) {
  for (int b = 0; b < blocks_of(bin_count); ++b) {
    float* const re = values.data() + offset(b, row);
    const complex* const in = spectrum + b * kBinBlock;
    const int count = std::min(kBinBlock, bin_count - b * kBinBlock);
    for (int i = 0; i < count; ++i) {
      re[i] = in[i].real();
      re[i + kBinBlock] = in[i].imag();
    }
  }
}

void SpectrumBlocks::copy(int row, const SpectrumBlocks& from, int from_row) {
  for (int b = 0; b < blocks_of(bin_count); ++b) {
    std::copy_n(from.values.data() + from.offset(b, from_row), 2 * kBinBlock,
                values.data() + offset(b, row));
  }
}

complex SpectrumBlocks::at(int row, int bin) const {
  const float* const re = values.data() + offset(bin / kBinBlock, row) + bin % kBinBlock;
  return {re[0], re[kBinBlock]};
}

void SpectrumBlocks::clear() { std::fill(values.begin(), values.end(), 0.0F); }

namespace {

// The sum for one range of bins, whole blocks first.
struct RangeSum {
  complex* y;
  const SpectrumBlocks& x;
  int head;
  const SpectrumBlocks& h;

  void whole_blocks(int block, int count, complex* out) const {
    chosen_kernel()(floats(out), x.block(block), h.block(block), count, h.rows(), head);
  }

  // A range within one block, by a copy of the bins in it.
  void part_of_block(int first, int count) const {
    alignas(64) complex sums[kBinBlock] = {};
    const int block = first / kBinBlock;
    complex* const inside = sums + first % kBinBlock;
    std::copy_n(y + first, count, inside);
    whole_blocks(block, 1, sums);
    std::copy_n(inside, count, y + first);
  }

  void plain(int first, int end) const {
    const int whole = std::min((first + kBinBlock - 1) / kBinBlock * kBinBlock, end);
    if (first < whole) part_of_block(first, whole - first);
    const int rest = end / kBinBlock * kBinBlock;
    if (whole < rest) whole_blocks(whole / kBinBlock, (rest - whole) / kBinBlock, y + whole);
    if (const int part = std::max(whole, rest); part < end) part_of_block(part, end - part);
  }

  void strict(int bin) const {
    for (int p = 0; p < h.rows(); ++p) {
      y[bin] += complex_product::strict(x.at((head + p) % h.rows(), bin), h.at(p, bin));
    }
  }
};

}  // namespace

// Strict products differ from plain ones only where both parts of a plain one are NaN. The sum is
// then NaN too, so that the few strict bins need a second look only in this case.
void add_products(complex* y, const SpectrumBlocks& x, int head, const SpectrumBlocks& h, int first,
                  int count) {
  const RangeSum sum{y, x, head, h};
  const int end = first + count, tail = end - count % kStrictBins;
  complex before[kStrictBins];
  std::copy(y + tail, y + end, before);
  sum.plain(first, end);
  for (int bin = tail; bin < end; ++bin) {
    if (!is_nan(y[bin])) continue;
    y[bin] = before[bin - tail];
    sum.strict(bin);
  }
}
