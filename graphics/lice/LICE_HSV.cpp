// The hue, saturation and value adjustment of one pixel.
#include <cmath>

#include "graphics/lice/LICE_Blend.h"

namespace {

// One channel of the colour (hue in turns, s and v 0 to 1); `n` is 5 for red, 3 green, 1 blue.
double Channel(int n, double hue, double s, double v) {
  const double k = std::fmod(n + hue * 6.0, 6.0);
  return v - v * s * std::clamp(std::min(k, 4.0 - k), 0.0, 1.0);
}

double Hue(double r, double g, double b, double v, double spread) {
  if (spread == 0.0) return 0.0;
  if (v == r) return ((g - b) / spread + 6.0) / 6.0;
  if (v == g) return ((b - r) / spread + 2.0) / 6.0;
  return ((r - g) / spread + 4.0) / 6.0;
}

int ToByte(double x) { return static_cast<int>(std::lround(x * 255.0)); }

}  // namespace

LICE_pixel LICE_AdjustHSV(LICE_pixel d, LICE_pixel adjust) {
  const double r = LICE_GETR(d) / 255.0;
  const double g = LICE_GETG(d) / 255.0;
  const double b = LICE_GETB(d) / 255.0;
  const double v = std::max({r, g, b});
  const double spread = v - std::min({r, g, b});
  const double hue = Hue(r, g, b, v, spread) + (LICE_GETR(adjust) - 128 + 256) / 256.0;
  const double s = v == 0.0 ? 0.0 : spread / v;
  const double new_s = std::clamp(s + (LICE_GETG(adjust) - 128) / 128.0, 0.0, 1.0);
  const double new_v = std::clamp(v + (LICE_GETB(adjust) - 128) / 128.0, 0.0, 1.0);
  return LICE_RGBA(ToByte(Channel(5, hue, new_s, new_v)), ToByte(Channel(3, hue, new_s, new_v)),
                   ToByte(Channel(1, hue, new_s, new_v)), LICE_GETA(d));
}
