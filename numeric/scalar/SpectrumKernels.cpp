// The only form of the sum of products of builds without vector instructions.
#include "numeric/SpectrumKernel.h"

#include "numeric/Float4.h"

constexpr SpectrumKernel kScalar = sum_products<Float4>;

const SpectrumKernel spectrum_kernels[] = {kScalar, kScalar, kScalar, kScalar, kScalar};
