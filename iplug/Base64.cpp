// Six bits a character, from the top.
#include "iplug/Base64.h"

#include <cstring>

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

std::string Base64Encode(const void* data, std::size_t size) {
  const auto* bytes = static_cast<const std::uint8_t*>(data);
  std::string text;
  text.reserve((size + 2) / 3 * 4);
  for (std::size_t i = 0; i < size; i += 3) {
    const std::size_t n = size - i < 3 ? size - i : 3;
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k) group = group << 8 | (k < n ? bytes[i + k] : 0U);
    for (std::size_t k = 0; k < 4; ++k) {
      text += k <= n ? kAlphabet[group >> (18 - 6 * k) & 63] : '=';
    }
  }
  return text;
}

std::size_t Base64Decode(const char* text, std::uint8_t* out, std::size_t size) {
  std::size_t stored = 0;
  std::uint32_t group = 0;
  int bits = 0;
  for (; *text && stored < size; ++text) {
    const char* found = std::strchr(kAlphabet, *text);
    if (!found) break;
    group = group << 6 | static_cast<std::uint32_t>(found - kAlphabet);
    bits += 6;
    if (bits < 8) continue;
    bits -= 8;
    out[stored++] = static_cast<std::uint8_t>(group >> bits);
  }
  return stored;
}
