// The only variant of builds without vector instructions.
#include "numeric/dft/Engine.h"
#include "numeric/dft/RealTransform.h"
#include "numeric/dft/VectorScalar.h"

namespace dft {
namespace {

struct Set {
  using Kernels = Widths<Vector1>;
  using Exact = Widths<Vector1>;
};
constexpr Engine kScalar = {1, 1, forward<Set>, inverse<Set>, forward_core<Set>};

}  // namespace

const Engine* const engines[kEngines] = {&kScalar, &kScalar, &kScalar, &kScalar, &kScalar};

int best_engine() { return 0; }
bool is_intel() { return false; }

}  // namespace dft
