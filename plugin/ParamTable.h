// The parameter table: ids, names, kinds and ranges. Ids are fixed for ever, since presets, saved
// state and the host's automation index by them.
#pragma once

#include <array>

constexpr int kNumParams = 46;
constexpr int kNumDims = 5;

enum ParamId {
  kTimeDelay = 0,
  kTimeStretch = 1,
  kTimeLinearity = 2,
  kPan = 3,
  kStereoHaas = 4,
  kMix = 5,
  kGain = 6,
  kStereoMidSide = 7,
  kStereoLeftRightPhase = 8,
  kHighDecay = 9,
  kLowDecay = 10,
  kFirstDim = 11,  // five groups of four, see DimParam
  kDummyVar = 31,
  kLowCutFreq = 32,
  kLowCutQuality = 33,
  kReversePercent = 34,
  kTimeT0Percent = 35,
  kTimeAttenuation = 36,
  kRenderMode = 37,
  kNormalizationMode = 38,
  kMaxFFTPow = 39,
  kFirstFutureParam = 40,
};

// Place of a setting within its dimension's group.
enum DimField { kDimEnabled = 0, kDimSize = 1, kDimDepth = 2, kDimRefl = 3, kNumDimFields = 4 };

constexpr int DimParam(int d, DimField field) { return kFirstDim + kNumDimFields * d + field; }

enum class ParamKind { Bool, Int, Double };

struct ParamSpec {
  char name[32];
  ParamKind kind;
  double defaultValue;
  double min;
  double max;
  double step;  // Double only; whole numbers step by 1
  char label[32];
};

namespace param_table {

constexpr ParamSpec Numbered(ParamSpec spec, int digit) {
  int end = 0;
  while (spec.name[end] != '\0') ++end;
  spec.name[end] = static_cast<char>('0' + digit);
  return spec;
}

constexpr ParamSpec DimSpec(int d, int field) {
  switch (field) {
    case kDimEnabled:
      return Numbered(
          {"Dimension ", ParamKind::Bool, d < 3 ? 1.0 : 0.0, 0, 1, 1, "Enable dimension"}, d);
    case kDimSize: return Numbered({"Size ", ParamKind::Int, 10.0 + d, 3, 15, 1, "Meters"}, d);
    case kDimDepth:
      return Numbered({"Depth ", ParamKind::Int, 5.0 + 3 * d, 0, 50, 1, "Percent"}, d);
    default: return Numbered({"Refl. ", ParamKind::Double, -0.5, -6, -0.1, 0.01, "dB"}, d);
  }
}

constexpr std::array<ParamSpec, kNumParams> Make() {
  using enum ParamKind;
  std::array<ParamSpec, kNumParams> t{};
  t[kTimeDelay] = {"Time Delay", Int, 0, 0, 1000, 1, "ms"};
  t[kTimeStretch] = {"Time Stretch", Double, 1, 0.25, 4, 0.01, "x"};
  t[kTimeLinearity] = {"Time Linearity", Double, 0, -3, 3, 0.01, "p"};
  t[kPan] = {"Pan", Double, 0, -30, 30, 1, "dB"};
  t[kStereoHaas] = {"Stereo Haas", Int, 0, -50, 50, 1, "ms"};
  t[kMix] = {"Mix", Double, 1, 0, 1, 0.01, "fraction"};
  t[kGain] = {"Gain", Double, 0, -60, 60, 1, "dB"};
  t[kStereoMidSide] = {"Stereo Mid/Side", Double, 0, -1, 1, 0.01, "width"};
  t[kStereoLeftRightPhase] = {"Stereo Left/Right phase", Double, 0, -1, 1, 0.01, "offset"};
  t[kHighDecay] = {"High Decay", Double, 120, 0, 720, 1, "dB/sec"};
  t[kLowDecay] = {"Low Decay", Double, 12, 0, 120, 1, "dB/sec"};
  for (int d = 0; d < kNumDims; ++d) {
    for (int field = 0; field < kNumDimFields; ++field) {
      t[static_cast<unsigned>(DimParam(d, static_cast<DimField>(field)))] = DimSpec(d, field);
    }
  }
  t[kDummyVar] = {"Dummy var", Double, 0, 0, 1, 0.1, "none"};
  t[kLowCutFreq] = {"Low Cut Freq.", Int, 0, 0, 1000, 1, "Hz"};
  t[kLowCutQuality] = {"Low Cut Quality", Int, 25, 0, 100, 1, "Q"};
  t[kReversePercent] = {"Reverse Percent", Double, 0, 0, 100, 0.1, "%"};
  t[kTimeT0Percent] = {"Time T0 Percent", Double, 0, 0, 99.9, 0.1, "%"};
  t[kTimeAttenuation] = {"Time Attenuation", Double, 0, -1, 1, 0.01, "g"};
  t[kRenderMode] = {"Render Mode", Int, 1, 0, 1, 1, "Method"};
  // kept: hosts and presets know the label in this spelling
  t[kNormalizationMode] = {"Normization Mode", Int, 1, 0, 1, 1, "Method"};
  t[kMaxFFTPow] = {"Max FFT Pow", Int, 4, 0, 12, 1, "Power"};
  for (unsigned id = kFirstFutureParam; id < kNumParams; ++id) {
    // kept: the six reserved slots bear one name; they hold room in every preset
    t[id] = {"Future Param 0", Double, 0, 0, 1, 0.1, "none"};
  }
  return t;
}

}  // namespace param_table

inline constexpr std::array<ParamSpec, kNumParams> kParamTable = param_table::Make();
