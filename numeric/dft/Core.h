// A complex transform by its plan: all in the cache, or split in two dimensions.
#pragma once

#include "numeric/dft/Passes.h"
#include "numeric/dft/VectorScalar.h"

namespace {

// The work arrays of one transform.
struct Work {
  Planar a, b;              // ping-pong buffers
  Planar batch_a, batch_b;  // the same for one batch of a split transform

  Work(const dft::Spec& spec, float* memory) {
    const dft::WorkLayout layout(spec.core, spec.complex_length);
    a = {memory, memory + layout.array};
    b = a + static_cast<std::ptrdiff_t>(2 * layout.array);
    float* scratch = memory + 4 * layout.array;
    batch_a = {scratch, scratch + layout.scratch};
    batch_b = batch_a + static_cast<std::ptrdiff_t>(2 * layout.scratch);
  }
};

// One tile of a split transform, rows by columns of the batch: times its twiddles, and transposed.
template <class Isa>
void turn_tile(const float* fine, const float* coarse, int rows, int columns, Planar in,
               Planar out) {
  constexpr int B = dft::kBatch;
  if (rows == B && columns == B) {
    Isa::Kernels::fit(B, [&](auto v) {
      using V = typename decltype(v)::type;
      for (int i = 0; i < B; i += V::lanes) {
        V re[B], im[B];
        unrolled<B>([&](auto c) {
          const Cx<V> w = Cx<V>{V::load(fine + 2 * B * c + i), V::load(fine + 2 * B * c + B + i)} *
                          Cx<V>{V::set1(coarse[2 * c]), V::set1(coarse[2 * c + 1])};
          const Cx<V> x = in.load<V>(B * c + i) * w;
          re[c] = x.re;
          im[c] = x.im;
        });
        V::template store_rows<B>(out.re + B * i, re);
        V::template store_rows<B>(out.im + B * i, im);
      }
    });
    return;
  }
  for (int c = 0; c < rows; ++c) {
    for (int i = 0; i < columns; ++i) {
      const Cx<Vector1> w = Cx<Vector1>{{fine[2 * B * c + i]}, {fine[2 * B * c + B + i]}} *
                            Cx<Vector1>{{coarse[2 * c]}, {coarse[2 * c + 1]}};
      out.store(rows * i + c, in.load<Vector1>(columns * c + i) * w);
    }
  }
}

// Columns first: each batch of columns is transformed in the cache and laid down in `mid` so that
// the batches of the second dimension are contiguous: blocks of kBatch rows, transposed.
template <class Isa, class In>
void run_columns(const dft::Spec& spec, In in, Planar mid, const Work& work) {
  constexpr int B = dft::kBatch;
  const dft::CorePlan& core = spec.core;
  const int columns = core.rows.length, rows = core.columns.length;
  const float* fine = dft::table(spec, core.fine);
  const float* coarse = dft::table(spec, core.coarse);
  for (int first = 0; first < columns; first += B, coarse += 2 * rows) {
    const int width = columns - first < B ? columns - first : B;
    for (int j = 0; j < rows; ++j) {
      Isa::Exact::fit(width, [&](auto v) {
        using V = typename decltype(v)::type;
        for_vectors<V>(width, [&](int i) {
          work.batch_a.store(width * j + i,
                             in.template load<V>(std::ptrdiff_t{columns} * j + first + i));
        });
      });
    }
    Planar x =
        run_inner<Isa>(spec, core.columns, 0, work.batch_a, work.batch_a, work.batch_b, width);
    const Planar last = x.re == work.batch_a.re ? work.batch_b : work.batch_a;
    run_pass<Isa>(spec, core.columns.pass[core.columns.count - 1], x, last, width);
    for (int c = 0; c < rows; c += B) {
      const int height = rows - c < B ? rows - c : B;
      turn_tile<Isa>(fine + std::ptrdiff_t{2 * B} * c, coarse + 2 * c, height, width,
                     last + std::ptrdiff_t{width} * c,
                     mid + (std::ptrdiff_t{columns} * c + std::ptrdiff_t{height} * first));
    }
  }
}

template <class Isa, class Out>
void run_rows(const dft::Spec& spec, Planar mid, Out out, const Work& work) {
  constexpr int B = dft::kBatch;
  const dft::CorePlan& core = spec.core;
  const int length = core.rows.length, rows = core.columns.length;
  for (int c = 0; c < rows; c += B) {
    const int width = rows - c < B ? rows - c : B;
    const Planar x = run_inner<Isa>(spec, core.rows, 0, mid + std::ptrdiff_t{length} * c,
                                    work.batch_a, work.batch_b, width);
    const Planar last = x.re == work.batch_a.re ? work.batch_b : work.batch_a;
    run_pass<Isa>(spec, core.rows.pass[core.rows.count - 1], x, last, width);
    for (int k = 0; k < length; ++k) {
      Isa::Exact::fit(width, [&](auto v) {
        using V = typename decltype(v)::type;
        for_vectors<V>(width, [&](int i) {
          out.store(std::ptrdiff_t{rows} * k + c + i, last.load<V>(width * k + i));
        });
      });
    }
  }
}

// Transforms `in` into one of the work arrays and tells which. `b` may hold a planar input.
template <class Isa, class In>
Planar transform(const dft::Spec& spec, In in, Planar a, Planar b, const Work& work) {
  const dft::PassPlan& plan = spec.core.columns;
  if (spec.core.rows.length > 0) {
    run_columns<Isa>(spec, in, a, work);
    run_rows<Isa>(spec, a, b, work);
    return b;
  }
  const Planar x = run_leading<Isa>(spec, plan, in, a, b);
  const Planar out = x.re == a.re ? b : a;
  run_pass<Isa>(spec, plan.pass[plan.count - 1], x, out, 1);
  return out;
}

// The same into a caller's array.
template <class Isa, class In>
void transform(const dft::Spec& spec, In in, Planar a, Planar b, const Work& work,
               ToSwappedPairs out) {
  const dft::PassPlan& plan = spec.core.columns;
  if (spec.core.rows.length > 0) {
    run_columns<Isa>(spec, in, a, work);
    run_rows<Isa>(spec, a, out, work);
    return;
  }
  const Planar x = run_leading<Isa>(spec, plan, in, a, b);
  const dft::Pass& pass = plan.pass[plan.count - 1];
  if (pass.stride >= dft::kNarrowest && !dft::is_generic(pass.radix)) {
    run_last<Isa>(pass, x, out);
    return;
  }
  const Planar y = x.re == a.re ? b : a;
  run_pass<Isa>(spec, pass, x, y, 1);
  copy<Isa>(plan.length, y, out);
}

}  // namespace
