// Seeding of the sign generator.
#include "dsp/SignGenerator.h"

namespace {

// One step of x -> 16807 x mod (2^31 - 1) by Schrage's division, on signed words: a seed above
// 2^31 - 1 acts as a negative number.
std::int32_t next_seed_word(std::int32_t word) {
  const std::int32_t high = word / 127773;
  const std::int32_t low = word % 127773;
  const std::int32_t next = 16807 * low - 2836 * high;
  return next < 0 ? next + 2147483647 : next;
}

}  // namespace

SignGenerator::SignGenerator(std::uint32_t seed) : state_{} {
  auto word = static_cast<std::int32_t>(seed == 0 ? 1U : seed);
  for (std::uint32_t& x : state_) {
    x = static_cast<std::uint32_t>(word);
    word = next_seed_word(word);
  }
  for (int i = 0; i < 10 * kDegree; ++i) next();
}
