// UTF-8 to characters and back.
#include "graphics/x11/widgets/Utf8.h"

namespace {

// Bytes that follow a first byte, -1 for one that cannot come first.
int FollowersOf(unsigned char first) {
  if (first < 0x80) return 0;
  if (first >= 0xC2 && first < 0xE0) return 1;
  if (first >= 0xE0 && first < 0xF0) return 2;
  if (first >= 0xF0 && first < 0xF5) return 3;
  return -1;
}

bool IsCharacter(char32_t c, int followers) {
  constexpr char32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
  return c >= kLeast[followers] && c <= 0x10FFFF && !(c >= 0xD800 && c < 0xE000);
}

}  // namespace

std::u32string FromUtf8(std::string_view bytes) {
  std::u32string text;
  for (size_t i = 0; i < bytes.size();) {
    const auto first = static_cast<unsigned char>(bytes[i++]);
    const int followers = FollowersOf(first);
    if (followers < 0) continue;
    char32_t c = followers ? first & (0x3FU >> followers) : first;
    int left = followers;
    for (; left > 0 && i < bytes.size(); --left, ++i) {
      const auto byte = static_cast<unsigned char>(bytes[i]);
      if ((byte & 0xC0) != 0x80) break;
      c = c << 6 | (byte & 0x3F);
    }
    if (left == 0 && IsCharacter(c, followers)) text.push_back(c);
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
