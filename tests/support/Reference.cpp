// Slow reference forms and measures of error.
#include "tests/support/Reference.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <numbers>
#include <sstream>

namespace reference {
namespace {

// exp(-2 pi i k / n) for k = 0..n-1
std::vector<std::complex<double>> roots(int n) {
  std::vector<std::complex<double>> w(static_cast<std::size_t>(n));
  for (int k = 0; k < n; ++k) {
    w[static_cast<std::size_t>(k)] = std::polar(1.0, -2.0 * std::numbers::pi * k / n);
  }
  return w;
}

template <class A, class B>
double relative(std::span<const A> actual, std::span<const B> expected) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  if (actual.size() != expected.size()) return infinity;
  double error = 0.0, size = 0.0;
  for (std::size_t i = 0; i < actual.size(); ++i) {
    const B a(actual[i]);
    error += std::norm(a - expected[i]);
    size += std::norm(expected[i]);
  }
  const double ratio = std::sqrt(error) / (size > 0.0 ? std::sqrt(size) : 1.0);
  return std::isfinite(ratio) ? ratio : infinity;
}

template <class A, class B>
std::string worst_of(std::span<const A> actual, std::span<const B> expected) {
  std::size_t at = 0;
  double largest = -1.0;
  for (std::size_t i = 0; i < std::min(actual.size(), expected.size()); ++i) {
    const double distance = std::abs(B(actual[i]) - expected[i]);
    if (distance <= largest) continue;
    at = i;
    largest = std::isnan(distance) ? std::numeric_limits<double>::infinity() : distance;
  }
  std::ostringstream text;
  text << "lengths " << actual.size() << " and " << expected.size();
  if (largest >= 0.0) {
    text << "; worst at " << at << ": " << actual[at] << ", expected " << expected[at];
  }
  return text.str();
}

}  // namespace

std::vector<std::complex<double>> dft(std::span<const float> x) {
  const std::size_t n = x.size();
  const auto w = roots(static_cast<int>(n));
  std::vector<std::complex<double>> X(n / 2 + 1);
  for (std::size_t k = 0; k < X.size(); ++k) {
    for (std::size_t t = 0, turn = 0; t < n; ++t) {
      X[k] += double{x[t]} * w[turn];
      turn += k;
      if (turn >= n) turn -= n;
    }
  }
  return X;
}

std::vector<double> inverse_dft(std::span<const complex> X, int n) {
  const auto count = static_cast<std::size_t>(n);
  const auto w = roots(n);
  std::vector<double> x(count);
  for (std::size_t t = 0; t < count; ++t) {
    double sum = X[0].real();
    for (std::size_t k = 1; 2 * k <= count; ++k) {
      const auto root = std::conj(w[t * k % count]);
      const double re = X[k].real() * root.real();
      sum += 2 * k == count ? re : 2.0 * (re - X[k].imag() * root.imag());
    }
    x[t] = sum / n;
  }
  return x;
}

std::vector<double> convolve(std::span<const float> a, std::span<const float> b) {
  if (a.empty() || b.empty()) return {};
  std::vector<double> y(a.size() + b.size() - 1);
  for (std::size_t i = 0; i < a.size(); ++i) {
    for (std::size_t j = 0; j < b.size(); ++j) y[i + j] += double{a[i]} * b[j];
  }
  return y;
}

double relative_error(std::span<const float> actual, std::span<const double> expected) {
  return relative(actual, expected);
}

double relative_error(std::span<const float> actual, std::span<const float> expected) {
  const std::vector<double> wide(expected.begin(), expected.end());
  return relative(actual, std::span<const double>(wide));
}

double relative_error(std::span<const complex> actual,
                      std::span<const std::complex<double>> expected) {
  return relative(actual, expected);
}

std::string worst(std::span<const float> actual, std::span<const double> expected) {
  return worst_of(actual, expected);
}

std::string worst(std::span<const complex> actual, std::span<const std::complex<double>> expected) {
  return worst_of(actual, expected);
}

double transform_limit(int n) { return 1e-7 * std::log2(n + 2.0); }

bool same_bits(std::span<const float> a, std::span<const float> b) {
  return a.size() == b.size() &&
         (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0);
}

}  // namespace reference
