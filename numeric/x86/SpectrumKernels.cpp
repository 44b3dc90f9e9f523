// The forms of the sum of products on x86-64 processors.
#include "numeric/Float4.h"
#include "numeric/SpectrumKernel.h"
#include "numeric/x86/SpectrumKernelAvx2.h"

const SpectrumKernel spectrum_kernels[][2] = {
    {sum_products<Float4, 1>, sum_products<Float4, 2>},  // SSE2
    {sum_products<Float4, 1>, sum_products<Float4, 2>},  // SSE4.2
    {sum_products<Float4, 1>, sum_products<Float4, 2>},  // AVX
    {sum_products_avx2, sum_products_pair_avx2},
    {sum_products_avx2, sum_products_pair_avx2},  // AVX-512
};
