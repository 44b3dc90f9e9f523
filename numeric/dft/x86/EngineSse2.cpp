// The variant for 128-bit vectors, which every x86-64 processor has. This source has compiler flags
// of its own.
#include "numeric/dft/x86/Engines.h"

#include "numeric/dft/RealTransform.h"
#include "numeric/dft/VectorScalar.h"
#include "numeric/dft/x86/VectorSse2.h"

namespace dft {
namespace {

using Set = Isa<Vector1, Vector4>;

}  // namespace

const Engine kEngineSse2 = {4, 4, forward<Set>, inverse<Set>, forward_core<Set>};

}  // namespace dft
