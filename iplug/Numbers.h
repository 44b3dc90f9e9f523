// Conversions of numbers and text that are defined for every value, buffer size and locale. Tolmara
// uses all of it.
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

// Reads like atof with a decimal point: skips leading blanks, takes a sign, and stops at the first
// character that does not belong to the number. 0 for a text without a number and for null.
double NumberFromText(const char* text);
