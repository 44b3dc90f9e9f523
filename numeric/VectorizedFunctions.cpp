// Complex products: every form is the four-wide kernel, or the strict loop, under its own name.
#include "numeric/VectorizedFunctions.h"

#include <atomic>

#include "numeric/ComplexProduct.h"
#include "numeric/Float4.h"

unsigned char vectorized_functions_supports_AVX = 0;

namespace {

// A second instance may be storing its answer, the same one, while the first one runs.
bool prefers_AVX() {
  return std::atomic_ref(vectorized_functions_supports_AVX).load(std::memory_order_relaxed) != 0;
}

}  // namespace

template <class T>
void VectorizedFunctions<T>::cpx_mult_inplace(complex* a, const complex* b, int n) {
  for (int i = 0; i < n; ++i) a[i] = complex_product::strict(a[i], b[i]);
}

template <class T>
void VectorizedFunctions<T>::cpx_mult_inplace_SSE2(complex* a, const complex* b, int n) {
  complex_product::multiply<Float4>(a, b, n);
}

// kept: 128 bits wide under this name too; the wider form gains nothing where memory is the limit.
template <class T>
void VectorizedFunctions<T>::cpx_mult_inplace_AVX(complex* a, const complex* b, int n) {
  complex_product::multiply<Float4>(a, b, n);
}

template <class T>
void VectorizedFunctions<T>::cpx_mult_inplace_fastest(complex* a, const complex* b, int n) {
  if (prefers_AVX()) {
    cpx_mult_inplace_AVX(a, b, n);
  } else {
    cpx_mult_inplace_SSE2(a, b, n);
  }
}

template <class T>
void VectorizedFunctions<T>::cpx_mult_inplace_add(complex* y, const complex* a, const complex* b,
                                                  int n) {
  for (int i = 0; i < n; ++i) y[i] += complex_product::strict(a[i], b[i]);
}

template <class T>
void VectorizedFunctions<T>::cpx_mult_inplace_add_SSE2(complex* y, const complex* a,
                                                       const complex* b, int n) {
  complex_product::multiply_add<Float4>(y, a, b, n);
}

template <class T>
void VectorizedFunctions<T>::cpx_mult_inplace_add_AVX(complex* y, const complex* a,
                                                      const complex* b, int n) {
  complex_product::multiply_add<Float4>(y, a, b, n);
}

template <class T>
void VectorizedFunctions<T>::cpx_mult_inplace_add_fastest(complex* y, const complex* a,
                                                          const complex* b, int n) {
  if (prefers_AVX()) {
    cpx_mult_inplace_add_AVX(y, a, b, n);
  } else {
    cpx_mult_inplace_add_SSE2(y, a, b, n);
  }
}

// kept: both answer 0 without asking the processor, so the 128-bit branch always runs.
template <class T>
int VectorizedFunctions<T>::AVXDetectFeature(unsigned) {
  return 0;
}

template <class T>
int VectorizedFunctions<T>::AVXCheckAllFeatures() {
  return 0;
}

template class VectorizedFunctions<float>;
