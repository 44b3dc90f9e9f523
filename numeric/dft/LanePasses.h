// The passes of complex transforms that run side by side, one in each lane of a vector: no value
// ever changes its lane, and a twiddle serves all lanes.
#pragma once

#include "numeric/dft/Passes.h"

namespace {

// One complex value of every lane's transform: a vector of real parts, then one of imaginary parts.
// In work memory, which is aligned to a line.
struct Elements {
  float* p;

  template <class V>
  Cx<V> load(std::ptrdiff_t i) const {
    const float* at = p + 2 * V::lanes * i;
    return {V::load_aligned(at), V::load_aligned(at + V::lanes)};
  }
  template <class V>
  void store(std::ptrdiff_t i, Cx<V> x) const {
    float* at = p + 2 * V::lanes * i;
    x.re.store_aligned(at);
    x.im.store_aligned(at + V::lanes);
  }
};

// The same in a caller's array, as input.
struct FromSamples {
  const float* p;

  template <class V>
  Cx<V> load(std::ptrdiff_t i) const {
    const float* at = p + 2 * V::lanes * i;
    return {V::load(at), V::load(at + V::lanes)};
  }
};

// And as output of a transform that runs on swapped parts.
struct ToSwappedSamples {
  float* p;

  template <class V>
  void store(std::ptrdiff_t i, Cx<V> x) const {
    float* at = p + 2 * V::lanes * i;
    x.im.store(at);
    x.re.store(at + V::lanes);
  }
};

// One butterfly, on the elements `from`, `from` + step, ... of the input. Its results are turned by
// the twiddles w, unless there are none, and stored at a distance of `stride`.
template <class V, int R, bool twiddled, class In, class Out>
[[gnu::always_inline]] inline void lane_butterfly(const float* w, In in, std::ptrdiff_t from,
                                                  std::ptrdiff_t step, Out out, std::ptrdiff_t to,
                                                  std::ptrdiff_t stride) {
  Cx<V> x[R];
  unrolled<R>([&](auto l) { x[l] = in.template load<V>(from + step * l); });
  Butterfly<R, V>::run(x);
  unrolled<R>([&](auto k) {
    if constexpr (twiddled && k > 0) {
      const float* turn = w + 2 * (k - 1) * V::copies;
      x[k] = x[k] * Cx<V>{V::spread(turn), V::spread(turn + V::copies)};
    }
    out.template store<V>(to + stride * k, x[k]);
  });
}

// Floats from the twiddles of one block to those of the next.
template <class V, int R>
constexpr std::ptrdiff_t kTwiddles = 2 * (R - 1) * V::copies;

// The first pass: stride 1. The twiddles of block 0 are all 1.
template <class V, int R, class In, class Out>
void first_lane_pass(const dft::Pass& pass, const float* twiddles, In in, Out out) {
  const int blocks = pass.blocks;
  lane_butterfly<V, R, false>(twiddles, in, 0, blocks, out, 0, 1);
  for (int p = 1; p < blocks; ++p) {
    twiddles += kTwiddles<V, R>;
    lane_butterfly<V, R, true>(twiddles, in, p, blocks, out, R * p, 1);
  }
}

// Any other pass.
template <class V, int R, class Out>
void lane_pass(const dft::Pass& pass, const float* twiddles, Elements in, Out out) {
  const int stride = pass.stride, blocks = pass.blocks;
  const std::ptrdiff_t step = std::ptrdiff_t{stride} * blocks;
  for (int q = 0; q < stride; ++q) {
    lane_butterfly<V, R, false>(twiddles, in, q, step, out, q, stride);
  }
  for (std::ptrdiff_t p = 1; p < blocks; ++p) {
    twiddles += kTwiddles<V, R>;
    for (std::ptrdiff_t q = stride * p; q < stride * (p + 1); ++q) {
      lane_butterfly<V, R, true>(twiddles, in, q, step, out, q + stride * (R - 1) * p, stride);
    }
  }
}

template <class F>
[[gnu::always_inline]] inline void with_lane_kernel(int radix, F f) {
  radix == 6 ? f(std::integral_constant<int, 6>{}) : void(with_kernel(radix, f));
}

template <class V, class In, class Out>
void run_first_lane_pass(const dft::Spec& spec, In in, Out out) {
  const dft::Pass& pass = spec.core.columns.pass[0];
  with_lane_kernel(pass.radix, [&](auto radix) {
    first_lane_pass<V, radix>(pass, dft::table(spec, pass.table), in, out);
  });
}

template <class V, class Out>
void run_lane_pass(const dft::Spec& spec, const dft::Pass& pass, Elements in, Out out) {
  with_lane_kernel(pass.radix, [&](auto radix) {
    lane_pass<V, radix>(pass, dft::table(spec, pass.table), in, out);
  });
}

// All passes, from `in` by way of the work arrays a and b, of which `in` may use b, to `out`.
template <class V, class In, class Out>
void run_lanes(const dft::Spec& spec, In in, Elements a, Elements b, Out out) {
  const dft::PassPlan& plan = spec.core.columns;
  if (plan.count == 1) return run_first_lane_pass<V>(spec, in, out);
  run_first_lane_pass<V>(spec, in, a);
  for (int i = 1; i + 1 < plan.count; ++i) {
    run_lane_pass<V>(spec, plan.pass[i], a, b);
    std::swap(a, b);
  }
  run_lane_pass<V>(spec, plan.pass[plan.count - 1], a, out);
}

}  // namespace
