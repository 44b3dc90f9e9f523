// The real DFT wrapper over the engine.
#include "numeric/FFTWrap.h"

#include <algorithm>
#include <span>

#include "numeric/dft/ippDFT.h"

namespace {

IppsDFTSpec_R_32f* as_spec(unsigned char* block) {
  return reinterpret_cast<IppsDFTSpec_R_32f*>(block);
}

template <class Block>
void release(Block*& block) {
  ippFree(block);
  block = nullptr;
}

// What is left of n when every factor is divided out, in list order, as often as it divides.
int divide_out(int n, std::span<const int> factors) {
  for (const int factor : factors) {
    while (n > 1 && n % factor == 0) n /= factor;
  }
  return n;
}

constexpr int kFastPrimes[] = {2, 3, 5, 7};

}  // namespace

template <class T>
FFTWrap<T>::FFTWrap(int n) {
  update(n);
}

template <class T>
FFTWrap<T>::~FFTWrap() {
  free_cfg();
}

template <class T>
void FFTWrap<T>::update(int n) {
  size = n;
  half_size = n / 2 + 1;
  free_cfg();
  time_buffer = ippsMalloc_32f(n);
  spectrum_buffer = ippsMalloc_32f(2 * half_size);

  int spec_size = 0, init_size = 0, work_size = 0;
  ippsDFTGetSize_R_32f(n, IPP_FFT_DIV_INV_BY_N, ippAlgHintAccurate, &spec_size, &init_size,
                       &work_size);
  spec = ippsMalloc_8u(spec_size);
  Ipp8u* init = ippsMalloc_8u(init_size);
  work = ippsMalloc_8u(work_size);
  ippsDFTInit_R_32f(n, IPP_FFT_DIV_INV_BY_N, ippAlgHintAccurate, as_spec(spec), init);
  ippFree(init);
}

template <class T>
void FFTWrap<T>::free_cfg() {
  release(work);
  release(spec);
  release(time_buffer);
  release(spectrum_buffer);
}

template <class T>
void FFTWrap<T>::forward_real_2_cpx(AlignedVector<T>& in, AlignedVector<complex>& out) {
  forward_real_2_cpx(in.data(), out.data());
}

template <class T>
void FFTWrap<T>::forward_real_2_cpx(T* in, complex* out) {
  std::copy_n(in, size, time_buffer);
  ippsDFTFwd_RToCCS_32f(time_buffer, spectrum_buffer, as_spec(spec), work);
  std::copy_n(spectrum_buffer, 2 * half_size, reinterpret_cast<T*>(out));
}

template <class T>
void FFTWrap<T>::inverse_cpx_2_real(AlignedVector<T>& out, AlignedVector<complex>& in) {
  inverse_cpx_2_real(out.data(), in.data(), 0);
}

template <class T>
void FFTWrap<T>::inverse_cpx_2_real(T* out, complex* in, int) {
  std::copy_n(reinterpret_cast<const T*>(in), 2 * half_size, spectrum_buffer);
  ippsDFTInv_CCSToR_32f(spectrum_buffer, time_buffer, as_spec(spec), work);
  std::copy_n(time_buffer, size, out);
}

template <class T>
int FFTWrap<T>::FFT_next_even_fast_size(int n) {
  while (n % 2 != 0 || divide_out(n, std::span(kFastPrimes).first(3)) != 1) ++n;
  return n;
}

template <class T>
int FFTWrap<T>::FFT_next_fast_size_arbitrary(int n, const std::vector<int>& factors) {
  while (divide_out(n, factors) >= 2) ++n;
  return n;
}

template <class T>
int FFTWrap<T>::FFT_next_fast_size_lib(int n) {
  while (divide_out(n, kFastPrimes) != 1) ++n;
  return n;
}

template class FFTWrap<float>;
