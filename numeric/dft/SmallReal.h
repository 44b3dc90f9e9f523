// The real transforms of up to 16 samples: straight code, no tables, no work memory.
#pragma once

#include <array>

namespace dft {

constexpr int kLargestSmall = 16;

using SmallKernel = void (*)(const float* src, float* dst, float scale);
using SmallKernels = std::array<SmallKernel, kLargestSmall + 1>;

// By length; entry 0 is null. Results are multiplied by scale; src and dst may be the same array.
extern const SmallKernels small_forward;
extern const SmallKernels small_inverse;

}  // namespace dft
