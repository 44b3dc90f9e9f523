// Range, taper and text of a parameter.
#include "iplug/IParam.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "iplug/Numbers.h"

namespace {

bool IsWhole(double x) { return std::floor(x) == x; }

// Decimals that show every multiple of the step. The rounding of each product counts.
int PrecisionOfStep(double step) {
  int decimals = 0;
  for (double x = step; !IsWhole(x) && decimals < 6; ++decimals) x *= 10.0;
  return decimals;
}

// The order of the arguments makes NaN the lower bound.
double Clamp(double value, double lo, double hi) { return std::max(lo, std::min(value, hi)); }

}  // namespace

void IParam::Init(EParamType type, const char* name, const char* label, const char* group) {
  if (mType == kTypeNone) mType = type;
  CopyText(mName, name);
  CopyText(mLabel, label);
  CopyText(mParamGroup, group);
  mDisplayPrecision = 0;
}

void IParam::SetRange(double defaultVal, double minVal, double maxVal, double step) {
  mMin = minVal;
  mMax = std::max(minVal + step, maxVal);
  mStep = step;
  mDefault = defaultVal;
  Store(defaultVal);
}

void IParam::InitBool(const char* name, bool defaultVal, const char* label, const char* group) {
  Init(kTypeBool, name, label, group);
  SetRange(defaultVal ? 1.0 : 0.0, 0.0, 1.0, 1.0);
  SetDisplayText(0, "off");
  SetDisplayText(1, "on");
}

void IParam::InitEnum(const char* name, int defaultVal, int nEnums, const char* label,
                      const char* group) {
  Init(kTypeEnum, name, label, group);
  SetRange(defaultVal, 0.0, nEnums - 1.0, 1.0);
}

void IParam::InitInt(const char* name, int defaultVal, int minVal, int maxVal, const char* label,
                     const char* group) {
  Init(kTypeInt, name, label, group);
  SetRange(defaultVal, minVal, maxVal, 1.0);
}

void IParam::InitDouble(const char* name, double defaultVal, double minVal, double maxVal,
                        double step, const char* label, const char* group) {
  Init(kTypeDouble, name, label, group);
  SetRange(defaultVal, minVal, maxVal, step);
  mDisplayPrecision = PrecisionOfStep(step);
}

void IParam::Set(double value) { Store(Clamp(value, mMin, mMax)); }

double IParam::FromNormalized(double normalized) const {
  return (mMax - mMin) * std::pow(normalized, mShape) + mMin;
}

void IParam::SetNormalized(double normalized) {
  double v = FromNormalized(normalized);
  if (mType != kTypeDouble) v = std::floor(v / mStep + 0.5) * mStep;
  // kept: no lower clamp, because a saved session may hold a value that a host sent from below 0,
  // and it must sound the same. NaN becomes the lower bound and so is never stored.
  Store(std::isnan(v) ? mMin : std::min(v, mMax));
}

double IParam::GetNormalized(double value) const {
  return std::pow((Clamp(value, mMin, mMax) - mMin) / (mMax - mMin), 1.0 / mShape);
}

void IParam::SetShape(double shape) {
  if (shape != 0.0) mShape = shape;
}

void IParam::SetDisplayText(int value, const char* text) {
  DisplayText& entry = mDisplayTexts.emplace_back();
  entry.mValue = value;
  CopyText(entry.mText, text);
}

void IParam::GetDisplayForHost(double value, bool normalized, char* rDisplay,
                               bool withDisplayText) const {
  if (normalized) value = FromNormalized(value);
  if (withDisplayText) {
    const char* text = GetDisplayText(SaturateToInt(value));
    if (*text) {
      CopyText(rDisplay, kTextSize, text);
      return;
    }
  }
  if (mNegateDisplay) value = -value;
  // kept: without decimals the value is truncated, although SetNormalized rounds. Hosts store these
  // texts and look values up by them.
  if (mDisplayPrecision == 0) value = SaturateToInt(value);
  FixedText(rDisplay, kTextSize, value, mDisplayPrecision);
}

const char* IParam::GetDisplayText(int value) const {
  for (const DisplayText& entry : mDisplayTexts) {
    if (entry.mValue == value) return entry.mText;
  }
  return "";
}

const char* IParam::GetDisplayTextAtIdx(int idx, int* value) const {
  if (idx < 0 || idx >= GetNDisplayTexts()) return "";
  const DisplayText& entry = mDisplayTexts[static_cast<std::size_t>(idx)];
  if (value) *value = entry.mValue;
  return entry.mText;
}

bool IParam::MapDisplayText(const char* text, int* value) const {
  for (const DisplayText& entry : mDisplayTexts) {
    if (std::strcmp(entry.mText, text) == 0) {
      *value = entry.mValue;
      return true;
    }
  }
  return false;
}

const char* IParam::GetLabelForHost() const { return *GetDisplayText(Int()) ? "" : mLabel; }

void IParam::GetBounds(double* lo, double* hi) const {
  *lo = mMin;
  *hi = mMax;
}

int IParam::Int() const { return SaturateToInt(Value()); }

double IParam::DBToAmp() const { return std::exp(Value() * 0.1151292546497); }
