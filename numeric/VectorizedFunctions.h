// Element-wise complex products: the inner loops of every convolution in the frequency domain.
#pragma once

#include "numeric/AlignedVector.h"

// Picks the form of the `_fastest` operations. Written by the plug-in's constructor, always with
// the same value, and read from any thread, both by relaxed atomic access.
extern unsigned char vectorized_functions_supports_AVX;

// Products over arrays of n complex values. All forms of one operation give the same bits for
// ordinary numbers. The plain forms, and the last n mod 4 elements of the others, recover
// infinities from products that the plain formula turns into NaN; the four-wide bodies do not.
// Arrays may start at any address; n is at least 0. In `cpx_mult_inplace` a and b may be the same
// array; in `cpx_mult_inplace_add` y is distinct from a and b. Any thread, the audio thread too.
template <class T>
class VectorizedFunctions {
 public:
  // a[i] = a[i] * b[i]
  static void cpx_mult_inplace(complex* a, const complex* b, int n);
  static void cpx_mult_inplace_SSE2(complex* a, const complex* b, int n);
  static void cpx_mult_inplace_AVX(complex* a, const complex* b, int n);
  static void cpx_mult_inplace_fastest(complex* a, const complex* b, int n);

  // y[i] = y[i] + a[i] * b[i]
  static void cpx_mult_inplace_add(complex* y, const complex* a, const complex* b, int n);
  static void cpx_mult_inplace_add_SSE2(complex* y, const complex* a, const complex* b, int n);
  static void cpx_mult_inplace_add_AVX(complex* y, const complex* a, const complex* b, int n);
  static void cpx_mult_inplace_add_fastest(complex* y, const complex* a, const complex* b, int n);

  // Both always answer 0 and do not ask the processor.
  static int AVXDetectFeature(unsigned feature);
  static int AVXCheckAllFeatures();
};
