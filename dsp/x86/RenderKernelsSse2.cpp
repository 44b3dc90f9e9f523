// The variant for 128-bit vectors, which every x86-64 processor has. This source has compiler flags
// of its own.
#include "dsp/LatticeKernel.h"
#include "dsp/PowerKernels.h"
#include "dsp/x86/Variants.h"
#include "numeric/Float4.h"

const RenderKernels kRenderKernelsSse2 = {add_shifts<Float4, 12>, distances, divisors, raise};
