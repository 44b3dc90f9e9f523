// Private pseudo-random generator for the signs of a response.
#pragma once

#include <array>
#include <cstdint>

// Additive feedback generator of degree 31 and separation 3 (the trinomial x^31 + x^3 + 1), its
// state filled by the multiplicative congruential generator of Park and Miller and its first 310
// values dropped. Its sequence is that of the C library's rand() on Linux after srand(seed), but
// each object has a state of its own, so instances and hosts do not disturb each other. Used by
// one thread at a time.
class SignGenerator {
 public:
  explicit SignGenerator(std::uint32_t seed);

  // The next value, 0 to 2^31 - 1.
  std::uint32_t next() {
    const std::uint32_t sum = state_[front_] += state_[rear_];
    if (++front_ == kDegree) front_ = 0;
    if (++rear_ == kDegree) rear_ = 0;
    return sum >> 1;
  }

 private:
  static constexpr int kDegree = 31;
  static constexpr int kSeparation = 3;

  std::array<std::uint32_t, kDegree> state_;
  std::size_t front_ = kSeparation;  // the word that is replaced next
  std::size_t rear_ = 0;             // the word that is added to it
};
