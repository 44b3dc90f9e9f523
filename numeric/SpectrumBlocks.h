// Spectra of equal length stored by blocks of bins, and the sum of their products.
#pragma once

#include <cstddef>
#include <span>

#include "numeric/AlignedVector.h"

constexpr int kBinBlock = 16;             // bins of a block
constexpr int kBlockRow = 2 * kBinBlock;  // floats of a block in one row: two cache lines

// A table of spectra, one a row, all of the same number of bins. A block of bins lies together for
// all rows, so that a run of bins is read through all rows as one stream of memory:
// [block][row][16 real parts, then 16 imaginary parts]. Bins past the last one are zeros.
// Construction allocates; all else may run on the audio thread. One thread at a time may write.
class SpectrumBlocks {
 public:
  SpectrumBlocks() = default;
  SpectrumBlocks(int rows, int bins);  // zeros

  int rows() const { return row_count; }

  // Take a whole spectrum in, interleaved or from a table of as many bins.
  void put(int row, const complex* spectrum);
  void copy(int row, const SpectrumBlocks& from, int from_row);
  complex at(int row, int bin) const;
  void clear();

  const float* block(int index) const { return values.data() + offset(index, 0); }

 private:
  std::size_t offset(int block, int row) const {
    return static_cast<std::size_t>(block * row_count + row) * (2 * kBinBlock);
  }

  int row_count = 0;
  int bin_count = 0;
  AlignedVector<float> values;
};

// One form of the sum: for each channel, for `blocks` blocks of 16 bins of y, interleaved, and of x
// and h, by the plain formula of the complex product, each operation rounded:
//   y[b] += x[(head + p) mod rows][b] * h[p][b]   for p = 0, 1, ..., rows - 1 in this order.
// Blocks of x and of h are `rows` rows apart.
using SpectrumKernel = void (*)(float* const* y, const float* const* x, const float* h, int blocks,
                                int rows, int head);
// The forms for one and for two channels, by the jump index of the transform engine. Several
// indices share a form, and all forms give the same bits.
extern const SpectrumKernel spectrum_kernels[][2];

// A channel of the sum: the spectrum that is added to, and the table of those that are multiplied.
struct SpectrumChannel {
  complex* y;
  const SpectrumBlocks* x;
};

// Adds to bins first to first + count - 1 of one or two channels the products of x and h. Row
// `head` of each x meets row 0 of h. Bit-identical to one cpx_mult_inplace_add_fastest per channel
// over that range for each row of h in ascending order, which takes the last count mod 4 bins by
// the strict product. Allocates nothing.
void add_products(std::span<const SpectrumChannel> channels, int head, const SpectrumBlocks& h,
                  int first, int count);
