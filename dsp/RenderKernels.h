// The inner loops of a render that come once per instruction set, and the choice between them.
#pragma once

// Relation between samples and distances: sample t of N lies at scale * (N - (N^p - t^p)^(1/p)).
struct TimeCurve {
  double p;
  double N;
  double scale;  // metres per sample
};

// One variant. All give the same bits.
//
// distances and divisors replace the library's pow, and give what it would give or NaN. They
// compute the power by their own series, bound how far the library's result and their own can lie
// apart, and answer only if every double within the bound rounds to the same float. The bounds
// allow the library's pow an error of 2 units in the last place.
struct RenderKernels {
  // r[i] = distance of sample first + i for i below n, as a float; NaN where that is not certain.
  void (*distances)(const TimeCurve& curve, double first, float* r, int n);
  // y[i] = r[i] to the power exponent, plus 1, as a float; NaN where that is not certain.
  void (*divisors)(const float* r, double exponent, float* y, int n);
};

// By the jump index of the transform engine; several indices share a variant.
extern const RenderKernels* const render_kernel_variants[];

// The variant of the processor. Any thread, no lock.
const RenderKernels& render_kernels();
