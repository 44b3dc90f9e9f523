// The complex products: all forms of one family against each other, and their special values.
#include "numeric/VectorizedFunctions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <limits>
#include <vector>

#include "numeric/ComplexProduct.h"
#include "numeric/Float4.h"
#include "tests/support/AllocationGuard.h"
#include "tests/support/Random.h"
#include "tests/support/Reference.h"

namespace {

using Functions = VectorizedFunctions<float>;
using Multiply = void (*)(complex*, const complex*, int);
using MultiplyAdd = void (*)(complex*, const complex*, const complex*, int);

constexpr float kInfinity = std::numeric_limits<float>::infinity();
const float kNaN = std::numeric_limits<float>::quiet_NaN();

const std::vector<Multiply> kMultiplies = {
    Functions::cpx_mult_inplace,       Functions::cpx_mult_inplace_SSE2,
    Functions::cpx_mult_inplace_AVX,   Functions::cpx_mult_inplace_fastest,
    complex_product::multiply<Float4>, complex_product::multiply<Float4Scalar>};
const std::vector<MultiplyAdd> kMultiplyAdds = {
    Functions::cpx_mult_inplace_add,       Functions::cpx_mult_inplace_add_SSE2,
    Functions::cpx_mult_inplace_add_AVX,   Functions::cpx_mult_inplace_add_fastest,
    complex_product::multiply_add<Float4>, complex_product::multiply_add<Float4Scalar>};

std::span<const float> floats(const AlignedVector<complex>& x) {
  return {reinterpret_cast<const float*>(x.data()), 2 * x.size()};
}

// Runs all forms over n elements that start `shift` elements into their arrays; the elements around
// them must stay.
void compare_forms(int n, std::size_t shift) {
  Random random(100 * static_cast<std::uint64_t>(n) + shift);
  const std::size_t size = static_cast<std::size_t>(n) + shift + 3;
  const auto a = random.spectrum(size), b = random.spectrum(size), y = random.spectrum(size);
  AlignedVector<complex> product = a, sum = y;
  for (std::size_t i = shift; i < shift + static_cast<std::size_t>(n); ++i) {
    const float ar = a[i].real(), ai = a[i].imag(), br = b[i].real(), bi = b[i].imag();
    product[i] = {ar * br - ai * bi, ar * bi + ai * br};
    sum[i] = {y[i].real() + product[i].real(), y[i].imag() + product[i].imag()};
  }
  for (std::size_t form = 0; form < kMultiplies.size(); ++form) {
    AlignedVector<complex> x = a, z = y;
    const AllocationGuard guard;
    kMultiplies[form](x.data() + shift, b.data() + shift, n);
    kMultiplyAdds[form](z.data() + shift, a.data() + shift, b.data() + shift, n);
    EXPECT_EQ(guard.allocations(), 0);
    EXPECT_TRUE(reference::same_bits(floats(x), floats(product)))
        << "form " << form << ", n " << n << ", shift " << shift;
    EXPECT_TRUE(reference::same_bits(floats(z), floats(sum)))
        << "add form " << form << ", n " << n << ", shift " << shift;
    // An array times itself.
    AlignedVector<complex> square(5, complex(2.0F, -1.0F));
    kMultiplies[form](square.data(), square.data(), 5);
    EXPECT_EQ(square, AlignedVector<complex>(5, complex(3.0F, -4.0F))) << form;
  }
}

TEST(VectorizedFunctions, AllFormsGiveTheSameBitsAtAnyCountAndAddress) {
  for (int n = 0; n <= 9; ++n) {
    for (std::size_t shift = 0; shift < 4; ++shift) compare_forms(n, shift);
  }
  compare_forms(1027, 1);
}

TEST(VectorizedFunctions, TheFlagOnlyChangesTheName) {
  EXPECT_EQ(Functions::AVXCheckAllFeatures(), 0);
  EXPECT_EQ(Functions::AVXDetectFeature(28), 0);
  for (const bool flag : {true, false}) {
    vectorized_functions_supports_AVX = flag;
    compare_forms(13, 1);
  }
}

TEST(VectorizedFunctions, TailsRecoverInfinitiesAndBodiesDoNot) {
  const AlignedVector<complex> a(5, complex(kInfinity, kNaN)), b(5, complex(1.0F, 1.0F));
  for (std::size_t form = 0; form < kMultiplies.size(); ++form) {
    AlignedVector<complex> product = a, sum(5);
    kMultiplies[form](product.data(), b.data(), 5);
    kMultiplyAdds[form](sum.data(), a.data(), b.data(), 5);
    for (const auto& x : {product, sum}) {
      EXPECT_TRUE(std::isinf(x[4].real()) && std::isinf(x[4].imag())) << form;
      for (std::size_t i = 0; i < 4; ++i) {
        const bool nan = std::isnan(x[i].real()) && std::isnan(x[i].imag());
        EXPECT_EQ(nan, form != 0) << "element " << i << ", form " << form;
      }
    }
  }
}

// All pairs of 0, finite, huge, infinite and NaN parts, beside the product that the compiler's
// library makes by the same rules.
TEST(VectorizedFunctions, StrictProductsKeepDirectionsToInfinity) {
  const float parts[] = {0.0F, -0.0F, 1.5F, -2.0F, 3e38F, -3e38F, kInfinity, -kInfinity, kNaN};
  std::vector<complex> values;
  for (const float re : parts) {
    for (const float im : parts) values.emplace_back(re, im);
  }
  const auto same = [](float x, float y) { return x == y || (std::isnan(x) && std::isnan(y)); };
  for (const complex a : values) {
    for (const complex b : values) {
      const complex z = complex_product::strict(a, b), expected = a * b;
      EXPECT_TRUE(same(z.real(), expected.real()) && same(z.imag(), expected.imag()))
          << a << " * " << b << " = " << z << ", expected " << expected;
    }
  }
}

}  // namespace
