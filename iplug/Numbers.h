// Conversions of numbers and text that cannot go wrong: whatever the value, the buffer or the
// user's locale.
#pragma once

#include <cstdint>

#include "numeric/Convert.h"

// Toward zero; beyond the range of int its nearest end, and 0 for NaN.
constexpr int SaturateToInt(double value) { return saturate_to_int(value); }
int SaturateToInt(std::int64_t value);

// Copies `text` (null counts as empty) into `out` of `size` bytes, cut with its end mark kept.
void CopyText(char* out, int size, const char* text);
template <int kSize>
void CopyText(char (&out)[kSize], const char* text) {
  CopyText(out, kSize, text);
}

// Writes as "%.*f" does under a decimal point, cut to `size` bytes with its end mark.
void FixedText(char* out, int size, double value, int decimals);

// Reads as atof does under a decimal point: leading blanks and a sign may stand in front, reading
// stops where no number goes on, and 0 is the answer where none begins. Null counts as empty.
double NumberFromText(const char* text);
