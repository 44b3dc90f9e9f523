// Plans and tables. All tables are computed in double precision and rounded once.
#include "numeric/dft/Setup.h"

#include <algorithm>
#include <functional>
#include <vector>

#include "numeric/dft/Factors.h"
#include "numeric/dft/Roots.h"

namespace dft {
namespace {

// Above this length the passes' buffers no longer fit the second-level cache.
constexpr int kLongestInCache = 1 << 15;

// Places tables after the spec record, one behind the other.
class Placement {
 public:
  std::uint32_t take(std::int64_t floats) {
    const auto at = static_cast<std::uint32_t>(lines);
    lines += (floats + kLine - 1) / kLine;
    return at;
  }
  std::int64_t bytes() const { return lines * 64; }

 private:
  std::int64_t lines = (sizeof(Spec) + 63) / 64;
};

std::int64_t pass_floats(const Pass& pass, bool fused, int copies) {
  if (fused) return 2 * (pass.radix - 1) * static_cast<std::int64_t>(fused_row(pass.blocks));
  const std::int64_t roots = is_generic(pass.radix) ? 2 * pass.radix : 0;
  return roots + 2 * (pass.radix - 1) * std::int64_t{pass.blocks} * copies;
}

PassPlan plan_passes(const std::vector<int>& radices, bool batched, int copies, Placement& place) {
  PassPlan plan{};
  plan.copies = copies;
  plan.length = 1;
  for (const int radix : radices) plan.length *= radix;
  plan.fused = !batched && radices.size() > 1 && !is_generic(radices[0]) &&
               plan.length / radices[0] >= kNarrowest;
  int stride = 1;
  for (const int radix : radices) {
    Pass& pass = plan.pass[plan.count];
    pass = {radix, stride, plan.length / stride / radix, 0};
    pass.table = place.take(pass_floats(pass, plan.fused && plan.count == 0, copies));
    stride *= radix;
    ++plan.count;
  }
  return plan;
}

// Two sides as near to each other as the radices allow.
CorePlan plan_split(std::vector<int> radices, Placement& place) {
  std::sort(radices.begin(), radices.end(), std::greater<>());
  std::vector<int> sides[2];
  std::int64_t lengths[2] = {1, 1};
  for (const int radix : radices) {
    const int smaller = lengths[1] < lengths[0] ? 1 : 0;
    sides[smaller].push_back(radix);
    lengths[smaller] *= radix;
  }
  CorePlan core{};
  core.columns = plan_passes(sides[0], true, 1, place);
  core.rows = plan_passes(sides[1], true, 1, place);
  const std::int64_t batches = (core.rows.length + kBatch - 1) / kBatch;
  core.fine = place.take(std::int64_t{2} * kBatch * core.columns.length);
  core.coarse = place.take(2 * batches * core.columns.length);
  return core;
}

CorePlan plan_core(int length, const std::vector<int>& list, bool lanes, Placement& place) {
  CorePlan core{};
  if (length > kLongestInCache && list.size() > 1) {
    core = plan_split(list, place);
  } else {
    core.columns = plan_passes(list, lanes, lanes ? engine().copies : 1, place);
  }
  core.length = length;
  return core;
}

// Writes complex values: interleaved, or as two rows.
struct Writer {
  float* at;

  void put(std::complex<double> w, int copies = 1) {
    at = std::fill_n(at, copies, static_cast<float>(w.real()));
    at = std::fill_n(at, copies, static_cast<float>(w.imag()));
  }
};

void put(float* re, std::size_t row, std::complex<double> w) {
  re[0] = static_cast<float>(w.real());
  re[row] = static_cast<float>(w.imag());
}

class Builder {
 public:
  Builder(Spec& block, unsigned char* scratch) : spec(block), init(scratch) {}

  void core() {
    passes(spec.core.columns);
    if (spec.core.rows.length == 0) return;
    passes(spec.core.rows);
    split();
  }
  void lanes();
  void recombine();
  void chirp();

