// The response from its mathematics; only distances are rounded to single precision, as they
// decide which sample an image falls on.
#include "tests/dsp/PlainResponse.h"

#include <stdlib.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace plain {

namespace {

// The weight of index n of an axis: its power, or 0 below -120 dB.
double weight_of(float w, int n) {
  const double power = std::pow(static_cast<double>(w), std::abs(n));
  return power < 1e-6 ? 0.0 : power;
}

// Adds the weight of every image of the first `axes` axes to the cell of its squared distance.
void visit(const Lattice& l, int axes, int level, int sum, double weight,
           std::vector<double>& cells) {
  if (level == axes) {
    cells[static_cast<std::size_t>(sum)] += weight;
    return;
  }
  const auto d = static_cast<std::size_t>(level);
  const int reach = l.S / l.sizes[d] + 1;
  for (int n = -reach; n <= reach; ++n) {
    const int x = n * l.sizes[d] + l.offsets[d];
    if (sum + x * x > l.S * l.S) continue;
    visit(l, axes, level + 1, sum + x * x, weight * weight_of(l.weights[d], n), cells);
  }
}

double magnitude(double dB) { return std::pow(10.0, dB / 20.0); }

Lattice lattice_of(const Settings& settings) {
  Lattice lattice{1, {}, {}, {}};
  for (const auto& axis : settings.room) {
    lattice.sizes.push_back(static_cast<int>(axis.size));
    lattice.offsets.push_back(static_cast<int>(axis.offset));
    lattice.weights.push_back(axis.refl / 100.0f);
    const double reflections =
        std::log(magnitude(-settings.dB_range)) / std::log(lattice.weights.back());
    lattice.S = std::max(lattice.S, static_cast<int>(std::ceil(axis.size * reflections)));
  }
  return lattice;
}

}  // namespace

std::vector<double> counts(const Lattice& lattice, int d) {
  std::vector<double> row(static_cast<std::size_t>(lattice.S * lattice.S) + 1);
  visit(lattice, d + 1, 0, 0, 1.0, row);
  for (std::size_t s = 1; s < row.size(); ++s) row[s] += row[s - 1];
  return row;
}

std::vector<double> decayed(const std::vector<double>& x, double a, double b) {
  std::vector<double> y = x;
  y.resize(2 * x.size());
  for (std::size_t k = 0; k < x.size(); ++k) {
    double before = 0;
    for (std::size_t i = k; i < y.size(); ++i) {
      const double now = y[i];
      y[i] = a * now + b * before;
      before = now;
    }
  }
  return y;
}

std::vector<double> before_decay(const Settings& s) {
  const Lattice lattice = lattice_of(s);
  const std::vector<double> count = counts(lattice, lattice.axes() - 1);
  const double dimensions = lattice.axes();
  const double metres = 340.29 / s.stretch / s.sample_rate;
  const double N = std::ceil(lattice.S / metres);
  const double p = std::exp(s.linearity / dimensions);
  const double exponent = (dimensions - 1) * std::exp(s.attenuation) / 2;

  std::array<char, 128> state{};
  random_data generator{};
  initstate_r(345, state.data(), state.size(), &generator);
  std::vector<double> h(static_cast<std::size_t>(N));
  double previous = 0;
  for (double t = 1; t <= N; ++t) {
    const double y = std::pow(std::pow(N, p) - std::pow(t, p), 1 / p);
    const auto r = static_cast<float>(static_cast<double>(static_cast<float>(metres)) * (N - y));
    const auto cell = std::min(static_cast<std::size_t>(std::ceil(r * r)), count.size() - 1);
    std::int32_t value = 0;
    random_r(&generator, &value);
    const double sign = value % 2 == 0 ? -1 : 1;
    h[static_cast<std::size_t>(t) - 1] =
        sign * (count[cell] - previous) / (std::pow(r, exponent) + 1);
    previous = count[cell];
  }
  return h;
}

std::vector<double> response(const Settings& s) {
  const std::vector<double> h = before_decay(s);
  const double rate = s.sample_rate;
  const double low = magnitude(s.decay_low / rate);
  const double high = magnitude(s.decay_high / rate);
  std::vector<double> y = decayed(h, (low + high) / 2, (low - high) / 2);
  y.resize(h.size());

  double peak = 1;
  for (const double v : y) peak = std::max(peak, std::abs(v));
  const auto audible = [peak](double v) { return std::abs(v) / peak > 1e-6; };
  y.erase(std::find_if(y.rbegin(), y.rend(), audible).base(), y.end());
  y.erase(y.begin(), std::find_if(y.begin(), y.end(), audible));
  const double scale = y[0] < 0 ? -1 / peak : 1 / peak;
  for (double& v : y) v *= scale;
  return y;
}

}  // namespace plain
