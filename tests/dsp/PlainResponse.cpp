// The response from its mathematics; only distances are rounded to single precision, as they
// decide which sample an image falls on.
#include "tests/dsp/PlainResponse.h"

#include <algorithm>
#include <cmath>

#include "dsp/SignGenerator.h"

namespace plain {

namespace {

// Adds the weight of every image of the first `axes` axes to the cell of its squared distance.
void visit(const Lattice& l, std::size_t axes, std::size_t d, int sum, double weight,
           std::vector<double>& cells) {
  if (d == axes) {
    cells[static_cast<std::size_t>(sum)] += weight;
    return;
  }
  const int reach = l.S / l.sizes[d] + 1;
  for (int n = -reach; n <= reach; ++n) {
    const int x = n * l.sizes[d] + l.offsets[d];
    const double power = std::pow(static_cast<double>(l.weights[d]), std::abs(n));
    // Below -120 dB an image does not count.
    if (sum + x * x > l.S * l.S || power < 1e-6) continue;
    visit(l, axes, d + 1, sum + x * x, weight * power, cells);
  }
}

double magnitude(double dB) { return std::pow(10.0, dB / 20.0); }

}  // namespace

std::vector<double> counts(const Lattice& lattice, int d) {
  std::vector<double> row(static_cast<std::size_t>(lattice.S * lattice.S) + 1);
  visit(lattice, static_cast<std::size_t>(d) + 1, 0, 0, 1.0, row);
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
  Lattice lattice{1, {}, {}, {}};
  for (const auto& axis : s.room) {
    lattice.sizes.push_back(static_cast<int>(axis.size));
    lattice.offsets.push_back(static_cast<int>(axis.offset));
    lattice.weights.push_back(axis.refl / 100.0f);
    const double reflections = std::log(magnitude(-s.dB_range)) / std::log(axis.refl / 100.0f);
    lattice.S = std::max(lattice.S, static_cast<int>(std::ceil(axis.size * reflections)));
  }
  const std::vector<double> count = counts(lattice, lattice.axes() - 1);
  const double dimensions = lattice.axes();
  const double metres = 340.29 / s.stretch / s.sample_rate;
  const double N = std::ceil(lattice.S / metres);
  const double p = std::exp(s.linearity / dimensions);
  const double exponent = (dimensions - 1) * std::exp(s.attenuation) / 2;

  SignGenerator signs(345);
  std::vector<double> h;
  double previous = 0;
  for (double t = 1; t <= N; ++t) {
    const double y = std::pow(std::pow(N, p) - std::pow(t, p), 1 / p);
    const auto r = static_cast<float>(static_cast<double>(static_cast<float>(metres)) * (N - y));
    const auto cell = std::min(static_cast<std::size_t>(std::ceil(r * r)), count.size() - 1);
    const double sign = signs.next() % 2 == 0 ? -1 : 1;
    h.push_back(sign * (count[cell] - previous) / (std::pow(r, exponent) + 1));
    previous = count[cell];
  }
  return h;
}

std::vector<double> response(const Settings& s) {
  const std::vector<double> h = before_decay(s);
  const double low = magnitude(s.decay_low / static_cast<double>(s.sample_rate));
  const double high = magnitude(s.decay_high / static_cast<double>(s.sample_rate));
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