 private:
  float* table(std::uint32_t lines) { return const_cast<float*>(dft::table(spec, lines)); }
  void passes(const PassPlan& plan);
  void fused(const Pass& pass, const Roots& w);
  void strided(const Pass& pass, int copies, const Roots& w);
  void split();

  Spec& spec;
  unsigned char* init;
};

void Builder::passes(const PassPlan& plan) {
  const Roots w(plan.length, init);
  for (int i = 0; i < plan.count; ++i) {
    i == 0 && plan.fused ? fused(plan.pass[i], w) : strided(plan.pass[i], plan.copies, w);
  }
}

void Builder::fused(const Pass& pass, const Roots& w) {
  const std::size_t row = fused_row(pass.blocks);
  float* at = table(pass.table);
  for (int k = 1; k < pass.radix; ++k, at += 2 * row) {
    for (int p = 0; p < pass.blocks; ++p) put(at + p, row, w[std::int64_t{p} * k]);
  }
}

void Builder::strided(const Pass& pass, int copies, const Roots& w) {
  Writer out{table(pass.table)};
  const std::int64_t turn = std::int64_t{pass.stride} * pass.blocks;
  // The roots of a generic radix are stored as cos and sin: conjugates.
  for (int j = 0; is_generic(pass.radix) && j < pass.radix; ++j) out.put(std::conj(w[turn * j]));
  for (int p = 0; p < pass.blocks; ++p) {
    for (int k = 1; k < pass.radix; ++k) out.put(w[std::int64_t{pass.stride} * p * k], copies);
  }
}

void Builder::split() {
  const CorePlan& core = spec.core;
  const Roots w(core.length, init);
  float* fine = table(core.fine);
  for (int k = 0; k < core.columns.length; ++k, fine += 2 * kBatch) {
    for (int b = 0; b < kBatch; ++b) put(fine + b, kBatch, w[std::int64_t{k} * b % core.length]);
  }
  Writer coarse{table(core.coarse)};
  for (int first = 0; first < core.rows.length; first += kBatch) {
    for (int k = 0; k < core.columns.length; ++k) coarse.put(w[std::int64_t{k} * first]);
  }
}

void Builder::lanes() {
  const int lanes = spec.lanes, last = spec.core.length, period = 2 * last;
  const Roots w(spec.length, init);
  const auto scale = static_cast<double>(spec.forward_scale);
  const std::complex<double> i(0.0, 1.0);
  float* at = table(spec.weights);
  for (int k = 0; k <= last; ++k, at += 4 * lanes) {
    for (int l = 0; l < lanes; ++l) {
      // The inverse finds bin H already turned.
      const std::complex<double> turn = k < last ? w[std::int64_t{l} * k] : 1.0;
      const std::complex<double> half = i * w[std::int64_t{k} * lanes];
      put(at + l, std::size_t(lanes), 0.5 * scale * turn * (1.0 - half));
      put(at + 2 * lanes + l, std::size_t(lanes), 0.5 * scale * turn * (1.0 + half));
    }
  }
  float* rows = table(spec.middle);
  float* columns = rows + lanes * lanes;
  for (int l = 0; l < lanes; ++l) {
    for (int j = 0; j < lanes / 2; ++j) {
      const std::complex<double> turn = w[(last + std::int64_t{period} * j) * l % spec.length];
      put(rows + lanes * l + 2 * j, 1, scale * turn);
      columns[lanes * 2 * j + l] = static_cast<float>(2.0 * turn.real());
      columns[lanes * (2 * j + 1) + l] = static_cast<float>(2.0 * turn.imag());
    }
  }
}

void Builder::recombine() {
  const Roots w(spec.length, init);
  const std::size_t row = in_lines(static_cast<std::size_t>(spec.length / 4 + 1));
  float* at = table(spec.recombine);
  for (int k = 0; k <= spec.length / 4; ++k) {
    put(at + k, row, {w[k].imag(), -w[k].real()});
  }
}

void Builder::chirp() {
  const int n = spec.complex_length, length = spec.core.length;
  const std::size_t chirp_row = in_lines(static_cast<std::size_t>(n));
  const std::size_t filter_row = in_lines(static_cast<std::size_t>(length));
  float* chirp = table(spec.chirp_table);
  float* filter = table(spec.filter);
  std::fill_n(filter, 2 * filter_row, 0.0F);
  {
    const Roots w(std::int64_t{2} * n, init);
    for (int j = 0; j < n; ++j) {
      const std::complex<double> c = w[std::int64_t{j} * j % (2 * n)];
      put(chirp + j, chirp_row, c);
      put(filter + j, filter_row, std::conj(c) / static_cast<double>(length));
      if (j > 0) put(filter + length - j, filter_row, std::conj(c) / static_cast<double>(length));
    }
  }
  engine().forward_core(spec, filter, filter + filter_row, reinterpret_cast<float*>(init));
}

}  // namespace

// From which length on so many lanes hold sub-transforms of their own. The widest vector wins as
// soon as it has one block of bins, 2 lanes^2 samples: measured, 8 lanes take 0.77 of the time of 4
// at 128 and 0.65 at 256. But sixteen by sixteen bins take all registers, and a single block cannot
// overlap with the next one: 512 bits start at two blocks.
constexpr struct { int lanes, least; } kLanes[] = {{16, 1024}, {8, 128}, {4, 32}};

// The lanes for a length, or 0 if none suit it: they need whole vectors of samples, a kernel for
// each factor, and arrays that fit the cache.
int choose_lanes(int length) {
  if (length / 2 > kLongestInCache) return 0;
  for (const auto& [lanes, least] : kLanes) {
    if (lanes > engine().lanes || length < least || length % (2 * lanes) != 0) continue;
    const std::vector<int> list = lane_radices(length / (2 * lanes));
    if (!list.empty() && std::ranges::none_of(list, is_generic)) return lanes;
  }
  return 0;
}

Setup plan(int length) {
  Setup setup{};
  Spec& spec = setup.spec;
  Placement place;
  const bool odd = length % 2 != 0;
  spec.identifier = kIdentifier;
  spec.length = length;
  spec.complex_length = odd ? length : length / 2;
  spec.lanes = choose_lanes(length);
  int core_length = spec.complex_length;
  if (spec.lanes > 0) core_length /= spec.lanes;
  std::vector<int> list = spec.lanes > 0 ? lane_radices(core_length) : radices(core_length, odd);
  spec.chirp = list.empty();
  if (spec.lanes > 0) {
    spec.weights = place.take(std::int64_t{4} * spec.lanes * (core_length + 1));
    spec.middle = place.take(std::int64_t{2} * spec.lanes * spec.lanes);
  } else if (!odd)
    spec.recombine = place.take(2 * std::int64_t(in_lines(std::size_t(length) / 4 + 1)));
  if (spec.chirp) {
    core_length = chirp_length(spec.complex_length);
    list = radices(core_length, false);
    spec.chirp_table = place.take(2 * std::int64_t(in_lines(std::size_t(spec.complex_length))));
    spec.filter = place.take(2 * std::int64_t(in_lines(std::size_t(core_length))));
  }
  spec.core = plan_core(core_length, list, spec.lanes > 0, place);

  setup.spec_bytes = place.bytes();
  const WorkLayout work(spec.core, spec.complex_length);
  setup.work_bytes = static_cast<std::int64_t>(work.floats() * sizeof(float));
  const std::int64_t moduli[] = {length, core_length, std::int64_t{2} * spec.complex_length};
  for (const std::int64_t n : moduli) {
    setup.init_bytes =
        std::max(setup.init_bytes, static_cast<std::int64_t>(Roots::storage_size(n)));
  }
  if (spec.chirp) setup.init_bytes = std::max(setup.init_bytes, setup.work_bytes);
  return setup;
}

void build(const Setup& setup, Spec* block, unsigned char* init) {
  *block = setup.spec;
  if (block->core.length == 0) return;
  Builder builder(*block, init);
  builder.core();
  if (block->lanes > 0) {
    builder.lanes();
  } else if (block->length % 2 == 0)
    builder.recombine();
  if (block->chirp) builder.chirp();
}

}  // namespace dft
