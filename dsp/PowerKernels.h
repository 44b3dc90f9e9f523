// The loops behind RenderKernels that raise to powers: plain code without branches, which the
// compiler turns into vectors of the instruction set that a source is compiled for. Everything
// here has internal linkage: the linker must never merge a copy that a lesser processor would run.
#pragma once

#include <cstdint>

#include "dsp/RenderKernels.h"

namespace {

constexpr double kUnit = 0x1p-53;  // half a unit in the last place of 1
constexpr float kUncertain = __builtin_nanf("");

inline double at_least(double x, double low) { return x > low ? x : low; }

// a + b x + c x^2 + d x^3, given x2 = x * x. Sums of few steps that wait for each other let the
// processor work on several samples at a time.
inline double cubic(double a, double b, double c, double d, double x, double x2) {
  return (a + b * x) + (c + d * x) * x2;
}

// log2 of a positive normal number: the exponent plus the logarithm of a mantissa from sqrt(1/2) to
// sqrt(2) by the series of the inverse hyperbolic tangent. The relative error stays below 8 units.
inline double log_2(double x) {
  constexpr std::uint64_t kOne = 0x3FF0000000000000;       // bits of 1
  constexpr std::uint64_t kSqrtHalf = 0x3FE6A09E667F3BCD;  // bits of sqrt(1/2)
  constexpr std::uint64_t kMagic = 0x4330000000000000;     // bits of 2^52
  const auto bits = __builtin_bit_cast(std::uint64_t, x);
  const std::uint64_t biased = (bits + (kOne - kSqrtHalf)) >> 52;  // exponent + 1023
  const double exponent = __builtin_bit_cast(double, kMagic | biased) - (0x1p52 + 1023.0);
  const double m = __builtin_bit_cast(double, bits + kOne - (biased << 52));
  const double s = (m - 1.0) / (m + 1.0);
  const double q = s * s;
  const double q2 = q * q, q4 = q2 * q2;
  const double series = cubic(1.0, 1.0 / 3, 1.0 / 5, 1.0 / 7, q, q2) +
                        cubic(1.0 / 9, 1.0 / 11, 1.0 / 13, 1.0 / 15, q, q2) * q4 +
                        (1.0 / 17 + 1.0 / 19 * q) * (q4 * q4);
  return exponent + series * s * 2.8853900817779268;  // 2 / ln 2
}

// 2 to a power x below 1000; what lies below 2^-1000 becomes that. The power series of e^x on half
// an octave to either side of a whole exponent. The relative error stays below 8 units.
inline double exp_2(double x) {
  constexpr double kRound = 0x1.8p52;  // added, leaves no bits for a fraction
  x = at_least(x, -1000.0);
  const double rounded = x + kRound;
  const double z = (x - (rounded - kRound)) * 0.6931471805599453;
  const double z2 = z * z, z4 = z2 * z2;
  const double series = cubic(1.0, 1.0, 1.0 / 2, 1.0 / 6, z, z2) +
                        cubic(1.0 / 24, 1.0 / 120, 1.0 / 720, 1.0 / 5040, z, z2) * z4 +
                        (cubic(1.0 / 40320, 1.0 / 362880, 1.0 / 3628800, 1.0 / 39916800, z, z2) +
                         1.0 / 479001600 * z4) *
                            (z4 * z4);
  // The low bits of `rounded` are the whole exponent.
  const std::uint64_t exponent = __builtin_bit_cast(std::uint64_t, rounded) << 52;
  return __builtin_bit_cast(double, __builtin_bit_cast(std::uint64_t, series) + exponent);
}

// The float that all of low to high round to; 0 and -0 are two.
inline float certain(double low, double high) {
  const auto from = static_cast<float>(low), to = static_cast<float>(high);
  const bool same =
      __builtin_bit_cast(std::uint32_t, from) == __builtin_bit_cast(std::uint32_t, to);
  return same ? from : kUncertain;
}

// With u = t / N the distance is N (1 - w) samples, w = (1 - u^p)^(1/p). Of what the literal
// N - pow(N^p - pow(t, p), 1/p) and this form lose, what is lost inside the inner bracket, of
// about 8 + p units each, counts 1 / (p a) times, a = 1 - u^p. What is lost outside is ln(N) <= 17
// units for the rounded 1/p and 1 to 4 units for each other operation. Both are taken twice.
void distances(const TimeCurve& curve, double first, float* r, int n) {
  const double p = curve.p, N = curve.N, scale = curve.scale;
  const double inverse_p = 1.0 / p;
  const double outside = N * kUnit * 64;
  const double inside = N * kUnit * (32 + 4 * p) * inverse_p;
  const bool in_range = p >= 1.0 / 64 && p <= 64 && N <= 0x1p24;
  const double smallest = in_range ? 0x1p-32 : 2.0;  // of a; a curve out of range has none
  for (int i = 0; i < n; ++i) {
    const double a = 1.0 - exp_2(p * log_2((first + i) / N));
    const double w = exp_2(inverse_p * log_2(at_least(a, 0x1p-32)));
    const double samples = N - N * w;
    const double error = outside + inside * w / a;
    const float distance = certain(scale * (samples - error), scale * (samples + error));
    r[i] = a > smallest ? distance : kUncertain;
  }
}

// Up to this range the error of the power stays below 2^-41 of it.
void divisors(const float* r, double exponent, float* y, int n) {
  constexpr double kError = 0x1p-40;
  const bool in_range = exponent >= 0 && exponent <= 16;
  const float nearest = in_range ? 0x1p-40F : __builtin_inff();
  for (int i = 0; i < n; ++i) {
    const bool inside = r[i] >= nearest && r[i] <= 0x1p40F;
    const double power = exp_2(exponent * log_2(static_cast<double>(r[i])));
    const float divisor = certain(power * (1.0 - kError) + 1.0, power * (1.0 + kError) + 1.0);
    y[i] = inside ? divisor : kUncertain;
  }
}

// Complex values that are squared together.
struct Squares {
  static constexpr int kCount = 64;
  double re[kCount], im[kCount];
  double unit[kCount];  // what 1 stands for: 1, or less than any float once the value is that small
};

// A value that has become smaller than any float is scaled up, so that its sign is not lost. Scaled
// values stay below 1, and above the threshold, whose square times the scale is the threshold.
inline void square(Squares& z) {
  constexpr double kBelowFloats = 0x1p-160;
  for (int i = 0; i < Squares::kCount; ++i) {
    const double re2 = z.re[i] * z.re[i], im2 = z.im[i] * z.im[i];
    const bool small = re2 + im2 < kBelowFloats;
    const double up = small ? 1.0 / kBelowFloats : 1.0;
    z.im[i] = 2.0 * z.re[i] * z.im[i] * up;
    z.re[i] = (re2 - im2) * up;
    z.unit[i] = small ? 0x1p-400 : z.unit[i];
  }
}

// Rounds what has been squared, whose relative error is given, and keeps it where z is in range.
inline void round(const Squares& s, double error, const float* z, float* y, int n) {
  float re[Squares::kCount], im[Squares::kCount];
  for (int i = 0; i < Squares::kCount; ++i) {
    const double x = s.re[i] * s.unit[i], t = s.im[i] * s.unit[i];
    const double far = error * (__builtin_fabs(x) + __builtin_fabs(t));
    const double far_im = t == 0.0 ? 0.0 : far;  // a real value stays one
    re[i] = certain(x - far, x + far);
    im[i] = certain(t - far_im, t + far_im);
  }
  for (int i = 0; i < n; ++i) {
    const float x = z[2 * i];
    const bool inside = x >= 0.5F && x <= 2.0F && __builtin_fabsf(z[2 * i + 1]) <= x / 8;
    y[2 * i] = inside ? re[i] : kUncertain;
    y[2 * i + 1] = inside ? im[i] : kUncertain;
  }
}

// Each squaring doubles the relative error and adds sqrt(5) units. The literal form loses 2 units
// in the modulus and 1 in the logarithm, and less in an angle below 1/8, all multiplied by the
// exponent, and 8 units outside.
void raise(const float* z, int squarings, float* y, int n) {
  const double error = (__builtin_ldexp(1.0, squarings) + 8.0) * 8 * kUnit;
  for (int first = 0; first < n; first += Squares::kCount) {
    const int count = n - first < Squares::kCount ? n - first : Squares::kCount;
    Squares s = {};
    for (int i = 0; i < count; ++i) {
      s.re[i] = static_cast<double>(z[2 * (first + i)]);
      s.im[i] = static_cast<double>(z[2 * (first + i) + 1]);
      s.unit[i] = 1.0;
    }
    for (int k = 0; k < squarings; ++k) square(s);
    round(s, error, z + 2 * first, y + 2 * first, count);
  }
}

}  // namespace
