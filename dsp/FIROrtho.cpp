// The stages of a response, and which of them a change of settings runs again.
#include "dsp/FIROrtho.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cmath>
#include <string>

#include "dsp/FIRFunctions.h"
#include "dsp/RenderKernels.h"
#include "dsp/SignGenerator.h"
#include "numeric/Convert.h"

namespace {

constexpr double kSpeedOfSound = 340.29;  // metres per second
constexpr int kMaxRadius = 1701;          // metres; bounds the lattice table's time and memory
constexpr float kMaxWeight = 0.99f;       // no axis is ever lossless
constexpr int kMaxSamples = 1 << 24;      // bounds a response whose settings are out of all range
constexpr std::uint32_t kSignSeed = 345;
constexpr float kTrimThreshold = 1e-6f;  // -120 dB
constexpr int kBlock = 256;              // samples mapped at a time

// Stores value and tells whether that is a change; what is not a number always is one.
template <class V>
bool replace(V& stored, V value) {
  const bool changed = stored != value;
  stored = value;
  return changed;
}

// The first cell of the table at or beyond a distance, up to the last one; 0 for NaN.
int cell_within(float r, int last) {
  const float square = r * r;
  if (square >= static_cast<float>(last)) return last;
  const int below = saturate_to_int(square);
  return below + (square > static_cast<float>(below) ? 1 : 0);
}

// Of the distance, in what the amplitude is divided by.
float attenuation_exponent(int D, float g) { return static_cast<float>(D - 1) * 0.5f * g; }

}  // namespace

template <class T>
FIROrtho<T>::FIROrtho(AlignedVector<DimProperties<T>>& new_dims, float new_dB_range,
                      int new_sample_rate, float stretch, float linearity, float attenuation,
                      float new_decay_low, float new_decay_high) {
  update(new_dims, new_dB_range, new_sample_rate, stretch, linearity, attenuation, new_decay_low,
         new_decay_high);
}

template <class T>
void FIROrtho<T>::update(AlignedVector<DimProperties<T>>& new_dims, float new_dB_range,
                         int new_sample_rate, float stretch, float linearity, float attenuation,
                         float new_decay_low, float new_decay_high) {
  const bool room_changed = update_dim_props(new_dims, new_dB_range);
  const bool time_changed = update_time_props(new_sample_rate, stretch, linearity, attenuation);
  const bool EQ_changed = update_EQ(new_decay_low, new_decay_high);
  if (room_changed) update_Gauss_volume();
  if (room_changed || time_changed) update_FIR_time_props();
  if (!room_changed && !time_changed && !EQ_changed) return;
  update_FIR_EQ();
  update_FIR_finalize();
}

template <class T>
bool FIROrtho<T>::update_dim_props(AlignedVector<DimProperties<T>>& new_dims, float new_dB_range) {
  const bool changed = new_dims != dims || dB_range != new_dB_range;
  dB_range = new_dB_range;
  if (&new_dims != &dims) dims = new_dims;
  num_dims = static_cast<int>(dims.size());
  return changed;
}

template <class T>
bool FIROrtho<T>::update_time_props(int new_sample_rate, float stretch, float linearity,
                                    float attenuation) {
  bool changed = replace(sample_rate, new_sample_rate);
  changed |= replace(time_stretch, stretch);
  changed |= replace(time_linearity, linearity);
  changed |= replace(time_attenuation, attenuation);
  return changed;
}

template <class T>
bool FIROrtho<T>::update_EQ(float new_decay_low, float new_decay_high) {
  bool changed = replace(decay_low, new_decay_low);
  changed |= replace(decay_high, new_decay_high);
  const auto rate = static_cast<float>(sample_rate);
  FIR_2_taps_fit_ends(decay_low / rate, decay_high / rate, EQ_taps);
  return changed;
}

