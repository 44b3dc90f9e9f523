// The sum of products eight lanes wide. This source has compiler flags of its own.
#include "numeric/x86/SpectrumKernelAvx2.h"

#include "numeric/SpectrumKernel.h"
#include "numeric/x86/Float8.h"

void sum_products_avx2(float* const* y, const float* const* x, const float* h, int blocks, int rows,
                       int head) {
  sum_products<Float8, 1>(y, x, h, blocks, rows, head);
}

void sum_products_pair_avx2(float* const* y, const float* const* x, const float* h, int blocks,
                            int rows, int head) {
  sum_products<Float8, 2>(y, x, h, blocks, rows, head);
}
