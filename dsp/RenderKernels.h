// The inner loops of a render that come once per instruction set, and the choice between them.
#pragma once

#include "dsp/Shift.h"

// Relation between samples and distances: sample t of N lies at scale * (N - (N^p - t^p)^(1/p)).
struct TimeCurve {
  double p;
  double N;
  double scale;  // metres per sample
};

// One variant. All give the same bits.
//
// distances, divisors and raise replace functions of the library, and give what these would give or
// NaN. They compute powers in their own way, bound how far the library's result and their own can
// lie apart, and answer only if every double within the bound rounds to the same float. The bounds
// allow each function of the library an error of a unit in the last place and leave a margin.
struct RenderKernels {
  // Adds shifts first to last - 1 of previous, in their order, to the cells from to end - 1 of row,
  // all of which every shift reaches. row is aligned to 32 bytes.
  void (*add_shifts)(float* row, const float* previous, const Shift* first, const Shift* last,
                     int from, int end);
  // r[i] = distance of sample first + i for i below n, as a float; NaN where that is not certain.
  void (*distances)(const TimeCurve& curve, double first, float* r, int n);
  // y[i] = r[i] to the power exponent, plus 1, as a float; NaN where that is not certain.
  void (*divisors)(const float* r, double exponent, float* y, int n);
  // y[i] = z[i] to the power 2^squarings, for n complex values, from the polar form in double
  // precision, as floats; a part that is not certain is NaN.
  void (*raise)(const float* z, int squarings, float* y, int n);
};

// By the jump index of the transform engine; several indices share a variant.
extern const RenderKernels* const render_kernel_variants[];

// The variant of the processor. Any thread, no lock.
const RenderKernels& render_kernels();