template <class T>
void FIROrtho<T>::update_Gauss_volume() {
  assert(num_dims > 0);
  AlignedVector<int> sizes;
  AlignedVector<int> offsets;
  AlignedVector<T> weights;
  radius = 1;
  for (const DimProperties<T>& dim : dims) {
    // The order of arguments gives a weight of 0 and an offset of half the size for values that
    // are not numbers.
    const int size = std::max(1, saturate_to_int(dim.size));
    const T offset = std::max(0.0f, std::min(static_cast<float>(size) * 0.5f, dim.offset));
    const T weight = std::max(0.0f, std::min(dim.refl / 100.0f, kMaxWeight));
    sizes.push_back(size);
    offsets.push_back(saturate_to_int(offset));
    weights.push_back(weight);
    const float reach = dB_to_radius_refl(dB_range, static_cast<float>(size), weight);
    radius = std::max(radius, saturate_to_int(std::ceil(reach)));
  }
  radius = std::min(radius, kMaxRadius);
  volume.update(num_dims, radius, sizes, offsets, weights, ComputeMode::FASTEST);
  volume.compute_C();
  // kept: text of a trace point that is switched off.
  [[maybe_unused]] const std::string text =
      "update_Gauss_volume, Radius = " + std::to_string(radius);
}

// The relation between samples and distances.
template <class T>
void FIROrtho<T>::map_time() {
  const auto rate = static_cast<float>(sample_rate);
  speed = static_cast<float>(kSpeedOfSound / static_cast<double>(time_stretch));
  dist_per_sample = speed / rate;
  const float samples = std::ceil(static_cast<float>(radius) / speed * rate);
  num_samples = std::clamp(saturate_to_int(samples), 0, kMaxSamples);
  norm_p = std::exp(static_cast<double>(time_linearity / static_cast<float>(num_dims)));
  norm_N = static_cast<double>(num_samples);
  norm_N_pow_p = std::pow(norm_N, norm_p);
}

template <class T>
void FIROrtho<T>::map_distances(int first, T* r, int n) const {
  const double scale = dist_per_sample;
  render_kernels().distances({norm_p, norm_N, scale}, first + 1.0, r, n);
  for (int i = 0; i < n; ++i) {
    if (!std::isnan(r[i])) continue;
    // Double precision throughout: N to the power p reaches 10^119.
    const double samples = p_norm_sampling_double(norm_p, norm_N, norm_N_pow_p, first + i + 1.0);
    r[i] = static_cast<float>(scale * samples);
  }
}

template <class T>
void FIROrtho<T>::map_divisors(const T* r, float g, T* divisors, int n) const {
  render_kernels().divisors(r, attenuation_exponent(num_dims, g), divisors, n);
  for (int i = 0; i < n; ++i) {
    if (std::isnan(divisors[i])) divisors[i] = attenuation_divisor_at_dist(r[i], num_dims, g);
  }
}

template <class T>
void FIROrtho<T>::update_FIR_time_props() {
  map_time();
  FIR_time.assign(static_cast<std::size_t>(num_samples), T(0));
  const auto g = static_cast<float>(std::exp(static_cast<double>(time_attenuation)));
  const T* const table = volume.C.back().data();
  SignGenerator signs(kSignSeed);
  T previous = 0;
  for (int first = 0; first < num_samples; first += kBlock) {
    const int n = std::min(kBlock, num_samples - first);
    T r[kBlock], divisors[kBlock], counts[kBlock];
    map_distances(first, r, n);
    map_divisors(r, g, divisors, n);
    // A loop of its own, so that the processor fetches many far cells at a time.
    for (int i = 0; i < n; ++i) counts[i] = table[cell_within(r[i], volume.S2)];
    T* const samples = FIR_time.data() + first;
    for (int i = 0; i < n; ++i) {
      const auto sample = std::bit_cast<std::uint32_t>((counts[i] - previous) / divisors[i]);
      // An even value flips the sign. A branch on it would be foreseen half of the time.
      samples[i] = std::bit_cast<T>(sample ^ ~signs.next() << 31);
      previous = counts[i];
    }
  }
  FIR = FIR_time;
}

template <class T>
void FIROrtho<T>::update_FIR_EQ() {
  // kept: with only one of the two above 0 the stage runs, and the response grows at that end of
  // the spectrum.
  if (decay_low > 0.0f && decay_high > 0.0f) return;
  conv_exp_2tap_recursive_pow2(FIR_time, EQ_taps[0], EQ_taps[1], FIR_EQ);
  const std::size_t size = std::min(FIR_EQ.size(), FIR_time.size());
  FIR.assign(FIR_EQ.begin(), FIR_EQ.begin() + static_cast<std::ptrdiff_t>(size));
}

