// Factorisation, and the order of the radices.
#include "numeric/dft/Factors.h"

#include <algorithm>
#include <bit>
#include <functional>

namespace dft {
namespace {

constexpr int kLargestTrial = 50;  // beyond it a factor costs more than a convolution

struct Factors {
  std::vector<int> primes;  // odd, ascending, those that trial division found
  int cofactor;             // what is left
  bool failed;              // the search went past the largest trial
};

Factors trial_divide(int n) {
  Factors f{{}, n, false};
  if (n < 9) return f;
  for (int p = 3; p * p <= f.cofactor; p += 2) {
    if (p > kLargestTrial) {
      f.failed = true;
      return f;
    }
    while (f.cofactor % p == 0) {
      f.primes.push_back(p);
      f.cofactor /= p;
    }
  }
  return f;
}

// Eights, closed by fours rather than by a lone 2. But sixteen odd transforms start best with an
// eight: vectors are full from the second pass on.
std::vector<int> split_power_of_two(int exponent, bool odd_factors) {
  if (exponent == 1) return {2};
  if (exponent == 4 && odd_factors) return {8, 2};
  const int fours = exponent % 3 == 0 ? 0 : (exponent % 3 == 1 ? 2 : 1);
  std::vector<int> list(static_cast<std::size_t>((exponent - 2 * fours) / 3), 8);
  list.insert(list.end(), static_cast<std::size_t>(fours), 4);
  return list;
}

// Strides grow from pass to pass, and a vector wants a stride of at least its lanes: eights go
// first, or else the largest odd radix; primes without a kernel of their own go last.
std::vector<int> arrange(int exponent, std::vector<int> odd) {
  std::sort(odd.begin(), odd.end(), std::greater<>());
  const auto kernels = std::find_if(odd.begin(), odd.end(), [](int prime) { return prime <= 7; });
  std::vector<int> list(kernels, odd.end());
  if (exponent > 0) {
    const std::vector<int> twos = split_power_of_two(exponent, !odd.empty());
    list.insert(exponent >= 3 ? list.begin() : list.end(), twos.begin(), twos.end());
  }
  list.insert(list.end(), odd.begin(), kernels);
  return list;
}

}  // namespace

std::vector<int> radices(int n, bool real) {
  const int exponent = std::countr_zero(static_cast<unsigned>(n));
  Factors f = trial_divide(n >> exponent);
  const bool found = exponent > 0 || !f.primes.empty();
  const int limit = !real && exponent >= 2 ? 150 : 50;
  const bool prime_factor = !f.failed && found && f.cofactor <= limit;
  if (!prime_factor && n > kLargestTrial) return {};
  if (f.cofactor > 1) f.primes.push_back(f.cofactor);
  return arrange(exponent, f.primes);
}

std::vector<int> lane_radices(int n) {
  std::vector<int> list = radices(n, false);
  const auto two = std::ranges::find(list, 2), three = std::ranges::find(list, 3);
  if (two != list.end() && three != list.end()) {
    *two = 6;
    list.erase(three);
  }
  return list;
}

int chirp_length(int n) {
  static constexpr int kLengths[] = {
      128,  144,  160,  192,  200,  256,  288,  320,  384,  400,  512,  576,  640,  768,  800, 1024,
      1152, 1280, 1536, 1600, 2048, 2304, 2560, 3072, 3200, 4096, 4608, 5120, 6144, 6400, 8192};
  const int least = 2 * n - 1;
  if (least > 8192) return static_cast<int>(std::bit_ceil(static_cast<unsigned>(least)));
  return *std::lower_bound(std::begin(kLengths), std::end(kLengths), least);
}

}  // namespace dft
