// Tests of the conversions from floating-point values to integers.
#include "numeric/Convert.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

template <class T>
class ConvertTest : public testing::Test {};
using FloatingTypes = testing::Types<float, double>;
TYPED_TEST_SUITE(ConvertTest, FloatingTypes);

TYPED_TEST(ConvertTest, TruncatesInsideTheRangeAndSaturatesOutside) {
  using T = TypeParam;
  constexpr T kInfinity = std::numeric_limits<T>::infinity();
  constexpr int kLowest = std::numeric_limits<int>::min();
  constexpr int kHighest = std::numeric_limits<int>::max();
  EXPECT_EQ(saturate_to_int(T(2.9)), 2);
  EXPECT_EQ(saturate_to_int(T(-2.9)), -2);
  EXPECT_EQ(saturate_to_int(T(-2147483648.0)), kLowest);
  EXPECT_EQ(saturate_to_int(std::nextafter(T(-2147483648.0), -kInfinity)), kLowest);
  EXPECT_EQ(saturate_to_int(std::nextafter(T(2147483648.0), T(0))),
            sizeof(T) == sizeof(float) ? 2147483520 : kHighest);
  EXPECT_EQ(saturate_to_int(T(2147483648.0)), kHighest);
  EXPECT_EQ(saturate_to_int(kInfinity), kHighest);
  EXPECT_EQ(saturate_to_int(-kInfinity), kLowest);
  const volatile T no_number = std::numeric_limits<T>::quiet_NaN();  // not known when compiling
  EXPECT_EQ(saturate_to_int(T(no_number)), 0);
}

}  // namespace
