// Any bytes as the host chunk of one preset and of a bank: parameters stay in range, and what comes
// out of what was taken in is taken whole.
#include "fuzz/FuzzPlug.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  for (const bool isPreset : {false, true}) {
    FuzzPlug plug, other;
    const bool taken = plug.SetChunk(data, size, isPreset) == 1;
    plug.CheckRanges();
    if (taken || isPreset) {
      const std::vector<std::uint8_t> chunk = plug.GetChunk(isPreset);
      if (other.SetChunk(chunk.data(), chunk.size(), isPreset) != 1) std::abort();
      if (isPreset && other.GetChunk(true) != chunk) std::abort();
    }
    plug.CheckPresets();
  }
  return 0;
}
