// The variant for 256-bit vectors. This source has compiler flags of its own.
#include "dsp/PowerKernels.h"
#include "dsp/x86/Variants.h"

const RenderKernels kRenderKernelsAvx2 = {distances, divisors, raise};
