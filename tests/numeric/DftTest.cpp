// The transform engine against the defining sum: every variant that this processor can run, every
// method, any alignment, and the codes by which it refuses.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <string>
#include <thread>
#include <vector>

#include "numeric/dft/Engine.h"
#include "numeric/dft/ippDFT.h"
#include "tests/support/AllocationGuard.h"
#include "tests/support/Random.h"
#include "tests/support/Reference.h"

namespace {

constexpr float kCanary = 12345.0F;

// One engine variant for as long as it lives.
class Variant {
 public:
  explicit Variant(int index) { ippJumpIndexForMergedLibs = index; }
  ~Variant() { ippJumpIndexForMergedLibs = -1; }
};

std::vector<int> distinct_variants() {
  std::vector<int> list;
  for (int i = 0; i <= dft::best_engine(); ++i) {
    if (i == 0 || dft::engines[i] != dft::engines[list.back()]) list.push_back(i);
  }
  return list;
}

// A set-up transform whose blocks start `offset` bytes off any alignment.
class Dft {
 public:
  explicit Dft(int n, int flag = IPP_FFT_DIV_INV_BY_N, std::size_t offset = 0)
      : skew(offset), length(n) {
    int sizes[3] = {-1, -1, -1};
    EXPECT_EQ(ippsDFTGetSize_R_32f(n, flag, ippAlgHintAccurate, sizes, sizes + 1, sizes + 2), 0);
    for (int i = 0; i < 3; ++i) blocks[i].resize(static_cast<std::size_t>(sizes[i]) + skew);
    EXPECT_EQ(ippsDFTInit_R_32f(n, flag, ippAlgHintAccurate, spec(), block(1)), ippStsNoErr);
    std::ranges::fill(blocks[1], Ipp8u{0xFF});
    if (sizes[2] == 0) blocks[2].clear();
  }
  IppsDFTSpec_R_32f* spec() { return reinterpret_cast<IppsDFTSpec_R_32f*>(block(0)); }
  Ipp8u* work() { return blocks[2].empty() ? nullptr : block(2); }
  std::size_t floats() const { return 2 * (static_cast<std::size_t>(length) / 2 + 1); }

  AlignedVector<complex> forward(const float* x) {
    AlignedVector<complex> X(floats() / 2 + 1, {kCanary, kCanary});
    EXPECT_EQ(ippsDFTFwd_RToCCS_32f(x, reinterpret_cast<float*>(X.data()), spec(), work()), 0);
    EXPECT_EQ(X.back(), complex(kCanary, kCanary)) << "wrote past bin n / 2, length " << length;
    X.pop_back();
    return X;
  }
  AlignedVector<float> inverse(const complex* X) {
    AlignedVector<float> x(static_cast<std::size_t>(length) + 1, kCanary);
    EXPECT_EQ(ippsDFTInv_CCSToR_32f(reinterpret_cast<const float*>(X), x.data(), spec(), work()),
              0);
    EXPECT_EQ(x.back(), kCanary) << "wrote past sample n, length " << length;
    x.pop_back();
    return x;
  }

 private:
  Ipp8u* block(int i) { return blocks[i].data() + skew; }

