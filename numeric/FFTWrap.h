// One object per transform length: the real DFT and its inverse, and the searches for lengths that
// the engine handles quickly.
#pragma once

#include <vector>

#include "numeric/AlignedVector.h"

// Real DFT of any length n, single precision. The spectrum is `half_size` = n / 2 + 1 complex bins,
// bin 0 first: X[k] = sum over t of x[t] exp(-2 pi i k t / n). The forward transform is unscaled,
// the inverse divides by n. Callers' arrays need no alignment, and inputs keep their contents.
// `update` and the constructor with a length allocate; the transforms allocate nothing and may run
// on the audio thread. One object serves one thread at a time. Unusable before `update`; failed
// allocations are not reported.
template <class T>
class FFTWrap {
 public:
  FFTWrap() = default;
  explicit FFTWrap(int n);
  ~FFTWrap();
  FFTWrap(const FFTWrap&) = delete;
  FFTWrap& operator=(const FFTWrap&) = delete;

  // Configures for n real samples, n at least 1; may be called again with any other length.
  void update(int n);
  // Releases tables and buffers; the sizes keep their values.
  void free_cfg();

  // n floats in, half_size bins out. The real array comes first in both directions, and the vector
  // forms do not resize.
  void forward_real_2_cpx(AlignedVector<T>& in, AlignedVector<complex>& out);
  void forward_real_2_cpx(T* in, complex* out);
  void inverse_cpx_2_real(AlignedVector<T>& out, AlignedVector<complex>& in);
  void inverse_cpx_2_real(T* out, complex* in, int ignored);

  // The first value from n up: even and of the factors 2, 3, 5 (n not 0); a product of the given
  // factors, each divided out in list order; of the factors 2, 3, 5, 7 (n not 0).
  static int FFT_next_even_fast_size(int n);
  static int FFT_next_fast_size_arbitrary(int n, const std::vector<int>& factors);
  static int FFT_next_fast_size_lib(int n);

  // Kept for callers of the interface; all three do nothing.
  static void disable_fast_memory_manager() {}
  static void print_info_FFTWrap() {}
  static void shutdown_FFTWrap() {}

 private:
  int size = 0;                   // n, in real samples
  int half_size = 0;              // bins: n / 2 + 1
  unsigned char* spec = nullptr;  // the engine's tables, owned
  unsigned char* work = nullptr;  // the engine's scratch, owned; null when it needs none
  T* time_buffer = nullptr;       // n floats, owned
  T* spectrum_buffer = nullptr;   // 2 * half_size floats, owned
};
