#include "checks/sweep/Invariants.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <limits>
#include <span>

#include "checks/sweep/DecayReference.h"
#include "dsp/FIRFunctions.h"

namespace {

using Samples = std::span<const float>;

#if defined(__OPTIMIZE__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
constexpr bool kIsOptimised = true;
#else
constexpr bool kIsOptimised = false;
#endif
constexpr float kInaudible = 1.001e-6f;  // -120 dB, and some rounding
constexpr double kTiny = 1e-9;           // far below what the response is trimmed at

double ValueOf(const Case& settings, int id) { return settings.values.at(static_cast<size_t>(id)); }

__attribute__((format(printf, 1, 2))) std::string Text(const char* format, ...) {
  char text[256];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  return text;
}

float PeakOf(Samples x) {
  float peak = 0;
  for (const float sample : x) peak = std::max(peak, std::abs(sample));
  return peak;
}

// The part of the decayed signal that the response is made of.
Samples DecayedOf(const FIROrtho<float>& stages) {
  const size_t count = std::min(stages.FIR_EQ.size(), stages.FIR_time.size());
  return Samples(stages.FIR_EQ).first(count);
}

size_t AudibleIn(Samples decayed) {
  const float threshold = kInaudible * std::max(1.0f, PeakOf(decayed));
  return static_cast<size_t>(std::count_if(
      decayed.begin(), decayed.end(), [threshold](float x) { return std::abs(x) > threshold; }));
}

void CheckFinite(const char* stage, Samples x, Findings& findings) {
  const auto bad = std::find_if(x.begin(), x.end(), [](float v) { return !std::isfinite(v); });
  if (bad == x.end()) return;
  findings.push_back(
      {"finite", Text("%s is %g at %td of %zu", stage, double{*bad}, bad - x.begin(), x.size())});
}

// The sample at which the time curve reaches a cell of the table, the square of a distance.
double SampleOf(double cell, const FIROrtho<float>& stages) {
  const double distance = std::sqrt(std::max(cell - 1, 0.0)) / double{stages.dist_per_sample};
  const double rest = std::pow(std::max(stages.norm_N - distance, 0.0), stages.norm_p);
  return std::floor(std::pow(stages.norm_N_pow_p - rest, 1 / stages.norm_p));
}

// The first cell of the table that counts at least `count`.
double CellOf(float count, const FIROrtho<float>& stages) {
  int first = 0, last = stages.radius * stages.radius;
  while (first < last) {
    const int middle = first + (last - first) / 2;
    if (stages.volume.getC(stages.num_dims - 1, middle) >= count) {
      last = middle;
    } else {
      first = middle + 1;
    }
  }
  return first;
}

// Whether the nearest and the farthest image lie in samples of their own.
bool SpreadsOut(const FIROrtho<float>& stages) {
  const float all = stages.volume.getC(stages.num_dims - 1, stages.radius * stages.radius);
  const double nearest = CellOf(std::numeric_limits<float>::denorm_min(), stages);
  return SampleOf(CellOf(all, stages), stages) > SampleOf(nearest, stages) + 1;
}

std::ptrdiff_t ArrivalsIn(const FIROrtho<float>& stages) {
  return std::count_if(stages.FIR_time.begin(), stages.FIR_time.end(),
                       [](float x) { return x != 0.0f; });
}

void CheckLength(const Case& settings, Samples h, const FIROrtho<float>& stages,
                 Findings& findings) {
  const auto arrivals = ArrivalsIn(stages);
  if (arrivals < 1 || (arrivals < 2 && SpreadsOut(stages))) {
    findings.push_back(
        {"arrivals", Text("%td samples of %zu hold any", arrivals, stages.FIR_time.size())});
  }
  const size_t audible = AudibleIn(DecayedOf(stages));
  const bool isCut = ValueOf(settings, kTimeT0Percent) > 0;
  if ((stages.FIR.size() == 1 && audible > 1) || (h.size() < 2 && audible > 1 && !isCut)) {
    findings.push_back({"vanished", Text("%zu samples, %zu as synthesised, but %zu are audible",
                                         h.size(), stages.FIR.size(), audible)});
  }
  const double most = 20.0 * settings.rate + 10 * ValueOf(settings, kLowCutQuality);
  if (static_cast<double>(h.size()) > most) {
    findings.push_back({"length", Text("%zu samples", h.size())});
  }
}

void CheckLevel(const Case& settings, Samples h, const FIROrtho<float>& stages,
                Findings& findings) {
  const float synthesised = PeakOf(stages.FIR);
  if (synthesised > 1.0f) {
    findings.push_back({"peak", Text("%.9g as synthesised", double{synthesised})});
  }
  double most = 1;
  const double freq = ValueOf(settings, kLowCutFreq);
  const int taps = static_cast<int>(10 * ValueOf(settings, kLowCutQuality));
  if (freq >= 1 && settings.rate / 2 >= freq && taps >= 1) {
    AlignedVector<float> kernel;
    filter_lowcut_sinc_Hann(kernel, static_cast<float>(freq / settings.rate), taps);
    double sum = 0;
    for (const float tap : kernel) sum += std::abs(double{tap});
    most = std::max(most, sum);
  }
  const double peak = double{PeakOf(h)};
  if (peak > most * (1 + 1e-5)) findings.push_back({"peak", Text("%.9g above %g", peak, most)});

  if (ValueOf(settings, kNormalizationMode) == 0) return;
  double energy = 0;
  for (const float x : h) energy += double{x} * double{x};
  // Each addition to a single-precision sum near 1 rounds by half of 2^-23 at most.
  if (energy > 1 + 0x1p-24 * static_cast<double>(h.size())) {
    findings.push_back({"energy", Text("%.9g in %zu samples", energy, h.size())});
  }
}

double RmsOf(Samples x) {
  double energy = 0;
  for (const float sample : x) energy += double{sample} * double{sample};
  return std::sqrt(energy / static_cast<double>(std::max(x.size(), size_t{1})));
}

// The taps' spectrum is single precision, and a power of it takes as many passes as samples: each
// bin's gain at sample m is off by some m * 2^-24 of itself. Transforms spread that error over as
// many samples as they take at a time.
void CheckDecay(const Case& settings, const FIROrtho<float>& stages, Findings& findings) {
  constexpr size_t kSections = 12;
  const Samples before = stages.FIR_time;
  const Samples after = DecayedOf(stages);
  const DecayTaps taps(-ValueOf(settings, kLowDecay), -ValueOf(settings, kHighDecay),
                       settings.rate);
  for (size_t section = 0; section < kSections; ++section) {
    const Samples part =
        before.subspan(section * before.size() / kSections, before.size() / kSections);
    const auto largest = std::max_element(
        part.begin(), part.end(), [](float x, float y) { return std::abs(x) < std::abs(y); });
    if (largest == part.end()) continue;
    const auto m = static_cast<size_t>(&*largest - before.data());
    const double expected = DecayedAt(stages.FIR_time, m, taps);
    const double passes = static_cast<double>(m) + 1;
    const double loud =
        double{std::abs(*largest)} +
        std::max(RmsOf(before.subspan(m / 4)),
                 RmsOf(before.subspan(m / 4, std::min(before.size(), 2 * m + 2) - m / 4)));
    const double gain = std::pow(std::max(taps.low, taps.high), passes);
    const double limit = loud * gain * (1e-5 + passes * 0x1p-23) + kTiny;
    const double difference = std::abs(double{after[m]} - expected);
    if (difference <= limit) continue;
    findings.push_back({"decay", Text("sample %zu of %zu is %.9g, not %.9g", m, before.size(),
                                      double{after[m]}, expected)});
    return;
  }
}

}  // namespace

