// Any bytes as the host chunk of a bank.
#include "fuzz/FuzzPlug.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzPlug plug;
  const bool taken = plug.SetChunk(data, size, false) == 1;
  plug.CheckRanges();
  if (taken) {
    const std::vector<std::uint8_t> chunk = plug.GetChunk(false);
    FuzzPlug other;
    if (other.SetChunk(chunk.data(), chunk.size(), false) != 1) std::abort();
  }
  plug.CheckPresets();
  return 0;
}
