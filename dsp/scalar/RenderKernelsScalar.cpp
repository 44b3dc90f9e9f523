// The only variant of builds without vector instructions.
#include "dsp/PowerKernels.h"
#include "dsp/RenderKernels.h"

namespace {

constexpr RenderKernels kScalar = {distances, divisors, raise};

}  // namespace

const RenderKernels* const render_kernel_variants[] = {&kScalar};
