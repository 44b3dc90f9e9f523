// The forms of the sum of products on x86-64 processors.
#include "numeric/SpectrumKernel.h"

#include "numeric/Float4.h"
#include "numeric/x86/SpectrumKernelAvx2.h"

constexpr SpectrumKernel kNarrow = sum_products<Float4>;

const SpectrumKernel spectrum_kernels[] = {kNarrow, kNarrow, kNarrow, sum_products_avx2,
                                           sum_products_avx2};
