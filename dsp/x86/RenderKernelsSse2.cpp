// The variant for 128-bit vectors, which every x86-64 processor has. This source has compiler flags
// of its own.
#include "dsp/PowerKernels.h"
#include "dsp/x86/Variants.h"

const RenderKernels kRenderKernelsSse2 = {distances, divisors, raise};
