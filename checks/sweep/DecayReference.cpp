#include "checks/sweep/DecayReference.h"

#include <algorithm>
#include <cmath>

DecayTaps::DecayTaps(double low_dB, double high_dB, double rate)
    : low(std::pow(10.0, low_dB / 20 / rate)),
      high(std::pow(10.0, high_dB / 20 / rate)),
      a((low + high) / 2),
      b((low - high) / 2) {}

double DecayedAt(const AlignedVector<float>& x, size_t m, const DecayTaps& taps) {
  if (taps.b == 0) return std::pow(taps.a, static_cast<double>(m) + 1) * double{x[m]};
  const double passes = static_cast<double>(m);
  const double share = std::abs(taps.b) / (taps.a + std::abs(taps.b));
  const double mean = passes * share;
  const double reach = 10 * std::sqrt(mean * (1 - share)) + 40;
  const auto first = static_cast<size_t>(std::max(0.0, mean - reach));
  const size_t last = std::min(m, static_cast<size_t>(mean + reach));
  double sum = 0;
  for (size_t j = first; j <= last; ++j) {
    const double k = static_cast<double>(j);
    const double weight =
        std::exp(std::lgamma(passes + 1) - std::lgamma(k + 1) - std::lgamma(passes - k + 1) +
                 (passes - k) * std::log(taps.a) + k * std::log(std::abs(taps.b)));
    sum += (taps.b < 0 && j % 2 == 1 ? -weight : weight) * double{x[m - j]};
  }
  return taps.a * sum;
}
