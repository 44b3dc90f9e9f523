// The passes of a complex transform: planar data, real and imaginary parts in arrays of their own.
#pragma once

#include "numeric/dft/Butterflies.h"
#include "numeric/dft/Spec.h"

namespace {

// A complex array as two float arrays. Swapping the two turns a forward transform into an inverse.
struct Planar {
  float* re;
  float* im;

  Planar swapped() const { return {im, re}; }
  Planar operator+(std::ptrdiff_t i) const { return {re + i, im + i}; }

  template <class V>
  Cx<V> load(std::ptrdiff_t i) const {
    return {V::load(re + i), V::load(im + i)};
  }
  template <class V>
  void store(std::ptrdiff_t i, Cx<V> x) const {
    x.re.store(re + i);
    x.im.store(im + i);
  }
};

// A complex array of interleaved pairs, read as input.
struct FromPairs {
  const float* p;

  template <class V>
  Cx<V> load(std::ptrdiff_t i) const {
    return V::load_pairs(p + 2 * i);
  }
};

// Interleaved output of a transform that runs on swapped parts.
struct ToSwappedPairs {
  float* p;

  template <class V>
  void store(std::ptrdiff_t i, Cx<V> x) const {
    V::store_pairs(p + 2 * i, {x.im, x.re});
  }
};

// The first of several passes, stride 1: vectors run over the blocks and are stored transposed.
template <class V, int R, class In>
void fused_pass(const dft::Pass& pass, const float* twiddles, In in, Planar out) {
  const std::ptrdiff_t step = pass.blocks;
  const auto row = static_cast<std::ptrdiff_t>(dft::fused_row(pass.blocks));
  for_vectors<V>(pass.blocks, [&](int p) {
    Cx<V> x[R];
    unrolled<R>([&](auto l) { x[l] = in.template load<V>(p + step * l); });
    Butterfly<R, V>::run(x);
    V re[R], im[R];
    unrolled<R>([&](auto k) {
      if constexpr (k > 0) {
        const float* w = twiddles + 2 * (k - 1) * row + p;
        x[k] = x[k] * Cx<V>{V::load(w), V::load(w + row)};
      }
      re[k] = x[k].re;
      im[k] = x[k].im;
    });
    V::template store_rows<R>(out.re + R * p, re);
    V::template store_rows<R>(out.im + R * p, im);
  });
}

// Any other pass but the last: vectors run over the stride, and each block has its own R - 1
// twiddles. A vector wider than the stride writes past it; the next ones put that right.
template <class V, int R>
void inner_pass(const dft::Pass& pass, const float* twiddles, Planar in, Planar out, int batch) {
  const int stride = pass.stride * batch;
  const std::ptrdiff_t step = std::ptrdiff_t{stride} * pass.blocks;
  for (int p = 0; p < pass.blocks; ++p, in = in + stride, out = out + std::ptrdiff_t{R} * stride) {
    const float* w = twiddles + 2 * (R - 1) * std::ptrdiff_t{p};
    for_vectors<V>(stride, [&](int q) {
      Cx<V> x[R];
      unrolled<R>([&](auto l) { x[l] = in.load<V>(q + step * l); });
      Butterfly<R, V>::run(x);
      unrolled<R>([&](auto k) {
        if constexpr (k > 0) x[k] = x[k] * Cx<V>{V::set1(w[2 * k - 2]), V::set1(w[2 * k - 1])};
        out.store(q + std::ptrdiff_t{stride} * k, x[k]);
      });
    });
  }
}

// The last pass: one block, whose twiddles are all 1.
template <class V, int R, class Out>
void last_pass(const dft::Pass& pass, Planar in, Out out, int batch) {
  const int stride = pass.stride * batch;
  for_vectors<V>(stride, [&](int q) {
    Cx<V> x[R];
    unrolled<R>([&](auto l) { x[l] = in.load<V>(q + std::ptrdiff_t{stride} * l); });
    Butterfly<R, V>::run(x);
    unrolled<R>([&](auto k) { out.template store<V>(q + std::ptrdiff_t{stride} * k, x[k]); });
  });
}

// A radix without a kernel of its own: the defining sum, folded. Its table starts with the roots
// cos, sin of 0 to R - 1 parts of a turn.
template <class V>
void generic_pass(const dft::Pass& pass, const float* roots, Planar in, Planar out, int batch) {
  constexpr int kMost = 75;
  const int radix = pass.radix, half = radix / 2, stride = pass.stride * batch;
  const std::ptrdiff_t step = std::ptrdiff_t{stride} * pass.blocks;
  const float* twiddles = roots + 2 * radix;
  for (int p = 0; p < pass.blocks; ++p, twiddles += 2 * (radix - 1)) {
    const Planar from = in + std::ptrdiff_t{stride} * p;
    const auto put = [&](int q, int k, Cx<V> x) {
      const float* w = twiddles + 2 * k - 2;
      if (k > 0) x = x * Cx<V>{V::set1(w[0]), V::set1(w[1])};
      out.store(q + stride * (std::ptrdiff_t{radix} * p + k), x);
    };
    for_vectors<V>(stride, [&](int q) {
      Cx<V> sum[kMost], difference[kMost];
      const Cx<V> first = from.load<V>(q);
      Cx<V> all = first;
      for (int l = 0; l < half; ++l) {
        const Cx<V> a = from.load<V>(q + step * (l + 1)),
                    b = from.load<V>(q + step * (radix - 1 - l));
        sum[l] = a + b;
        difference[l] = a - b;
        all = all + sum[l];
      }
      // Results in the order of the output, as a vector wider than the stride writes past its own.
      Cx<V> mirrored[kMost];
      put(q, 0, all);
      for (int k = 1; k <= half; ++k) {
        Cx<V> even = first, odd{V::set1(0.0F), V::set1(0.0F)};
        for (int l = 0, turn = k; l < half; ++l) {
          const V c = V::set1(roots[2 * turn]), s = V::set1(roots[2 * turn + 1]);
          even = {V::fma(c, sum[l].re, even.re), V::fma(c, sum[l].im, even.im)};
          odd = {V::fma(s, difference[l].re, odd.re), V::fma(s, difference[l].im, odd.im)};
          turn += k;
          if (turn >= radix) turn -= radix;
        }
        put(q, k, minus_i(even, odd));
        mirrored[k - 1] = plus_i(even, odd);
      }
      for (int k = half; k > 0; --k) put(q, radix - k, mirrored[k - 1]);
    });
  }
}

// Calls f with the radix as a constant; false if it has no kernel of its own.
template <class F>
[[gnu::always_inline]] inline bool with_kernel(int radix, F f) {
  switch (radix) {
    case 2: f(std::integral_constant<int, 2>{}); return true;
    case 3: f(std::integral_constant<int, 3>{}); return true;
    case 4: f(std::integral_constant<int, 4>{}); return true;
    case 5: f(std::integral_constant<int, 5>{}); return true;
    case 7: f(std::integral_constant<int, 7>{}); return true;
    case 8: f(std::integral_constant<int, 8>{}); return true;
    default: return false;
  }
}

// Any pass between work arrays, which have room for what a vector writes past a narrow stride.
template <class Isa>
void run_pass(const dft::Spec& spec, const dft::Pass& pass, Planar in, Planar out, int batch) {
  const float* twiddles = dft::table(spec, pass.table);
  Isa::Kernels::cover(pass.stride * batch, [&](auto v) {
    using V = typename decltype(v)::type;
    const bool done = with_kernel(pass.radix, [&](auto radix) {
      if (pass.blocks > 1) {
        inner_pass<V, radix>(pass, twiddles, in, out, batch);
      } else {
        last_pass<V, radix>(pass, in, out, batch);
      }
    });
    if (!done) generic_pass<V>(pass, twiddles, in, out, batch);
  });
}

// Copies n values, in order.
template <class Isa, class In, class Out>
void copy(int n, In in, Out out) {
  Isa::Exact::fit(n, [&](auto v) {
    using V = typename decltype(v)::type;
    for_vectors<V>(n, [&](int i) { out.template store<V>(i, in.template load<V>(i)); });
  });
}

// The last pass into a caller's array, past which nothing may be written.
template <class Isa>
void run_last(const dft::Pass& pass, Planar in, ToSwappedPairs out) {
  Isa::Kernels::fit(pass.stride, [&](auto v) {
    with_kernel(pass.radix, [&](auto radix) {
      last_pass<typename decltype(v)::type, radix>(pass, in, out, 1);
    });
  });
}

// All passes but the last, from `in` through the two work arrays; tells where the result stands.
template <class Isa>
Planar run_inner(const dft::Spec& spec, const dft::PassPlan& plan, int first, Planar in, Planar a,
                 Planar b, int batch) {
  for (int i = first; i + 1 < plan.count; ++i) {
    const Planar out = in.re == a.re || in.re == a.im ? b : a;
    run_pass<Isa>(spec, plan.pass[i], in, out, batch);
    in = out;
  }
  return in;
}

// The same from a caller's array, or from a planar one that may be `b`.
template <class Isa, class In>
Planar run_leading(const dft::Spec& spec, const dft::PassPlan& plan, In in, Planar a, Planar b) {
  if (!plan.fused) {
    copy<Isa>(plan.length, in, a);
    return run_inner<Isa>(spec, plan, 0, a, a, b, 1);
  }
  const dft::Pass& pass = plan.pass[0];
  const float* twiddles = dft::table(spec, pass.table);
  Isa::Kernels::fit(pass.blocks, [&](auto v) {
    with_kernel(pass.radix, [&](auto radix) {
      fused_pass<typename decltype(v)::type, radix>(pass, twiddles, in, a);
    });
  });
  return run_inner<Isa>(spec, plan, 1, a, a, b, 1);
}

}  // namespace
