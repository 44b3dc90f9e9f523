// Weighted counts of the points of an orthogonal lattice within each distance of the origin: the
// Gauss circle problem in one to five dimensions.
#pragma once

#include "numeric/AlignedVector.h"
#include "numeric/FFTWrap.h"

// How GaussCircle::compute_C fills its table.
enum class ComputeMode : int {
  BRUTE = 0,
  NAIVE = 1,
  VECTORIZED = 2,
  VECTORIZED_SSE2 = 3,
  VECTORIZED_AVX = 4,  // the same computation as VECTORIZED_SSE2
  FFT = 5,
  FASTEST = 6,  // the same computation as VECTORIZED_SSE2
};

// Image sources of an orthogonal room. Axis i has period L, offset o and weight w; its image n
// stands at n * L + o and counts w to the power |n|, or exactly 0 below -120 dB. C[d][s] is the
// summed product of the weights of all images within squared distance s of the origin, over the
// first d + 1 axes.
//
// update derives everything and allocates; compute_C fills the table and may be repeated. The
// caller guarantees D >= 1, 1 <= S <= 46340 and every size >= 1. One thread at a time; in the
// plug-in it is the worker's.
template <class T>
class GaussCircle {
 public:
  GaussCircle() = default;
  GaussCircle(int D, int S, const AlignedVector<int>& dim_sizes,
              const AlignedVector<int>& dim_offsets, const AlignedVector<T>& dim_weights,
              ComputeMode mode);

  // Takes a lattice of D axes up to radius S; the arrays have at least D entries. Offsets are
  // stored as min(|offset|, size / 2). The table is all zero afterwards.
  void update(int D, int S, const AlignedVector<int>& dim_sizes,
              const AlignedVector<int>& dim_offsets, const AlignedVector<T>& dim_weights,
              ComputeMode mode);

  // Fills the table by the variant that mode selects; an unknown mode does nothing.
  void compute_C();

  // The variants, each filling all of C. The two vectorised ones give the same bits.
  void compute_C_brute();            // the definition, point by point
  void compute_C_naive();            // the recurrence, cell by cell
  void compute_C_vectorized();       // the recurrence, shift by shift, in plain loops
  void compute_C_vectorized_SSE2();  // the same additions in cached tiles
  void compute_C_vectorized_AVX();   // forwards to the SSE2 form
  void compute_C_FFT();              // by transforms; needs update with mode FFT
  // The recursion of compute_C_brute: counts from axis level on, with sum the squares so far.
  T compute_C_brute_recur(int d_count, int r, int s, int level, int sum, T weight);

  // Indices of the images of axis d within a radius; none if last is below first. The first form
  // works in single precision.
  struct Images {
    int first;
    int last;
  };
  Images images_within(int r, std::size_t d) const;
  Images images_within(double r, std::size_t d) const;

  // Whether both tables have the same shape and no cell differs by more than tolerance. The first
  // difference is written to the standard output.
  bool is_equal_C(const GaussCircle& other, T tolerance) const;

  int getD() const { return D; }
  int getS() const { return S; }
  // s must lie in 0 to S * S.
  T getC(int d, int s) const { return C[static_cast<std::size_t>(d)][static_cast<std::size_t>(s)]; }

  ComputeMode mode = ComputeMode::VECTORIZED_SSE2;  // variant that compute_C calls
  int D = 0;                                        // number of axes and of rows of C
  int S = 0;                                        // largest radius
  int S2 = 0;                                       // S * S
  AlignedVector<AlignedVector<T>> C;                // the table, rows of S2 + 9 cells
  AlignedVector<int> dim_sizes;                     // period of each axis
  AlignedVector<int> dim_offsets;                   // offset of each axis, 0 to size / 2
  AlignedVector<T> dim_weights;                     // weight of each axis
  AlignedVector<AlignedVector<T>> weight_powers;    // powers of each weight, floored to 0
  int fft_size = 0;                                 // transform length of mode FFT
  int fft_bins = 0;                                 // fft_size / 2 + 1
  FFTWrap<T> fft;                                   // transform of mode FFT
  AlignedVector<T> fft_real;                        // fft_size samples
  AlignedVector<complex> fft_spectrum_C;            // spectrum of the previous row
  AlignedVector<complex> fft_spectrum_kernel;       // spectrum of the axis kernel

 private:
  void zero_table();
  void fill_row_0();
  T count_on_axis_0(Images images) const;
  T count_on_axis_0(int q) const;
  T naive_cell(std::size_t d, int s) const;
};
