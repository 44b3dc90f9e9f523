// Any text as base64 into buffers of any size, and any bytes there and back.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "iplug/Base64.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
  std::vector<std::uint8_t> out(data[0]);
  if (Base64Decode(text.c_str(), out.data(), out.size()) > out.size()) std::abort();
  const std::string encoded = Base64Encode(data, size);
  std::vector<std::uint8_t> back(size);
  if (Base64Decode(encoded.c_str(), back.data(), size) != size) std::abort();
  if (back != std::vector<std::uint8_t>(data, data + size)) std::abort();
  return 0;
}
