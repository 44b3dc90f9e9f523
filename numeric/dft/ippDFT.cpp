// The real DFT engine.
#include "numeric/dft/ippDFT.h"

#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <numbers>

namespace {

using Complex = std::complex<float>;
constexpr int kIdentifier = 15;

struct Spec {
  int identifier, length, flag, hint;
  float forward_scale, inverse_scale;
};

template <class P>
P* align(P* p) {
  return reinterpret_cast<P*>((reinterpret_cast<std::uintptr_t>(p) + 63) & ~std::uintptr_t{63});
}

const Complex* roots_of(const Spec* spec) {
  return reinterpret_cast<const Complex*>(reinterpret_cast<const char*>(spec) + 64);
}

int smallest_factor(int n) {
  for (int p = 2; p * p <= n; ++p) {
    if (n % p == 0) return p;
  }
  return n;
}

// Mixed radix, decimation in time: out[0..n) of in[0], in[step], ...; roots of length n * step.
void transform(const Complex* in, Complex* out, Complex* scratch, const Complex* roots, int n,
               int step) {
  if (n == 1) {
    out[0] = in[0];
    return;
  }
  const int p = smallest_factor(n), m = n / p;
  for (int r = 0; r < p; ++r) {
    transform(in + r * step, scratch + r * m, out + r * m, roots, m, step * p);
  }
  for (int k = 0; k < n; ++k) {
    Complex sum{};
    for (int r = 0; r < p; ++r) {
      const auto turn = static_cast<int>(static_cast<std::int64_t>(r) * k % n);
      sum += scratch[r * m + k % m] * roots[static_cast<std::ptrdiff_t>(turn) * step];
    }
    out[k] = sum;
  }
}

IppStatus check_length(int length, int flag) {
  if (length < 1) return ippStsSizeErr;
  if (flag != 1 && flag != 2 && flag != 4 && flag != 8) return ippStsFftFlagErr;
  return length < 1 << 26 ? ippStsNoErr : ippStsSizeErr;
}

IppStatus check_transform(const void* src, const void* dst, const IppsDFTSpec_R_32f* block,
                          const void* work) {
  if (!src || !dst || !block) return ippStsNullPtrErr;
  const auto* spec = reinterpret_cast<const Spec*>(align(block));
  if (spec->identifier != kIdentifier) return ippStsContextMatchErr;
  return work || spec->length <= 16 ? ippStsNoErr : ippStsNullPtrErr;
}

}  // namespace

IppStatus ippsDFTGetSize_R_32f(int length, int flag, int, int* spec_size, int* init_size,
                               int* work_size) {
  if (!spec_size || !init_size || !work_size) return ippStsNullPtrErr;
  if (const IppStatus status = check_length(length, flag); status != ippStsNoErr) return status;
  *spec_size = 768 + 8 * length;
  *init_size = 0;
  *work_size = length <= 16 ? 0 : 64 + 24 * length;
  return ippStsNoErr;
}

IppStatus ippsDFTInit_R_32f(int length, int flag, int hint, IppsDFTSpec_R_32f* block, Ipp8u*) {
  if (!block) return ippStsNullPtrErr;
  if (const IppStatus status = check_length(length, flag); status != ippStsNoErr) return status;
  auto* spec = reinterpret_cast<Spec*>(align(block));
  const auto n = static_cast<float>(length);
  *spec = {kIdentifier, length, flag, hint, 1.0F, 1.0F};
  if (flag == IPP_FFT_DIV_FWD_BY_N) spec->forward_scale = 1.0F / n;
  if (flag == IPP_FFT_DIV_INV_BY_N) spec->inverse_scale = 1.0F / n;
  if (flag == IPP_FFT_DIV_BY_SQRTN) {
    spec->forward_scale = spec->inverse_scale = static_cast<float>(1.0 / std::sqrt(length));
  }
  auto* roots = const_cast<Complex*>(roots_of(spec));
  for (int k = 0; k < length; ++k) {
    roots[k] = Complex(std::polar(1.0, -2.0 * std::numbers::pi * k / length));
  }
  return ippStsNoErr;
}

IppStatus ippsDFTFwd_RToCCS_32f(const Ipp32f* src, Ipp32f* dst, const IppsDFTSpec_R_32f* block,
                                Ipp8u* work) {
  if (const auto status = check_transform(src, dst, block, work); status != ippStsNoErr)
    return status;
  const auto* spec = reinterpret_cast<const Spec*>(align(block));
  const int n = spec->length;
  Complex small[48];
  Complex* in = n <= 16 ? small : reinterpret_cast<Complex*>(align(work));
  for (int i = 0; i < n; ++i) in[i] = src[i];
  transform(in, in + n, in + 2 * n, roots_of(spec), n, 1);
  for (int k = 0; k <= n / 2; ++k) {
    const Complex x = in[n + k] * spec->forward_scale;
    dst[2 * k] = x.real();
    dst[2 * k + 1] = 2 * k % n == 0 ? 0.0F : x.imag();
  }
  return ippStsNoErr;
}

IppStatus ippsDFTInv_CCSToR_32f(const Ipp32f* src, Ipp32f* dst, const IppsDFTSpec_R_32f* block,
                                Ipp8u* work) {
  if (const auto status = check_transform(src, dst, block, work); status != ippStsNoErr)
    return status;
  const auto* spec = reinterpret_cast<const Spec*>(align(block));
  const int n = spec->length;
  Complex small[48];
  Complex* in = n <= 16 ? small : reinterpret_cast<Complex*>(align(work));
  for (int k = 0; k <= n / 2; ++k) {
    const float im = 2 * k % n == 0 ? 0.0F : src[2 * k + 1];
    in[k] = Complex(src[2 * k], -im);
    if (k > 0) in[n - k] = Complex(src[2 * k], im);
  }
  transform(in, in + n, in + 2 * n, roots_of(spec), n, 1);
  for (int i = 0; i < n; ++i) dst[i] = in[n + i].real() * spec->inverse_scale;
  return ippStsNoErr;
}
