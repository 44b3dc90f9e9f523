// Roots of unity in double precision, quickly enough for tables of millions.
#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>

namespace dft {

// exp(-2 pi i k / n) as the product of a coarse and a fine root, so that a table of n values costs
// the sines and cosines of about 2 sqrt(n). The error stays below two roundings of double.
class Roots {
 public:
  // `storage` has room for storage_size(n) bytes, 16-byte aligned, and outlives the object.
  Roots(std::int64_t n, void* storage);
  static std::size_t storage_size(std::int64_t n);

  // 0 <= k < n
  std::complex<double> operator[](std::int64_t k) const {
    const std::complex<double>&a = coarse[k >> shift], &b = fine[k & mask];
    return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
  }

 private:
  int shift;
  std::int64_t mask;
  std::complex<double>* fine;
  std::complex<double>* coarse;
};

}  // namespace dft
