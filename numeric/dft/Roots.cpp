// Roots of unity by two-level tables.
#include "numeric/dft/Roots.h"

#include <bit>
#include <cmath>
#include <new>
#include <numbers>

namespace dft {
namespace {

// Bits of the index that the fine table resolves: about half of them.
int fine_bits(std::int64_t n) {
  return (static_cast<int>(std::bit_width(static_cast<std::uint64_t>(n))) + 1) / 2;
}

// exp(-2 pi i k / n), reduced to an eighth of a turn so that symmetric roots are exact mirrors.
std::complex<double> root(std::int64_t k, std::int64_t n) {
  const std::int64_t octants = 8 * k, octant = octants / n;
  const std::int64_t rest = octants - octant * n;  // of n parts of an octant
  const bool mirrored = octant % 2 != 0;
  const double angle = std::numbers::pi / 4 * static_cast<double>(mirrored ? n - rest : rest) /
                       static_cast<double>(n);
  double c = std::cos(angle), s = std::sin(angle);
  if (mirrored) {
    const double swap = c;
    c = s;
    s = swap;
  }
  switch (octant / 2 % 4) {
    case 0: return {c, -s};
    case 1: return {-s, -c};
    case 2: return {-c, s};
    default: return {s, c};
  }
}

}  // namespace

std::size_t Roots::storage_size(std::int64_t n) {
  const int bits = fine_bits(n);
  return (static_cast<std::size_t>(n >> bits) + 1 + (std::size_t{1} << bits)) *
         sizeof(std::complex<double>);
}

Roots::Roots(std::int64_t n, void* storage)
    : shift(fine_bits(n)),
      mask((std::int64_t{1} << shift) - 1),
      fine(static_cast<std::complex<double>*>(storage)),
      coarse(fine + mask + 1) {
  for (std::int64_t k = 0; k <= mask; ++k) ::new (fine + k) std::complex<double>(root(k % n, n));
  for (std::int64_t k = 0; k <= n >> shift; ++k) {
    ::new (coarse + k) std::complex<double>(root((k << shift) % n, n));
  }
}

}  // namespace dft