  std::size_t skew;
  int length;
  std::vector<Ipp8u> blocks[3];  // spec, init, work
};

// Both directions against the defining sums, from signal and spectrum at odd addresses.
void check_against_sums(int n, std::size_t offset) {
  Random random(static_cast<std::uint64_t>(n));
  Dft dft(n, IPP_FFT_DIV_INV_BY_N, offset);
  const AlignedVector<float> x = random.signal(static_cast<std::size_t>(n) + offset % 4);
  const std::span<const float> signal = std::span(x).subspan(offset % 4);
  const auto X = dft.forward(signal.data());
  const auto expected = reference::dft(signal);
  const double limit = reference::transform_limit(n);
  EXPECT_LE(reference::relative_error(std::span(X), expected), limit)
      << "forward, length " << n << ", " << reference::worst(std::span(X), expected);
  const float zero[] = {0.0F, 0.0F};
  const float stored[] = {X[0].imag(), n % 2 == 0 ? X.back().imag() : 0.0F};
  EXPECT_TRUE(reference::same_bits(stored, zero)) << "what symmetry makes 0 is +0, length " << n;

  // NaN where symmetry asks for an imaginary part of 0: the inverse has to ignore it.
  auto Y = random.spectrum(static_cast<std::size_t>(n) / 2 + 1);
  Y[0].imag(std::numeric_limits<float>::quiet_NaN());
  if (n % 2 == 0) Y.back().imag(Y[0].imag());
  const auto y = dft.inverse(Y.data());
  const auto sum = reference::inverse_dft(Y, n);
  EXPECT_LE(reference::relative_error(std::span(y), sum), limit)
      << "inverse, length " << n << ", " << reference::worst(std::span(y), sum);
}

// A few bins of a long transform by the defining sum, and the way back.
void check_long(int n) {
  Random random(static_cast<std::uint64_t>(n));
  Dft dft(n);
  const AlignedVector<float> x = random.signal(static_cast<std::size_t>(n));
  const auto X = dft.forward(x.data());
  AlignedVector<complex> actual;
  std::vector<std::complex<double>> expected;
  for (const int k : {1, 2, n / 7, n / 5 + 3, n / 3, n / 2 - 1}) {
    std::complex<double> sum;
    for (int t = 0; t < n; ++t) {
      const auto turn = static_cast<double>(std::int64_t{t} * k % n) / n;
      sum += double{x[static_cast<std::size_t>(t)]} * std::polar(1.0, -2 * std::numbers::pi * turn);
    }
    actual.push_back(X[static_cast<std::size_t>(k)]);
    expected.push_back(sum);
  }
  const double limit = reference::transform_limit(n);
  // Six bins are a small sample of the error: twice the limit that holds for all of them.
  EXPECT_LE(reference::relative_error(std::span<const complex>(actual), expected), 2 * limit)
      << "length " << n << ", " << reference::worst(std::span<const complex>(actual), expected);
  EXPECT_LE(reference::relative_error(dft.inverse(X.data()), std::span<const float>(x)), limit)
      << "there and back, length " << n;
}

class EveryVariant : public testing::TestWithParam<int> {
 protected:
  Variant variant{GetParam()};
};
INSTANTIATE_TEST_SUITE_P(Dft, EveryVariant, testing::ValuesIn(distinct_variants()),
                         [](const auto& value) { return "Index" + std::to_string(value.param); });

TEST_P(EveryVariant, EqualsTheDefiningSumAtEveryLengthTo300) {
  for (int n = 1; n <= 300; ++n) check_against_sums(n, static_cast<std::size_t>(n * 7 % 67));
}

TEST_P(EveryVariant, EqualsTheDefiningSumByEveryMethodAtLargerLengths) {
  constexpr int kFast[] = {343,  384,  441,  480,  500,  512,  625,  640,  675,
                           735,  768,  882,  945,  960,  1000, 1024, 1029, 1050,
                           1125, 1764, 1920, 2048, 2187, 2401, 4096, 4410, 5250};
  constexpr int kPrimesWithoutKernel[] = {9 * 11,      11 * 13, 17 * 19, 2 * 23 * 29, 37 * 41,
                                          16 * 31 * 3, 43 * 47, 8 * 149, 64 * 7 * 11};
  constexpr int kChirp[] = {509,     1009,    2039,    1018,   2 * 53 * 3,
                            4 * 151, 8 * 151, 53 * 59, 3 * 67, 2 * 2003};
  for (const int n : kFast) check_against_sums(n, 4);
  for (const int n : kPrimesWithoutKernel) check_against_sums(n, 0);
  for (const int n : kChirp) check_against_sums(n, 1);
}

TEST_P(EveryVariant, KeepsItsPrecisionInLongTransforms) {
  for (int order = 13; order <= 20; ++order) check_long(1 << order);
  for (const int n : {70000, 65536 * 3, 100000, 117649, 2 * 177147, 2 * 262153, 496125}) {
    check_long(n);
  }
}

TEST_P(EveryVariant, KeepsItsSourceOrWorksInPlaceAndAllocatesNothing) {
  for (const int n : {2, 7, 16, 30, 63, 100, 127, 134, 1018, 1024, 1125, 1 << 17}) {
    Dft dft(n);
    const AlignedVector<float> source = Random(3).signal(dft.floats());
    AlignedVector<float> kept = source, forward(source.size()), back(source.size()), in_place;
    for (const bool inverse : {false, true}) {
      in_place = source;
      const auto transform = inverse ? ippsDFTInv_CCSToR_32f : ippsDFTFwd_RToCCS_32f;
      AlignedVector<float>& result = inverse ? back : forward;
      const AllocationGuard guard;
      transform(kept.data(), result.data(), dft.spec(), dft.work());
      transform(in_place.data(), in_place.data(), dft.spec(), dft.work());
      EXPECT_EQ(guard.allocations() + guard.frees(), 0) << n;
      const auto length = inverse ? static_cast<std::size_t>(n) : dft.floats();
      EXPECT_TRUE(std::equal(result.data(), result.data() + length, in_place.data())) << n;
      EXPECT_TRUE(reference::same_bits(kept, source)) << n;
    }
  }
}

TEST_P(EveryVariant, ScalesTheDirectionThatTheFlagNames) {
  for (const int n : {3, 16, 64, 106, 127, 1125}) {
    const AlignedVector<float> x = Random(5).signal(static_cast<std::size_t>(n) + 2);
    const auto bins = reinterpret_cast<const complex*>(x.data());
    Dft plain(n, IPP_FFT_NODIV_BY_ANY);
    const auto forward = plain.forward(x.data());
    const auto inverse = plain.inverse(bins);
    const double by_n = 1.0 / n, by_root = 1.0 / std::sqrt(n);
    const struct {
      int flag;
      double forward, inverse;
    } cases[] = {{IPP_FFT_DIV_FWD_BY_N, by_n, 1.0},
                 {IPP_FFT_DIV_INV_BY_N, 1.0, by_n},
                 {IPP_FFT_DIV_BY_SQRTN, by_root, by_root}};
    for (const auto& c : cases) {
      Dft dft(n, c.flag);
      std::vector<std::complex<double>> scaled_bins(forward.begin(), forward.end());
      std::vector<double> scaled_samples(inverse.begin(), inverse.end());
      for (auto& bin : scaled_bins) bin *= c.forward;
      for (double& sample : scaled_samples) sample *= c.inverse;
      EXPECT_LE(reference::relative_error(dft.forward(x.data()), scaled_bins), 1e-6)
          << n << ' ' << c.flag;
      EXPECT_LE(reference::relative_error(dft.inverse(bins), scaled_samples), 1e-6)
          << n << ' ' << c.flag;
    }
  }
}

TEST_P(EveryVariant, StoresZeroWhereSymmetryAsksForItWhateverTheInput) {
  for (const int n : {6, 15, 64, 63, 106, 1024}) {
    AlignedVector<float> x(static_cast<std::size_t>(n));
    x[1] = std::numeric_limits<float>::infinity();
    const auto X = Dft(n).forward(x.data());
    EXPECT_EQ(X[0].imag(), 0.0F) << n;
    EXPECT_TRUE(n % 2 != 0 || X.back().imag() == 0.0F) << n;
    EXPECT_FALSE(std::isfinite(X[1].real())) << n;
  }
}

TEST(Dft, ReportsSizesThatSuitTheMethod) {
  for (int n = 1; n <= 2100; ++n) {
    int spec = -1, init = -1, work = -1;
    ASSERT_EQ(ippsDFTGetSize_R_32f(n, 2, 2, &spec, &init, &work), ippStsNoErr);
    EXPECT_GE(spec, 768) << n;
    EXPECT_EQ(init == 0, n <= 16) << n;
    EXPECT_EQ(work == 0, n <= 16) << n;
    EXPECT_EQ((init % 64) + (work % 64) + (spec % 64), 0) << n;
  }
}

TEST(Dft, RefusesWithTheCodeOfTheFirstFault) {
  int a = -7, b = -7, c = -7;
  const struct {
    int length, flag;
    IppStatus status;
  } refused[] = {{0, 2, ippStsSizeErr},
                 {-8, 2, ippStsSizeErr},
                 {64, 3, ippStsFftFlagErr},
                 {1 << 30, 2, ippStsFftOrderErr},
                 {134217728 + 2, 2, ippStsSizeErr},
                 {67108879, 2, ippStsSizeErr},  // odd, by chirp
                 {std::numeric_limits<int>::max(), 2, ippStsSizeErr}};
  for (const auto& [length, flag, status] : refused) {
    EXPECT_EQ(ippsDFTGetSize_R_32f(length, flag, 2, &a, &b, &c), status) << length;
  }
  EXPECT_EQ(ippsDFTGetSize_R_32f(64, 2, 2, nullptr, &b, &c), ippStsNullPtrErr);
  EXPECT_EQ(ippsDFTGetSize_R_32f(64, 2, 2, &a, nullptr, &c), ippStsNullPtrErr);
  EXPECT_EQ(ippsDFTGetSize_R_32f(64, 2, 2, &a, &b, nullptr), ippStsNullPtrErr);
  EXPECT_EQ(a + b + c, -21) << "outputs of a refused call stay";

  Dft dft(64), small(8);
  EXPECT_EQ(ippsDFTInit_R_32f(64, 2, 2, nullptr, nullptr), ippStsNullPtrErr);
  EXPECT_EQ(ippsDFTInit_R_32f(64, 2, 2, dft.spec(), nullptr), ippStsNullPtrErr);
  EXPECT_EQ(ippsDFTInit_R_32f(64, 0, 2, dft.spec(), dft.work()), ippStsFftFlagErr);

  float x[66] = {kCanary}, y[66] = {kCanary};
  std::vector<Ipp8u> blank(4096);
  auto* unset = reinterpret_cast<IppsDFTSpec_R_32f*>(blank.data());
  for (const auto transform : {ippsDFTFwd_RToCCS_32f, ippsDFTInv_CCSToR_32f}) {
    EXPECT_EQ(transform(nullptr, y, dft.spec(), dft.work()), ippStsNullPtrErr);
    EXPECT_EQ(transform(x, nullptr, dft.spec(), dft.work()), ippStsNullPtrErr);
    EXPECT_EQ(transform(x, y, nullptr, dft.work()), ippStsNullPtrErr);
    EXPECT_EQ(transform(x, y, dft.spec(), nullptr), ippStsNullPtrErr);
    EXPECT_EQ(transform(x, y, unset, dft.work()), ippStsContextMatchErr);
    EXPECT_EQ(y[0], kCanary);
    EXPECT_EQ(transform(x, x, small.spec(), nullptr), ippStsNoErr) << "needs no work block";
  }
}

TEST(Dft, AllocatesAlignedBlocksWithinItsLimit) {
  for (void* block :
       {static_cast<void*>(ippsMalloc_8u(63)), static_cast<void*>(ippsMalloc_32f(1))}) {
    EXPECT_NE(block, nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 64, 0U);
    ippFree(block);
  }
  EXPECT_EQ(ippsMalloc_8u(0), nullptr);
  EXPECT_EQ(ippsMalloc_32f(-1), nullptr);
  EXPECT_EQ(ippsMalloc_32f(1 << 29), nullptr);
  ippFree(nullptr);
}

TEST(Dft, OneSpecServesManyThreadsFromTheFirstUseOn) {
  constexpr int n = 1200;
  const AlignedVector<float> x = Random(17).signal(n);
  Dft shared(n);
  int spec = 0, init = 0, work = 0;
  ippsDFTGetSize_R_32f(n, 2, 2, &spec, &init, &work);
  const Variant unset(-1);
  std::vector<AlignedVector<complex>> results(4, AlignedVector<complex>(n / 2 + 1));
  std::vector<std::thread> threads;
  for (auto& result : results) {
    threads.emplace_back([&, work] {
      std::vector<Ipp8u> own(static_cast<std::size_t>(work));
      auto* bins = reinterpret_cast<float*>(result.data());
      for (int i = 0; i < 50; ++i) ippsDFTFwd_RToCCS_32f(x.data(), bins, shared.spec(), own.data());
    });
  }
  for (std::thread& t : threads) t.join();
  EXPECT_EQ(ippJumpIndexForMergedLibs, dft::best_engine());
  for (const auto& result : results) EXPECT_EQ(result, results[0]);
  EXPECT_LE(reference::relative_error(results[0], reference::dft(x)),
            reference::transform_limit(n));
}

}  // namespace
