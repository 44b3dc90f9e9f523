// The variant for AVX-512. This source has compiler flags of its own.
#include "numeric/dft/x86/Engines.h"

#include "numeric/dft/RealTransform.h"
#include "numeric/dft/VectorScalar.h"
#include "numeric/dft/x86/VectorAvx512.h"
#include "numeric/dft/x86/VectorSse2.h"

namespace dft {
namespace {

using Set = Isa<Vector1, Vector4, Vector8, Vector16>;

}  // namespace

const Engine kEngineAvx512 = {16, 1, forward<Set>, inverse<Set>, forward_core<Set>};

}  // namespace dft
