// The only variant of builds without vector instructions.
#include "dsp/LatticeKernel.h"
#include "dsp/PowerKernels.h"
#include "dsp/RenderKernels.h"
#include "numeric/Float4.h"

namespace {

constexpr RenderKernels kScalar = {add_shifts<Float4, 12>, distances, divisors, raise};

}  // namespace

const RenderKernels* const render_kernel_variants[] = {&kScalar};
