// Saturating conversions, bounded copies and numbers as text without the locale.
#include "iplug/Numbers.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstring>
#include <limits>

int SaturateToInt(std::int64_t value) {
  return static_cast<int>(std::clamp<std::int64_t>(value, INT_MIN, INT_MAX));
}

void CopyText(char* out, int size, const char* text) {
  if (!out || size < 1) return;
  const std::size_t length = text ? strnlen(text, static_cast<std::size_t>(size - 1)) : 0;
  if (length > 0) std::memmove(out, text, length);
  out[length] = 0;
}

void FixedText(char* out, int size, double value, int decimals) {
  char text[400];  // the largest double has 309 digits before the point
  decimals = std::clamp(decimals, 0, 60);
  const auto [end, error] =
      std::to_chars(text, text + sizeof text - 1, value, std::chars_format::fixed, decimals);
  *(error == std::errc{} ? end : text) = 0;
  CopyText(out, size, text);
}

namespace {

// The value of a number that is too large or too small for a double.
double OutOfRange(const char* begin, const char* end) {
  const char* exponent = std::find_if(begin, end, [](char c) { return c == 'e' || c == 'E'; });
  const bool tiny =
      exponent != end ? end - exponent > 1 && exponent[1] == '-' : *begin == '0' || *begin == '.';
  return tiny ? 0.0 : std::numeric_limits<double>::infinity();
}

}  // namespace

double NumberFromText(const char* text) {
  if (!text) return 0.0;
  while (*text == ' ' || (*text >= '\t' && *text <= '\r')) ++text;
  const bool negative = *text == '-';
  if (negative || *text == '+') ++text;
  if (*text == '-') return 0.0;  // from_chars would take a second sign
  double value = 0.0;
  const auto [end, error] = std::from_chars(text, text + std::strlen(text), value);
  if (error == std::errc::invalid_argument) return 0.0;
  if (error == std::errc::result_out_of_range) value = OutOfRange(text, end);
  return negative ? -value : value;
}
