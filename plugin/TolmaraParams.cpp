// Definition of the parameters, and the one place where a changed parameter reaches the DSP.
#include <atomic>
#include <cmath>

#include "numeric/Convert.h"
#include "plugin/DefineParam.h"
#include "plugin/FactoryPresets.h"
#include "plugin/Tolmara.h"

namespace {

constexpr int kTapsPerQuality = 10;  // taps of the low-cut filter per step of its quality

// Stores a new value; true if it differs from the old one. A float that is not a number counts as
// a change.
template <class T>
bool Assign(T& field, T value) {
  const bool changed = field != value;
  field = value;
  return changed;
}

int LowCutTaps(int quality) {
  return saturate_to_int(static_cast<double>(quality) * kTapsPerQuality);
}

bool IsOn(double value) { return value != 0.0; }  // also true for a value that is not a number

}  // namespace

void Tolmara::DefineParam(int id) {
  if (IParam* param = GetParam(id)) ::DefineParam(param, kParamTable[static_cast<size_t>(id)]);
}

void Tolmara::MakeFactoryPresets() {
  for (int slot = 0; slot < kNumPresets; ++slot) {
    MakePresetFromValues(FactoryPresetName(slot), FactoryPresetValues(slot).data());
  }
  MakeDefaultPreset("Default", kNumPresets);  // fills what a longer bank would leave empty
}

void Tolmara::CopyParams() {
  mDims.resize(kNumDims);
  for (int id = 0; id < NParams(); ++id) StoreParam(id);
}

void Tolmara::OnParamChange(int paramIdx) {
  const PlugLock::Guard lock(mLock);
  if (StoreParam(paramIdx)) mFirDirty = true;
}

bool Tolmara::StoreParam(int id) {
  const double v = GetParam(id)->Value();
  const int i = saturate_to_int(v);
  const float f = static_cast<float>(v);
  const bool b = IsOn(v);
  switch (id) {
    case kTimeDelay: mTimeDelay = i; return false;
    case kTimeStretch: return Assign(mTimeStretch, f);
    case kTimeLinearity: return Assign(mTimeLinearity, f);
    case kPan: mPan = f; return false;
    case kStereoHaas: mStereoHaas = i; return false;
    case kMix: mMix = f; return false;
    case kGain: mGain = f; return false;
    case kStereoMidSide: mStereoMidSide = f; return false;
    case kStereoLeftRightPhase: mStereoLeftRightPhase = f; return false;
    case kHighDecay: return Assign(mHighDecay, f);
    case kLowDecay: return Assign(mLowDecay, f);
    case kLowCutFreq: return Assign(mLowCutFreq, i);
    case kLowCutQuality: return Assign(mLowCutTaps, LowCutTaps(i));
    case kReversePercent: {
      const bool changed = mReversePercent != f;
      std::atomic_ref(mReversePercent).store(f, std::memory_order_relaxed);
      return changed;
    }
    case kTimeT0Percent: return Assign(mTimeT0Percent, f);
    case kTimeAttenuation: return Assign(mTimeAttenuation, f);
    // kept: the mode changes how a response is rendered but not the response, so it acts at the
    // next render that something else asks for
    case kRenderMode: mRenderFast = b; return false;
    case kNormalizationMode: return Assign(mNormalizeRMS, b);
    case kMaxFFTPow: return Assign(mMaxFFTPow, i);
    default: return StoreDimParam(id, i, f, b);
  }
}

bool Tolmara::StoreDimParam(int id, int i, float f, bool b) {
  if (id < kFirstDim || id >= DimParam(kNumDims, kDimEnabled)) return false;
  DimSetting& dim = mDims[static_cast<size_t>((id - kFirstDim) / kNumDimFields)];
  // The settings of a dimension that is off can't change the room; its switch will.
  switch ((id - kFirstDim) % kNumDimFields) {
    case kDimEnabled: return Assign(dim.enabled, b);
    case kDimSize: return Assign(dim.size, i) && dim.enabled;
    case kDimDepth: return Assign(dim.depth, i) && dim.enabled;
    default: return Assign(dim.reflection, f) && dim.enabled;
  }
}
