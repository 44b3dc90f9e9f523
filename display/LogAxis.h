// The time axis that both panels of the display share.
#pragma once

#include <cmath>

// Where a point at `steps` of `log_step` lies, in pixels: left for 0 and left + width where their
// product is e - 1. The argument of the logarithm is a float on purpose, the rest double.
inline double PositionOnLogAxis(float steps, float logStep, float width, float left) {
  const float argument = steps * logStep + 1.0f;
  return static_cast<double>(width) * std::log(static_cast<double>(argument)) +
         static_cast<double>(left);
}
