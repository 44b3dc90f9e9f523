// The base of everything that an editor shows. Tolmara uses values, defaults, mouse events and
// typed entry; no auxiliary parameters, clamps, keys, hiding, graying or linked texts.
#pragma once

#include <atomic>
#include <vector>

#include "graphics/IGraphicsTypes.h"

class IGraphics;
class IPlugBase;
class ITextControl;

// A rectangle of the editor with a normalised value, drawn from these two alone.
// The editor's thread runs all operations but SetValueFromPlug, SetAuxParamValueFromPlug and
// SetDirty(false), which the host's thread or a worker may call at any time: the value and the
// flags that they share lie in plain fields, reached by relaxed atomic loads and stores of the
// fields' own size through the accessors below.
class IControl {
 public:
  IControl(IPlugBase* plug, IRECT rect, int paramIdx = -1, IChannelBlend blend = IChannelBlend());
  IControl(const IControl&) = delete;
  IControl& operator=(const IControl&) = delete;
  virtual ~IControl();

  virtual void OnMouseDown(int x, int y, IMouseMod* mod);
  virtual void OnMouseUp(int x, int y, IMouseMod* mod);
  virtual void OnMouseDrag(int x, int y, int dX, int dY, IMouseMod* mod);
  virtual void OnMouseDblClick(int x, int y, IMouseMod* mod);  // back to the default value
  virtual void OnMouseWheel(int x, int y, IMouseMod* mod, int d);
  virtual bool OnKeyDown(int x, int y, int key);  // true: the key was taken
  virtual void OnMouseOver(int x, int y, IMouseMod* mod);
  virtual void OnMouseOut();
  virtual bool Draw(IGraphics* graphics) = 0;   // false: not drawn
  virtual void SetValueFromPlug(double value);  // the first value becomes the default
  virtual void TextFromTextEntry(const char* text);
  virtual void Hide(bool hide);
  virtual void GrayOut(bool gray);
  virtual bool IsHit(int x, int y);
  virtual void SetDirty(bool pushParamToPlug);  // clamps the value
  virtual void SetClean();
  virtual bool IsDirty();  // any thread
  virtual void Animate();
  virtual void SetAuxParamValueFromPlug(int auxIdx, double value);

  void SetValueFromUserInput(double value);
  void PromptUserInput();
  void PromptUserInput(IRECT* textRect);
  void AddAuxParam(int paramIdx);
  AuxParam* GetAuxParam(int idx);       // null out of range
  int AuxParamIdx(int paramIdx) const;  // -1 if absent
  void SetAllAuxParamsFromGUI();

  IPlugBase* GetPlug() const { return mPlug; }
  const IRECT& GetRECT() const { return mRECT; }
  // All that the last drawing may have painted: the rectangle and texts that stand out of it.
  IRECT GetReach() const { return mRECT.Union(mInk); }
  void SetInk(const IRECT& ink) { mInk = ink; }
  bool MaySkipFrames() const { return mMaySkipFrames; }
  // True from before a frame draws the control until the frame has cleaned it.
  void SetInFrame(bool inFrame);
  bool IsInFrame() const;
  void MarkRedraw() { Store(mRedraw, true); }  // stay dirty for one more frame
  int ParamIdx() const { return mParamIdx; }
  double GetValue() const { return Load(mValue); }
  double GetDefaultValue() const { return Load(mDefaultValue); }
  double GetClampLo() const { return Load(mClampLo); }
  double GetClampHi() const { return Load(mClampHi); }
  void SetClamp(double lo, double hi) { Store(mClampLo, lo), Store(mClampHi, hi); }
  IText& GetText() { return mText; }
  const IText& GetText() const { return mText; }
  int GetTextEntryLength() const { return mTextEntryLength; }
  bool IsHidden() const { return mHide; }
  bool IsGrayed() const { return mGrayed; }
  bool DisablesPrompt() const { return mDisablePrompt; }
  void DisablePrompt(bool disable) { mDisablePrompt = disable; }
  bool DblAsSingleClick() const { return mDblAsSingleClick; }
  bool MouseOverWhenGrayed() const { return mMOWhenGrayed; }

 protected:
  template <class T>
  static T Load(const T& field) {
    return std::atomic_ref<T>(const_cast<T&>(field)).load(std::memory_order_relaxed);
  }
  template <class T>
  static void Store(T& field, T value) {
    std::atomic_ref<T>(field).store(value, std::memory_order_relaxed);
  }

  void SetValue(double value) { Store(mValue, value); }
  bool GetDirtyFlag() const { return Load(mDirty); }
  void MarkDirty();  // mDirty alone: no clamp, no push
  // What the parameter shows, with its texts; "" without one. `text` holds IParam::kTextSize.
  void GetParamDisplay(char* text) const;

  int mTextEntryLength = 7;  // limit of typed entry, in characters
  IText mText;
  IPlugBase* mPlug;                       // not owned
  IRECT mRECT;                            // drawing area
  IRECT mTargetRECT;                      // hit area
  int mParamIdx;                          // -1 for none
  std::vector<AuxParam> mAuxParams;       // further parameters
  double mValue = 0.0;                    // normalised; shared between threads
  double mDefaultValue = -1.0;            // negative: not known yet; shared between threads
  double mClampLo = 0.0, mClampHi = 1.0;  // bounds that SetDirty applies
  bool mDirty = true;                     // needs drawing; shared between threads
  bool mHide = false;
  bool mGrayed = false;
  bool mRedraw = false;            // dirty for one more frame; shared between threads
  bool mDisablePrompt = true;      // no typed entry
  bool mDblAsSingleClick = false;  // a double click counts as a press
  bool mMOWhenGrayed = false;      // mouse-over reaches it while grayed
  IChannelBlend mBlend;
  ITextControl* mValDisplayControl = nullptr;   // shows the parameter's value; not owned
  ITextControl* mNameDisplayControl = nullptr;  // shows the parameter's name; not owned
  IRECT mInk;                                   // texts of the last drawing; kept by IGraphics
  bool mMaySkipFrames = false;                  // where Draw answers false, the last picture stays
  bool mInFrame = false;                        // being drawn; shared between threads
};
