// Spectra of equal length stored by blocks of bins, and the sum of their products.
#pragma once

#include <cstddef>

#include "numeric/AlignedVector.h"

constexpr int kBinBlock = 16;  // bins of a block: two cache lines of a spectrum

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

// One form of the sum: for `blocks` blocks of 16 bins at y, interleaved, and from x and h on,
//   y[b] += x[(head + p) mod rows][b] * h[p][b]   for p = 0, 1, ..., rows - 1 in this order,
// by the plain formula of the complex product, each operation rounded. Blocks of x and of h are
// `rows` rows apart. All forms give the same bits.
using SpectrumKernel = void (*)(float* y, const float* x, const float* h, int blocks, int rows,
                                int head);
// By the jump index of the transform engine; several indices share a form.
extern const SpectrumKernel spectrum_kernels[];

// Adds to the bins first to first + count - 1 of y the products of x and h, whose rows x begins at
// `head`: bit-identical to one cpx_mult_inplace_add_fastest over that range for each p in ascending
// order, strict products in the last count mod 4 bins included.
void add_products(complex* y, const SpectrumBlocks& x, int head, const SpectrumBlocks& h, int first,
                  int count);
