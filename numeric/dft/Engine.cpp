// The jump index.
#include "numeric/dft/Engine.h"

#include <atomic>

#include "numeric/dft/ippDFT.h"

int ippJumpIndexForMergedLibs = -1;

int ippInit() {
  std::atomic_ref(ippJumpIndexForMergedLibs).store(dft::best_engine(), std::memory_order_relaxed);
  return dft::is_intel() ? ippStsNoErr : ippStsNonIntelCpu;
}

namespace dft {

const Engine& engine() {
  const std::atomic_ref index(ippJumpIndexForMergedLibs);
  if (index.load(std::memory_order_relaxed) < 0) ippInit();
  return *engines[index.load(std::memory_order_relaxed)];
}

}  // namespace dft
