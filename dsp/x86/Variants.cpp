// The variants by the processor's features.
#include "dsp/x86/Variants.h"

const RenderKernels* const render_kernel_variants[] = {&kRenderKernelsSse2, &kRenderKernelsSse2,
                                                       &kRenderKernelsSse2, &kRenderKernelsAvx2,
                                                       &kRenderKernelsAvx2};