template <class T>
void FIROrtho<T>::update_FIR_finalize() {
  T peak = 0;
  for (const T sample : FIR) peak = std::max(peak, std::abs(sample));
  if (peak > 1.0f) {
    const T scale = 1.0f / peak;
    for (T& sample : FIR) sample *= scale;
  }
  FIR_trim_offset = trim_FIR(FIR, kTrimThreshold, true, true);
  FIR_size = static_cast<int>(FIR.size());
}

template <class T>
int FIROrtho<T>::trim_FIR(AlignedVector<T>& x, float threshold, bool trim_front, bool trim_back) {
  const auto audible = [threshold](T sample) { return std::abs(sample) > threshold; };
  const auto begin = trim_front ? std::find_if(x.begin(), x.end(), audible) : x.begin();
  const auto end = trim_back ? std::find_if(x.rbegin(), x.rend(), audible).base() : x.end();
  const auto cut = static_cast<int>(begin - x.begin());
  if (begin >= end) {
    x.assign(1, T(1));
    return cut;
  }
  x.erase(end, x.end());
  x.erase(x.begin(), x.begin() + cut);
  if (x[0] < 0.0f) {
    for (T& sample : x) sample = -sample;
  }
  return cut;
}

template <class T>
float FIROrtho<T>::dB_to_radius_refl(float dB, float size, float refl) const {
  const double reflections =
      std::log(static_cast<double>(dB_to_mag(-dB))) / std::log(static_cast<double>(refl));
  return static_cast<float>(static_cast<double>(size) * reflections);
}

template <class T>
float FIROrtho<T>::dB_to_radius_attenuation(float dB, int /*D*/, float g) const {
  // kept: the object's dimension count counts, not the argument's, unlike in the divisor below.
  const float ratio = 1.0f / dB_to_mag(-dB) + -1.0f;
  const float exponent = 2.0f / (static_cast<float>(num_dims - 1) * g);
  return static_cast<float>(std::pow(static_cast<double>(ratio), static_cast<double>(exponent)));
}

template <class T>
float FIROrtho<T>::attenuation_divisor_at_dist(float dist, int D, float g) const {
  const float exponent = attenuation_exponent(D, g);
  // Where the time curve rounds to a distance just below 0, a power of it would be NaN. In this
  // order of arguments max keeps a NaN and both zeros as they are.
  const double from_0 = std::max(dist, 0.0f);
  return static_cast<float>(std::pow(from_0, static_cast<double>(exponent)) + 1.0);
}

template <class T>
float FIROrtho<T>::refl_at_dist(float dist, float refl, float size) const {
  const double reflections = num_refl_at_dist(dist, size);
  return static_cast<float>(std::pow(static_cast<double>(refl), reflections));
}

template <class T>
int FIROrtho<T>::num_refl_at_dist(float dist, float size) const {
  return saturate_to_int(std::floor(dist / size));
}

template <class T>
float FIROrtho<T>::p_norm_sampling(float p, float N, float N_pow_p, float k) const {
  const double x = std::pow(static_cast<double>(k), static_cast<double>(p));
  const double y = std::pow(static_cast<double>(N_pow_p) - x, static_cast<double>(1.0f / p));
  return static_cast<float>(static_cast<double>(N) - y);
}

template <class T>
double FIROrtho<T>::p_norm_sampling_double(double p, double N, double N_pow_p, double k) const {
  return N - std::pow(N_pow_p - std::pow(k, p), 1.0 / p);
}

template <class T>
float FIROrtho<T>::p_norm_sampling_inverse(float p, float N, float N_pow_p, float x) const {
  const double y = std::pow(static_cast<double>(N - x), static_cast<double>(p));
  return static_cast<float>(
      std::pow(static_cast<double>(N_pow_p) - y, static_cast<double>(1.0f / p)));
}

template class FIROrtho<float>;
