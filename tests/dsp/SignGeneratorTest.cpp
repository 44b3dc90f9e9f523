// Tests of the sign generator against the C library's generator of the same kind.
#include "dsp/SignGenerator.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <array>

namespace {

TEST(SignGenerator, GivesTheSequenceOfTheLibraryForEverySeed) {
  for (const unsigned seed : {345U, 0U, 1U, 2U, 2147483647U, 2147483648U, 4294967295U}) {
    // The library's reentrant generator with the state size that rand() has.
    std::array<char, 128> state{};
    random_data library{};
    initstate_r(seed, state.data(), state.size(), &library);
    SignGenerator ours(seed);
    for (int i = 0; i < 100000; ++i) {
      std::int32_t expected = 0;
      random_r(&library, &expected);
      ASSERT_EQ(ours.next(), static_cast<std::uint32_t>(expected)) << seed << ", value " << i;
    }
  }
}

}  // namespace
