// The passes of complex transforms that run side by side, one in each lane of a vector: no value
// ever changes its lane, and a twiddle serves all lanes.
#pragma once

#include "numeric/dft/Passes.h"

namespace {

// One complex value of every lane's transform: a vector of real parts, then one of imaginary parts.
struct Elements {
  float* p;

  template <class V>
  Cx<V> load(std::ptrdiff_t i) const {
    const float* at = p + 2 * V::lanes * i;
    return {V::load(at), V::load(at + V::lanes)};
  }
  template <class V>
  void store(std::ptrdiff_t i, Cx<V> x) const {
    float* at = p + 2 * V::lanes * i;
    x.re.store(at);
    x.im.store(at + V::lanes);
  }
};

// The same with the parts swapped, as the output of a transform that runs backward.
struct SwappedElements {
  Elements to;

  template <class V>
  void store(std::ptrdiff_t i, Cx<V> x) const {
    to.store<V>(i, {x.im, x.re});
  }
};

template <class V, int R, class In, class Out>
void lane_pass(const dft::Pass& pass, const float* twiddles, In in, Out out) {
  const std::ptrdiff_t stride = pass.stride, step = stride * pass.blocks;
  for (int p = 0; p < pass.blocks; ++p) {
    const float* w = twiddles + 2 * (R - 1) * std::ptrdiff_t{p};
    const std::ptrdiff_t from = stride * p, to = stride * R * p;
    for (int q = 0; q < pass.stride; ++q) {
      Cx<V> x[R];
      unrolled<R>([&](auto l) { x[l] = in.template load<V>(from + q + step * l); });
      Butterfly<R, V>::run(x);
      unrolled<R>([&](auto k) {
        if constexpr (k > 0) x[k] = x[k] * Cx<V>{V::set1(w[2 * k - 2]), V::set1(w[2 * k - 1])};
        out.template store<V>(to + q + stride * k, x[k]);
      });
    }
  }
}

// The last pass: one block, whose twiddles are all 1.
template <class V, int R, class In, class Out>
void last_lane_pass(const dft::Pass& pass, In in, Out out) {
  const std::ptrdiff_t stride = pass.stride;
  for (int q = 0; q < pass.stride; ++q) {
    Cx<V> x[R];
    unrolled<R>([&](auto l) { x[l] = in.template load<V>(q + stride * l); });
    Butterfly<R, V>::run(x);
    unrolled<R>([&](auto k) { out.template store<V>(q + stride * k, x[k]); });
  }
}

template <class V, class In, class Out>
void run_lane_pass(const dft::Spec& spec, const dft::Pass& pass, In in, Out out) {
  with_kernel(pass.radix, [&](auto radix) {
    if (pass.blocks > 1) {
      lane_pass<V, radix>(pass, dft::table(spec, pass.table), in, out);
    } else {
      last_lane_pass<V, radix>(pass, in, out);
    }
  });
}

// All passes, from `in` by way of the work arrays a and b, of which `in` may use b, to `out`.
template <class V, class In, class Out>
void run_lanes(const dft::Spec& spec, In in, Elements a, Elements b, Out out) {
  const dft::PassPlan& plan = spec.core.columns;
  const int last = plan.count - 1;
  if (last == 0) return run_lane_pass<V>(spec, plan.pass[0], in, out);
  run_lane_pass<V>(spec, plan.pass[0], in, a);
  for (int i = 1; i < last; ++i) {
    run_lane_pass<V>(spec, plan.pass[i], a, b);
    std::swap(a, b);
  }
  run_lane_pass<V>(spec, plan.pass[last], a, out);
}

}  // namespace
