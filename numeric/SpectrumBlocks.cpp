// Spectra stored by blocks of bins: conversion from and to whole spectra, and the sum's edges.
#include "numeric/SpectrumBlocks.h"

#include <algorithm>
#include <atomic>
#include <cmath>

#include "numeric/ComplexProduct.h"
#include "numeric/Float4.h"
#include "numeric/dft/Engine.h"

namespace {

constexpr int kStrictBins = 4;  // a range's last bins, count modulo this, are strict products

constexpr std::size_t kMaxChannels = 2;

SpectrumKernel kernel_for(std::size_t channels) {
  const std::atomic_ref index(ippJumpIndexForMergedLibs);
  if (index.load(std::memory_order_relaxed) < 0) ippInit();
  return spectrum_kernels[index.load(std::memory_order_relaxed)][channels - 1];
}

float* floats(complex* x) { return reinterpret_cast<float*>(x); }

// Parts 16 bins into their real and then their imaginary parts.
void part_block(const complex* bins, float* out) {
  const float* const in = reinterpret_cast<const float*>(bins);
  for (int i = 0; i < kBinBlock; i += 4) {
    const Float4 a = Float4::load(in + 2 * i), b = Float4::load(in + 2 * i + 4);
    Float4::even(a, b).store(out + i);
    Float4::odd(a, b).store(out + kBinBlock + i);
  }
}
bool is_nan(complex x) { return std::isnan(x.real()) && std::isnan(x.imag()); }

int blocks_of(int bins) { return (bins + kBinBlock - 1) / kBinBlock; }

}  // namespace

SpectrumBlocks::SpectrumBlocks(int rows, int bins)
    : row_count(rows), bin_count(bins), values(offset(blocks_of(bins), 0)) {}

void SpectrumBlocks::put(int row, const complex* spectrum) {
  const int whole = bin_count / kBinBlock, rest = bin_count % kBinBlock;
  for (int b = 0; b < whole; ++b) {
    part_block(spectrum + b * kBinBlock, values.data() + offset(b, row));
  }
  if (rest == 0) return;
  complex last[kBinBlock] = {};
  std::copy_n(spectrum + whole * kBinBlock, rest, last);
  part_block(last, values.data() + offset(whole, row));
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

// The sum over one range of bins, by whole blocks and parts of blocks.
struct RangeSum {
  std::span<const SpectrumChannel> channels;
  int head;
  const SpectrumBlocks& h;

  void whole_blocks(int block, int count, float* const* y) const {
    const float* x[kMaxChannels];
    for (std::size_t c = 0; c < channels.size(); ++c) x[c] = channels[c].x->block(block);
    kernel_for(channels.size())(y, x, h.block(block), count, h.rows(), head);
  }

  void whole_blocks(int block, int count) const {
    float* y[kMaxChannels];
    for (std::size_t c = 0; c < channels.size(); ++c)
      y[c] = floats(channels[c].y + block * kBinBlock);
    whole_blocks(block, count, y);
  }

  // A range within one block, in a copy of its bins.
  void part_of_block(int first, int count) const {
    alignas(64) complex copy[kMaxChannels][kBinBlock] = {};
    float* const y[kMaxChannels] = {floats(copy[0]), floats(copy[1])};
    const int inside = first % kBinBlock;
    for (std::size_t c = 0; c < channels.size(); ++c)
      std::copy_n(channels[c].y + first, count, copy[c] + inside);
    whole_blocks(first / kBinBlock, 1, y);
    for (std::size_t c = 0; c < channels.size(); ++c)
      std::copy_n(copy[c] + inside, count, channels[c].y + first);
  }

  void plain(int first, int end) const {
    const int whole = std::min(blocks_of(first) * kBinBlock, end);
    const int rest = std::max(end / kBinBlock * kBinBlock, whole);
    if (first < whole) part_of_block(first, whole - first);
    if (whole < rest) whole_blocks(whole / kBinBlock, (rest - whole) / kBinBlock);
    if (rest < end) part_of_block(rest, end - rest);
  }

  // One bin of one channel, whose sum so far is y.
  complex strict(complex y, const SpectrumBlocks& x, int bin) const {
    for (int p = 0; p < h.rows(); ++p) {
      y += complex_product::strict(x.at((head + p) % h.rows(), bin), h.at(p, bin));
    }
    return y;
  }
};

}  // namespace

// Strict products differ from plain ones only where both parts of a plain one are NaN. The sum is
// then NaN too, so that the few strict bins need a second look only in this case.
void add_products(std::span<const SpectrumChannel> channels, int head, const SpectrumBlocks& h,
                  int first, int count) {
  const RangeSum sum{channels, head, h};
  const int end = first + count, tail = end - count % kStrictBins;
  complex before[kMaxChannels][kStrictBins];
  for (std::size_t c = 0; c < channels.size(); ++c)
    std::copy(channels[c].y + tail, channels[c].y + end, before[c]);
  sum.plain(first, end);
  for (std::size_t c = 0; c < channels.size(); ++c) {
    for (int bin = tail; bin < end; ++bin) {
      complex& y = channels[c].y[bin];
      if (is_nan(y)) y = sum.strict(before[c][bin - tail], *channels[c].x, bin);
    }
  }
}
