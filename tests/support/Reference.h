// Slow, plain, double-precision forms of what the product computes quickly, and the measures by
// which tests compare the two.
#pragma once

#include <complex>
#include <span>
#include <string>
#include <vector>

#include "numeric/AlignedVector.h"

namespace reference {

// Bins 0 to n / 2 of the defining sum X[k] = sum of x[t] exp(-2 pi i k t / n). O(n^2).
std::vector<std::complex<double>> dft(std::span<const float> x);

// The n real samples whose bins 0 to n / 2 are X, divided by n. Imaginary parts of bin 0 and, for
// even n, of bin n / 2 are ignored. O(n^2).
std::vector<double> inverse_dft(std::span<const complex> X, int n);

// The whole linear convolution, a.size() + b.size() - 1 samples; empty if either is. O(n^2).
std::vector<double> convolve(std::span<const float> a, std::span<const float> b);

// Root of the summed squared differences over the root of the summed squared reference; infinite
// if the lengths differ or any value is not finite. A reference of zeros divides by 1.
double relative_error(std::span<const float> actual, std::span<const double> expected);
double relative_error(std::span<const float> actual, std::span<const float> expected);
double relative_error(std::span<const complex> actual,
                      std::span<const std::complex<double>> expected);

// For failure messages: the index where the two differ most, with both values there.
std::string worst(std::span<const float> actual, std::span<const double> expected);
std::string worst(std::span<const complex> actual, std::span<const std::complex<double>> expected);

// Relative RMS error that a float transform of length n may show.
double transform_limit(int n);

// True if both hold the same bytes; NaN equals itself, and 0 differs from -0.
bool same_bits(std::span<const float> a, std::span<const float> b);

}  // namespace reference
