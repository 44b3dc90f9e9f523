// The variants for x86-64 processors.
#pragma once

#include "dsp/RenderKernels.h"

extern const RenderKernels kRenderKernelsSse2;
extern const RenderKernels kRenderKernelsAvx2;
