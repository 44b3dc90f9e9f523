// Any bytes as the host chunk of one preset: parameters stay in range, and what was taken in comes
// out again as a chunk that is taken whole.
#include "fuzz/FuzzPlug.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzPlug plug;
  plug.SetChunk(data, size, true);
  plug.CheckRanges();
  const std::vector<std::uint8_t> chunk = plug.GetChunk(true);
  FuzzPlug other;
  if (other.SetChunk(chunk.data(), chunk.size(), true) != 1) std::abort();
  if (other.GetChunk(true) != chunk) std::abort();
  return 0;
}
