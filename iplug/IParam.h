// One automatable value of a plug-in. Tolmara uses the kinds bool, int and double with linear
// tapers, and display texts.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

enum EParamType : std::int32_t {
  kTypeNone = 0,
  kTypeBool = 1,
  kTypeInt = 2,
  kTypeEnum = 3,
  kTypeDouble = 4
};

// A value with its kind, range, taper, name and text. The host sees it as 0 to 1, the plug-in as
// the real value. The first Init decides the kind for good. No lock of its own: writers hold the
// plug-in's. Names, labels, groups and texts are cut to 31 characters.
class IParam {
 public:
  static constexpr int kTextSize = 32;  // bytes of a name, label or display text, with end mark

  void InitBool(const char* name, bool defaultVal, const char* label = "", const char* group = "");
  void InitEnum(const char* name, int defaultVal, int nEnums, const char* label = "",
                const char* group = "");
  void InitInt(const char* name, int defaultVal, int minVal, int maxVal, const char* label = "",
               const char* group = "");
  void InitDouble(const char* name, double defaultVal, double minVal, double maxVal, double step,
                  const char* label = "", const char* group = "");

  // Clamps to the range; NaN becomes the lower bound. No rounding to the step.
  void Set(double value);
  // Takes 0 to 1 through the taper; rounds to the step unless the kind is double.
  void SetNormalized(double normalized);
  // The real value, or `value`, clamped to the range, as 0 to 1.
  double GetNormalized() const { return GetNormalized(Value()); }
  double GetNormalized(double value) const;

  void SetShape(double shape);  // taper exponent above 0; 0 is ignored
  void SetDisplayText(int value, const char* text);
  void NegateDisplay(bool negate) { mNegateDisplay = negate; }
  void SetCanAutomate(bool canAutomate) { mCanAutomate = canAutomate; }

  // Writes at most kTextSize bytes to `rDisplay`: the display text of the value if asked for and
  // there, else the number.
  void GetDisplayForHost(double value, bool normalized, char* rDisplay,
                         bool withDisplayText = true) const;
  const char* GetDisplayText(int value) const;  // first entry for the value, or ""
  int GetNDisplayTexts() const { return static_cast<int>(mDisplayTexts.size()); }
  // Text of an entry in order of insertion, "" out of range; its value goes to `value` unless null.
  const char* GetDisplayTextAtIdx(int idx, int* value = nullptr) const;
  bool MapDisplayText(const char* text, int* value) const;

  const char* GetNameForHost() const { return mName; }
  const char* GetLabelForHost() const;  // "" while the value has a display text
  const char* GetParamGroupForHost() const { return mParamGroup; }
  void GetBounds(double* lo, double* hi) const;

  double Value() const {
    return std::atomic_ref<double>(const_cast<double&>(mValue)).load(std::memory_order_relaxed);
  }
  int Int() const;
  bool Bool() const { return Value() >= 0.5; }
  double DBToAmp() const;
  EParamType Type() const { return mType; }
  double GetDefault() const { return mDefault; }
  bool GetNegateDisplay() const { return mNegateDisplay; }

 private:
  struct DisplayText {
    std::int32_t mValue;
    char mText[kTextSize];
  };

  void Init(EParamType type, const char* name, const char* label, const char* group);
  void Store(double value) {
    std::atomic_ref<double>(mValue).store(value, std::memory_order_relaxed);
  }
  void SetRange(double defaultVal, double minVal, double maxVal, double step);
  double FromNormalized(double normalized) const;

  EParamType mType = kTypeNone;
  double mValue = 0.0;  // shared: the editor reads it without the lock
  double mMin = 0.0;
  double mMax = 1.0;
  double mStep = 1.0;   // grid of all kinds but double; the editor's step of those
  double mShape = 1.0;  // taper exponent
  double mDefault = 0.0;
  std::int32_t mDisplayPrecision = 0;  // decimals
  char mName[kTextSize] = {};
  char mLabel[kTextSize] = {};
  char mParamGroup[kTextSize] = {};
  bool mNegateDisplay = false;  // show the value with opposite sign
  bool mCanAutomate = true;     // read by no host call
  std::vector<DisplayText> mDisplayTexts;
};
