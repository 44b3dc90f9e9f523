// The tuning of the product: small rooms, halls, plates (two dimensions), echoes (one), churches
// and cathedrals (three and four) and rooms of five dimensions, which no physical room has.
#include "plugin/FactoryPresets.h"

#include <cstddef>

namespace {

// One dimension of a preset; off keeps its settings at the parameters' defaults.
struct Dim {
  bool on;
  double size, depth, refl;
};
constexpr Dim off = {false, 0, 0, 0};
constexpr Dim dim(double size, double depth, double refl) { return {true, size, depth, refl}; }

struct FactoryPreset {
  const char* name;
  double stretch, linearity, attenuation, highDecay, lowDecay;
  Dim dims[kNumDims];
};

// clang-format off
constexpr FactoryPreset kFactoryPresets[kNumPresets] = {
  {"Default",              1,    0,     0,    120, 12, {dim(10, 5, -0.5),  dim(11, 8, -0.5),  dim(12, 11, -0.5), off, off}},
  {"Medium-room",          1,    0,     0,    120, 12, {dim(10, 5, -1),    dim(8, 8, -1.57),  dim(12, 11, -2.07), off, off}},
  {"Medium-room-slapback", 1,    0.96, -0.22, 120, 12, {dim(10, 5, -1),    dim(7, 8, -1.57),  dim(5, 11, -2.07), off, off}},
  {"Hall",                 2.5,  0,     0,    83,  7,  {dim(8, 0, -0.72),  dim(11, 4, -1.4),  dim(15, 8, -2), off, off}},
  {"Hall-long-flutter",    3,    0,     0,    83,  7,  {dim(6, 0, -3.8),   dim(8, 4, -4.5),   dim(15, 12, -0.1), off, off}},
  {"Hall-large",           2,    0,     0,    120, 12, {dim(10, 5, -0.25), dim(11, 8, -0.25), dim(12, 11, -0.25), off, off}},
  {"Hall-grand",           3,    0,     0,    230, 6,  {dim(13, 5, -0.25), dim(11, 8, -0.25), dim(12, 11, -0.25), off, off}},
  {"Plate-small",          1,    0,     0,    120, 12, {dim(5, 0, -0.5),   dim(6, 0, -0.5),   off, off, off}},
  {"Plate-quick",          1,   -0.48,  0,    120, 12, {dim(13, 26, -0.9), dim(11, 26, -0.9), off, off, off}},
  {"Plate-long",           1,    0,     0,    120, 12, {dim(15, 0, -0.1),  dim(5, 0, -0.1),   off, off, off}},
  {"Plate-bright",         1,    0,     0,    0,   12, {dim(13, 22, -0.1), dim(11, 29, -0.5), off, off, off}},
  {"Plate-bent",           1,   -0.36, -0.26, 465, 21, {dim(13, 0, -2.23), dim(8, 0, -0.5),   off, off, off}},
  {"Echo",                 4,    0,     0,    120, 12, {dim(10, 0, -0.1),  off, off, off, off}},
  {"Echo-bent",            4,   -0.48,  0,    120, 12, {dim(10, 17, -0.1), off, off, off, off}},
  {"Echo-accel",           1,    0.04,  0,    120, 12, {dim(8, 3, -0.1),   off, off, off, off}},
  {"Church",               3,    0,     0,    458, 4,  {dim(15, 24, -0.5),  dim(13, 17, -0.5),  dim(12, 11, -0.5), off, off}},
  {"Cathedral",            4,    0,     0,    458, 4,  {dim(15, 24, -0.15), dim(13, 17, -0.46), dim(12, 11, -0.72), dim(11, 6, -0.18), off}},
  {"Cathedral-moon",       4,    0,    -0.1,  45,  4,  {dim(15, 24, -0.15), dim(13, 17, -0.46), dim(12, 11, -0.72), dim(11, 6, -0.18), off}},
  {"Cathedral-cosmic",     4,    0.78, -0.1,  30,  4,  {dim(15, 24, -0.15), dim(13, 29, -0.46), dim(12, 34, -0.72), dim(11, 40, -0.18), off}},
  {"X-zone",               1,    0,     0,    120, 12, {dim(11, 0, -0.5),  dim(10, 0, -0.5),  dim(9, 0, -0.5),   dim(7, 0, -0.5),   dim(6, 0, -0.5)}},
  {"X-zone-curt",          1,    0,     0,    120, 12, {dim(12, 0, -0.1),  dim(10, 0, -0.5),  dim(8, 0, -1),     dim(6, 0, -1.5),   dim(4, 0, -2)}},
  {"X-zone-long",          1,    0,     0,    120, 4,  {dim(7, 0, -0.1),   dim(9, 0, -0.5),   dim(11, 0, -1),    dim(13, 0, -1.5),  dim(15, 0, -2)}},
  {"Y-zone",               1,    0,     0,    559, 4,  {dim(10, 5, -0.5),  dim(11, 8, -0.5),  dim(12, 11, -0.5), dim(13, 14, -0.5), dim(14, 17, -0.5)}},
  {"Y-zone-swell",         1,   -0.6,  -0.3,  559, 4,  {dim(10, 5, -0.1),  dim(11, 8, -0.2),  dim(12, 11, -0.4), dim(13, 14, -0.8), dim(14, 17, -1)}},
  {"Y-zone-scape",         2,    1.52, -0.16, 559, 4,  {dim(10, 5, -0.5),  dim(11, 8, -0.5),  dim(12, 11, -0.5), dim(13, 14, -0.5), dim(14, 17, -0.5)}},
  {"Z-zone",               3,    0,     0,    44,  7,  {dim(10, 40, -0.5), dim(11, 35, -0.5), dim(12, 30, -0.5), dim(13, 35, -0.5), dim(14, 40, -0.5)}},
  {"Z-zone-mad",           3,   -1.44, -0.22, 44,  7,  {dim(10, 40, -0.5), dim(11, 35, -0.5), dim(12, 30, -0.5), dim(13, 35, -0.5), dim(14, 40, -0.5)}},
  {"Z-zone-distant",       3,    1.08,  0,    44,  7,  {dim(10, 40, -0.1), dim(11, 35, -0.1), dim(12, 30, -0.1), dim(13, 35, -0.1), dim(14, 40, -0.1)}},
};
// clang-format on

}  // namespace

std::array<double, kNumParams> FactoryPresetValues(int slot) {
  const FactoryPreset& preset = kFactoryPresets[slot];
  std::array<double, kNumParams> values{};
  for (std::size_t id = 0; id < values.size(); ++id) values[id] = kParamTable[id].defaultValue;
  values[kTimeStretch] = preset.stretch;
  values[kTimeLinearity] = preset.linearity;
  values[kTimeAttenuation] = preset.attenuation;
  values[kHighDecay] = preset.highDecay;
  values[kLowDecay] = preset.lowDecay;
  for (int d = 0; d < kNumDims; ++d) {
    const Dim& settings = preset.dims[d];
    double* group = values.data() + DimParam(d, kDimEnabled);
    group[kDimEnabled] = settings.on ? 1.0 : 0.0;
    if (!settings.on) continue;
    group[kDimSize] = settings.size;
    group[kDimDepth] = settings.depth;
    group[kDimRefl] = settings.refl;
  }
  return values;
}

const char* FactoryPresetName(int slot) { return kFactoryPresets[slot].name; }
