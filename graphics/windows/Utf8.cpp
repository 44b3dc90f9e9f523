// UTF-8 to characters and back.
#include "graphics/windows/Utf8.h"

#include "graphics/lice/LICE_UTF8.h"

std::u32string FromUtf8(std::string_view bytes) {
  std::u32string text;
  for (const char *p = bytes.data(), *end = p + bytes.size(); p < end;) {
    const char32_t c = LICE_NextCharacter(p, end);
    if (c != LICE_NO_CHARACTER) text.push_back(c);
  }
  return text;
}

std::string ToUtf8(std::u32string_view text) {
  std::string bytes;
  const auto put = [&bytes](char32_t byte) { bytes.push_back(static_cast<char>(byte)); };
  const auto follow = [&put](char32_t c, int shift) { put(0x80 | (c >> shift & 0x3F)); };
  for (const char32_t c : text) {
    if (c < 0x80) {
      put(c);
    } else if (c < 0x800) {
      put(0xC0 | c >> 6), follow(c, 0);
    } else if (c < 0x10000) {
      put(0xE0 | c >> 12), follow(c, 6), follow(c, 0);
    } else {
      put(0xF0 | c >> 18), follow(c, 12), follow(c, 6), follow(c, 0);
    }
  }
  return bytes;
}
