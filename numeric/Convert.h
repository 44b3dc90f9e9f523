// Conversion of floating-point values to integers that is defined for every value.
#pragma once

#include <concepts>
#include <limits>

// x truncated towards zero; values outside the range of int give its nearest end, a value that is
// not a number gives 0. For numbers that a host can reach, where the plain cast is undefined.
// Any thread.
template <std::floating_point T>
constexpr int saturate_to_int(T x) {
  constexpr T kLimit = T(2147483648.0);  // 2^31, exact in float and double
  if (x >= kLimit) return std::numeric_limits<int>::max();
  if (x < -kLimit) return std::numeric_limits<int>::min();
  return x == x ? static_cast<int>(x) : 0;
}
