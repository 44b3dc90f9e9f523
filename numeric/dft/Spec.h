// What a spec block holds: the length, the scaling, and the plan by which it is transformed.
//
// A plan is a list of mixed-radix passes. Where the lanes of vectors hold sub-transforms, plan and
// tables depend on their number: a spec block serves the variant of the kernels that built it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace dft {

constexpr int kIdentifier = 15;      // first word of every valid spec block
constexpr int kMaxPasses = 24;       // 3^16 is the longest product of small primes below 2^27
constexpr int kNarrowest = 4;        // lanes of the narrowest vector of any variant's kernels
constexpr int kBatch = 16;           // columns that a split transform handles together
constexpr int kLine = 16;            // floats per cache line
constexpr int kPadding = 3 * kLine;  // floats after each work array; keeps arrays off equal sets

// One pass of the self-sorting (Stockham) decomposition, decimation in frequency: with step =
// stride * blocks, block p, q below stride and twiddle w of length radix * blocks,
//   y[q + stride * (radix * p + k)] = w^(p k) * sum over l of x[q + stride * p + step * l]
//   w_radix^(k l)
struct Pass {
  int radix;
  int stride;
  int blocks;
  std::uint32_t table;  // twiddles, in lines from the start of the spec block
};

struct PassPlan {
  int length;  // complex points; 0 for an unused plan
  int count;   // passes
  int copies;  // of each part of a twiddle in the tables, but for a fused pass
  int fused;   // 1 if the first pass transposes: vectors run over its blocks, not its stride
  Pass pass[kMaxPasses];
};

// A complex transform of `length` points: by passes alone, or, where those would stream from
// memory, split in two dimensions: columns first, twiddles, then rows.
struct CorePlan {
  int length;
  PassPlan columns;  // the whole transform if rows.length is 0
  PassPlan rows;
  std::uint32_t fine;    // split twiddles w^(k * b), b below kBatch, in lines
  std::uint32_t coarse;  // split twiddles w^(k * first column of a batch), in lines
};

struct Spec {
  int identifier;
  int length;  // real samples
  int flag;
  int hint;
  float forward_scale;
  float inverse_scale;
  int complex_length;         // length / 2 for even lengths, length for odd ones
  int chirp;                  // 1 if the core convolves with a chirp
  int lanes;                  // of the vectors that hold one sub-transform a lane, or 0
  std::uint32_t weights;      // P and Q of lane transforms, in lines
  std::uint32_t middle;       // the matrices of the bin H of lane transforms, in lines
  std::uint32_t recombine;    // separates even and odd samples; even lengths only, in lines
  std::uint32_t chirp_table;  // in lines
  std::uint32_t filter;       // spectrum of the conjugate chirp, in lines
  CorePlan core;
};

inline const float* table(const Spec& spec, std::uint32_t lines) {
  return reinterpret_cast<const float*>(&spec) + std::size_t{lines} * kLine;
}

// Floats taken by n floats in whole lines.
constexpr std::size_t in_lines(std::size_t n) { return (n + kLine - 1) / kLine * kLine; }

// Floats from one row to the next in the twiddle table of a fused first pass: row 2 k - 2 holds
// the real parts of w^(p k) for all p, row 2 k - 1 the imaginary ones. The extra line keeps rows of
// a power of two apart.
constexpr std::size_t fused_row(int blocks) {
  return in_lines(static_cast<std::size_t>(blocks)) + kLine;
}

// A radix without a kernel of its own; its table starts with the roots of unity of the radix.
constexpr bool is_generic(int radix) { return radix > 8; }

// Work arrays of one transform, in floats from the aligned start of the work block.
struct WorkLayout {
  std::size_t array;    // distance of the four arrays of the ping-pong buffers
  std::size_t scratch;  // distance of the four arrays of a split transform's batches, or 0

  explicit WorkLayout(const CorePlan& core, int complex_length) {
    const int longest = core.length > complex_length ? core.length : complex_length;
    array = in_lines(static_cast<std::size_t>(longest)) + kPadding;
    const int side =
        core.columns.length > core.rows.length ? core.columns.length : core.rows.length;
    scratch = core.rows.length > 0 ? static_cast<std::size_t>(side) * kBatch + kPadding : 0;
  }
  std::size_t floats() const { return 4 * (array + scratch); }
};

}  // namespace dft
