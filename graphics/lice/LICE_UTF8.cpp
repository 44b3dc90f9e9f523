// Lead bytes, the bytes that follow them, and which codes they may make.
#include "graphics/lice/LICE_UTF8.h"

char32_t LICE_NextCharacter(const char*& p, const char* end) {
  const auto lead = static_cast<unsigned char>(*p++);
  if (lead < 0x80) return lead;
  const int more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
  if (lead < 0xC2 || lead > 0xF4 || end - p < more) return LICE_NO_CHARACTER;
  char32_t code = lead & (0x3FU >> more);
  for (int i = 0; i < more; ++i) {
    const auto next = static_cast<unsigned char>(p[i]);
    if ((next & 0xC0) != 0x80) return LICE_NO_CHARACTER;
    code = code << 6 | (next & 0x3F);
  }
  constexpr char32_t kLeast[] = {0, 0x80, 0x800, 0x10000};  // of each length
  if (code < kLeast[more] || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000))
    return LICE_NO_CHARACTER;
  p += more;
  return code;
}
