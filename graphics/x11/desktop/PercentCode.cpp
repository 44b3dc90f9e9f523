// Decoding of percent signs.
#include "graphics/x11/desktop/PercentCode.h"

namespace {

int DigitOf(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

std::string FromPercentCode(std::string_view text) {
  std::string bytes;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool hasDigits = text[i] == '%' && i + 2 < text.size();
    const int hi = hasDigits ? DigitOf(text[i + 1]) : -1;
    const int lo = hasDigits ? DigitOf(text[i + 2]) : -1;
    if (hi < 0 || lo < 0) {
      bytes.push_back(text[i]);
      continue;
    }
    bytes.push_back(static_cast<char>(hi << 4 | lo));
    i += 2;
  }
  return bytes;
}
