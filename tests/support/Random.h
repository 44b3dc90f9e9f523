// Seeded random data for tests. A case names its seed in its failures, so a run can be repeated.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

#include "numeric/AlignedVector.h"

// Uniform values from a seed; the same on every platform and compiler.
class Random {
 public:
  explicit Random(std::uint64_t seed) : engine(seed) {}

  // [0, 1), in steps of 2^-24
  float unit() { return static_cast<float>(engine() >> 40) * 0x1p-24F; }
  float uniform(float low, float high) { return low + (high - low) * unit(); }
  // low..high, both included
  int integer(int low, int high) {
    const auto span = static_cast<std::uint64_t>(std::int64_t{high} - low + 1);
    return static_cast<int>(low + static_cast<std::int64_t>(engine() % span));
  }

  // n samples in [-1, 1)
  AlignedVector<float> signal(std::size_t n) {
    AlignedVector<float> x(n);
    for (float& v : x) v = uniform(-1.0f, 1.0f);
    return x;
  }
  AlignedVector<complex> spectrum(std::size_t n) {
    AlignedVector<complex> x(n);
    for (complex& v : x) v = {uniform(-1.0f, 1.0f), uniform(-1.0f, 1.0f)};
    return x;
  }

 private:
  std::mt19937_64 engine;
};
