// The variant for AVX2 with fused multiply-add. This source has compiler flags of its own.
#include "numeric/dft/x86/Engines.h"

#include "numeric/dft/RealTransform.h"
#include "numeric/dft/VectorScalar.h"
#include "numeric/dft/x86/VectorAvx2.h"
#include "numeric/dft/x86/VectorSse2.h"

namespace dft {
namespace {

using Set = Isa<Vector1, Vector4, Vector8>;

}  // namespace

const Engine kEngineAvx2 = {8, 1, forward<Set>, inverse<Set>, forward_core<Set>};

}  // namespace dft
