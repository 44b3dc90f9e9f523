// The variant of the render's inner loops by the jump index.
#include "dsp/RenderKernels.h"

#include <atomic>

#include "numeric/dft/Engine.h"

const RenderKernels& render_kernels() {
  const std::atomic_ref index(ippJumpIndexForMergedLibs);
  if (index.load(std::memory_order_relaxed) < 0) ippInit();
  return *render_kernel_variants[index.load(std::memory_order_relaxed)];
}
