// The sum of products eight lanes wide. This source has compiler flags of its own.
#include "numeric/x86/SpectrumKernelAvx2.h"

#include "numeric/SpectrumKernel.h"
#include "numeric/x86/Float8.h"

void sum_products_avx2(float* y, const float* x, const float* h, int blocks, int rows, int head) {
  sum_products<Float8>(y, x, h, blocks, rows, head);
}