void CheckResponse(const Case& settings, const Rendered& rendered, const FIROrtho<float>& stages,
                   Findings& findings) {
  const size_t before = findings.size();
  CheckFinite("the signal before the decay", stages.FIR_time, findings);
  CheckFinite("the decayed signal", DecayedOf(stages), findings);
  CheckFinite("the response", rendered.response, findings);
  if (findings.size() > before) return;
  CheckLength(settings, rendered.response, stages, findings);
  CheckLevel(settings, rendered.response, stages, findings);
  CheckDecay(settings, stages, findings);
}

void CheckSame(const Rendered& kept, const Rendered& anew, Findings& findings) {
  const AlignedVector<float>&a = kept.response, &b = anew.response;
  if (a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0)
    return;
  const auto at = std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin();
  findings.push_back(
      {"same", Text("%zu samples against %zu, other values from %td on", a.size(), b.size(), at)});
}

bool IsOneSample(const FIROrtho<float>& stages) {
  return ArrivalsIn(stages) == 1 || stages.FIR.size() == 1;
}

// Ten times the time and a quarter more memory than the largest rooms were seen to take.
void CheckCost(const Case& settings, const Rendered& rendered, const FIROrtho<float>& stages,
               Findings& findings) {
  const double samples = stages.num_samples;
  const double cells = double(stages.radius) * stages.radius;
  const double taps = 10 * ValueOf(settings, kLowCutQuality);
  const double mostSeconds = 1 + 1e-6 * cells + samples * (5e-6 + 2e-9 * taps);
  if (kIsOptimised && rendered.seconds > mostSeconds) {
    findings.push_back({"cost", Text("%.1f s, not %.1f", rendered.seconds, mostSeconds)});
  }
  const double padded = std::exp2(std::ceil(std::log2(samples)));
  const double mostMegabytes = 16 + (4 * stages.num_dims * cells + 96 * padded) * 1e-6;
  if (kIsOptimised && rendered.megabytes > mostMegabytes) {
    findings.push_back({"cost", Text("%.0f MB, not %.0f", rendered.megabytes, mostMegabytes)});
  }
}
