// The only form of the sum of products of builds without vector instructions.
#include "numeric/Float4.h"
#include "numeric/SpectrumKernel.h"

const SpectrumKernel spectrum_kernels[][2] = {{sum_products<Float4, 1>, sum_products<Float4, 2>}};
