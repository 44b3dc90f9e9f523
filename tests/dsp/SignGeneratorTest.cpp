// Tests of the sign generator against the C library's generator of the same kind.
#include "dsp/SignGenerator.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <array>

namespace {

// The C library's reentrant generator with the state size that rand() has.
class LibraryGenerator {
 public:
  explicit LibraryGenerator(unsigned seed) { initstate_r(seed, state.data(), state.size(), &data); }
  std::uint32_t next() {
    std::int32_t value = 0;
    random_r(&data, &value);
    return static_cast<std::uint32_t>(value);
  }

 private:
  std::array<char, 128> state{};
  random_data data{};
};

TEST(SignGenerator, GivesTheSequenceOfTheLibraryForEverySeed) {
  for (const unsigned seed : {345U, 0U, 1U, 2U, 2147483647U, 2147483648U, 4294967295U}) {
    LibraryGenerator library(seed);
    SignGenerator ours(seed);
    for (int i = 0; i < 100000; ++i) {
      ASSERT_EQ(ours.next(), library.next()) << "seed " << seed << ", value " << i;
    }
  }
}

TEST(SignGenerator, IsNotDisturbedByAnotherOne) {
  SignGenerator alone(345);
  SignGenerator one(345);
  SignGenerator other(7);
  for (int i = 0; i < 1000; ++i) {
    other.next();
    ASSERT_EQ(one.next(), alone.next());
    srand(static_cast<unsigned>(i));
  }
}

}  // namespace
