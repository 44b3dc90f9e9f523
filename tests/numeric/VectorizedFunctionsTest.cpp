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

TEST(VectorizedFunctions, SquaresAnArrayByItself) {
  for (const Multiply multiply : kMultiplies) {
    AlignedVector<complex> a(6, complex(2.0F, -1.0F));
    multiply(a.data(), a.data(), 6);
    EXPECT_EQ(a, AlignedVector<complex>(6, complex(3.0F, -4.0F)));
  }
}

// A product of n equal elements by one form, from a zero sum in the adding ones.
AlignedVector<complex> products(std::size_t form, bool add, complex a, complex b, int n) {
  const auto size = static_cast<std::size_t>(n);
  AlignedVector<complex> x(size, a), factor(size, b), y(size);
  if (!add) {
    kMultiplies[form](x.data(), factor.data(), n);
    return x;
  }
  kMultiplyAdds[form](y.data(), x.data(), factor.data(), n);
  return y;
}

TEST(VectorizedFunctions, TailsRecoverInfinitiesAndBodiesDoNot) {
  const complex a(kInfinity, kNaN), b(1.0F, 1.0F);
  for (std::size_t form = 0; form < kMultiplies.size(); ++form) {
    for (const bool add : {false, true}) {
      const auto x = products(form, add, a, b, 5);
      EXPECT_TRUE(std::isinf(x[4].real()) && std::isinf(x[4].imag())) << form;
      for (std::size_t i = 0; i < 4; ++i) {
        const bool nan = std::isnan(x[i].real()) && std::isnan(x[i].imag());
        EXPECT_EQ(nan, form != 0) << "element " << i << ", form " << form;
      }
    }
  }
}

// All pairs of 0, finite, huge, infinite and NaN parts, beside a product by the definition.
TEST(VectorizedFunctions, StrictProductsKeepDirectionsToInfinity) {
  const float parts[] = {0.0F, -0.0F, 1.5F, -2.0F, 3e38F, -3e38F, kInfinity, -kInfinity, kNaN};
  const auto infinite = [](complex z) { return std::isinf(z.real()) || std::isinf(z.imag()); };
  const auto finite = [](complex z) { return std::isfinite(z.real()) && std::isfinite(z.imag()); };
  const auto zero = [](complex z) { return z == complex(); };
  int recovered = 0;
  for (const float ar : parts) {
    for (const float ai : parts) {
      for (const float br : parts) {
        for (const float bi : parts) {
          const complex a(ar, ai), b(br, bi), z = complex_product::strict(a, b);
          const float re = ar * br - ai * bi, im = ar * bi + ai * br;
          const bool lost = std::isnan(re) && std::isnan(im);
          const bool nan = std::isnan(ar) || std::isnan(ai) || std::isnan(br) || std::isnan(bi);
          if (!lost) {
            const float plain[] = {re, im}, actual[] = {z.real(), z.imag()};
            EXPECT_TRUE(reference::same_bits(plain, actual) || std::isnan(re) || std::isnan(im));
          } else if ((infinite(a) && infinite(b)) || (infinite(a) && finite(b) && !zero(b)) ||
                     (infinite(b) && finite(a) && !zero(a))) {
            EXPECT_TRUE(infinite(z)) << a << " * " << b << " = " << z;
            ++recovered;
          } else if (!nan && (zero(a) || zero(b))) {
            EXPECT_TRUE(std::isnan(z.real()) && std::isnan(z.imag())) << a << " * " << b;
          }
        }
      }
    }
  }
  EXPECT_GT(recovered, 100);
  // An overflow without any infinity, with a NaN part: the sign comes from the parts that remain.
  EXPECT_EQ(complex_product::strict({3e38F, kNaN}, {2.0F, 3e38F}).imag(), kInfinity);
  // A NaN beside an infinity, or against one, counts as 0.
  EXPECT_EQ(complex_product::strict({kInfinity, 0.0F}, {1.0F, kNaN}).real(), kInfinity);
  EXPECT_EQ(complex_product::strict({kNaN, 1.0F}, {kInfinity, 0.0F}).imag(), kInfinity);
  EXPECT_EQ(complex_product::strict({kInfinity, kNaN}, {-1.0F, -1.0F}),
            complex(-kInfinity, -kInfinity));
}

}  // namespace
