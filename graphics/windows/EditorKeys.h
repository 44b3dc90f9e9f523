// From characters to the key codes that controls get.
#pragma once

#include "graphics/IGraphics.h"

// -1 for a character that controls never see. Arrows are no characters.
constexpr int EditorKeyOf(char32_t character) {
  const int c = static_cast<int>(character);
  if (c == ' ') return IGraphics::kKeySpace;
  if (c >= '0' && c <= '9') return IGraphics::kKey0 + c - '0';
  if (c >= 'a' && c <= 'z') return IGraphics::kKeyA + c - 'a';
  if (c >= 'A' && c <= 'Z') return IGraphics::kKeyA + c - 'A';
  return -1;
}
