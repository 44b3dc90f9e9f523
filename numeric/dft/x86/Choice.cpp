// The choice of a variant by the processor's features.
#include "numeric/dft/x86/Engines.h"

namespace dft {

const Engine* const engines[kEngines] = {&kEngineSse2, &kEngineSse2, &kEngineSse2, &kEngineAvx2,
                                         &kEngineAvx512};

int best_engine() {
  const bool avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
  if (avx2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
      __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl") &&
      __builtin_cpu_supports("avx512cd")) {
    return 4;
  }
  if (avx2) return 3;
  if (__builtin_cpu_supports("avx")) return 2;
  return __builtin_cpu_supports("sse4.2") ? 1 : 0;
}

bool is_intel() { return __builtin_cpu_is("intel"); }

}  // namespace dft
