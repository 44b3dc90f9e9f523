// The variant for 256-bit vectors. This source has compiler flags of its own.
#include "dsp/LatticeKernel.h"
#include "dsp/PowerKernels.h"
#include "dsp/x86/Variants.h"
#include "numeric/x86/Float8.h"

const RenderKernels kRenderKernelsAvx2 = {add_shifts<Float8, 4>, distances, divisors, raise};
