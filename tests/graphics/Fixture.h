// A plug-in and an editor that record what reaches them, and pixels to draw with.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "graphics/IGraphicsOffscreen.h"
#include "graphics/lice/LICE.h"
#include "iplug/vst2/IPlugVST.h"

using Calls = std::vector<std::string>;

constexpr uint32_t kRed = kColorRed.Pixel();
constexpr uint32_t kGreen = kColorGreen.Pixel();
constexpr uint32_t kBlue = kColorBlue.Pixel();

enum EEditedParam {
  kLevel,    // double 0 to 1, default 0.25, two decimals, "dB"
  kCount,    // int 0 to 10, default 4
  kColour,   // enum "red", "green", "blue", default 1
  kOnOff,    // bool
  kNegated,  // double 0 to 12, shown with opposite sign
  kNumEditedParams
};

// Writes down each call as words: "begin 0", "set 0 0.500", "changed 0", "end 0".
class EditedPlug : public IPlugVST {
 public:
  EditedPlug();
  void OnParamChange(int idx) override { Note("changed", idx); }
  void BeginInformHostOfParamChange(int idx) override { Note("begin", idx); }
  void InformHostOfParamChange(int idx, double normalizedValue) override;
  void EndInformHostOfParamChange(int idx) override { Note("end", idx); }
  void ResizeGraphics() override { calls.push_back("resized"); }

  Calls TakeCalls() { return std::exchange(calls, {}); }

 private:
  void Note(const char* what, int idx) {
    calls.push_back(std::string(what) + " " + std::to_string(idx));
  }

  Calls calls;
};

// An editor whose user is a set of functions.
class TestGraphics : public IGraphicsOffscreen {
 public:
  TestGraphics(IPlugBase* plug, int w, int h) : IGraphicsOffscreen(plug, w, h, 0) {}
  bool DrawScreen(IRECT*) override { return ++screens > 0; }
  bool DrawIText(IText* text, const char* str, IRECT* rect) override;
  IPopupMenu* CreateIPopupMenu(IPopupMenu* menu, IRECT* rect) override;
  void CreateTextEntry(IControl* control, IText* text, IRECT* rect, const char* str,
                       IParam* param) override;
  void PromptForFile(HeapString* file, int, HeapString*, const char*) override;
  bool OpenURL(const char* url, const char*) override;

  // Draws what is dirty, as the window's timer does. False when nothing was.
  bool Tick();
  void DrawEverything();
  std::vector<uint32_t> Pixels() const { return {GetBits(), GetBits() + Width() * Height()}; }
  uint32_t PixelAt(int x, int y) const { return LICE_GetPixel(GetDrawBitmap(), x, y); }
  // The smallest rectangle over the pixels of a colour, and how many they are.
  IRECT BoundsOf(uint32_t pixel) const;
  int CountOf(uint32_t pixel) const;

  int screens = 0;  // how often the canvas went to the screen
  std::function<IPopupMenu*(IPopupMenu*)> chooseItem;
  std::string lastText;  // drawn last, its style and where
  IText lastStyle;
  IRECT lastTextRect;
  IRECT lastRect;         // of the last menu or field
  std::string fieldText;  // what the last field opened with
  std::string typedText;  // what the user makes of it; "" to leave it
  Calls urls;             // all that were asked for
  bool opensURLs = false;
  std::string chosenFile;
};

// A control that records its events and fills its rectangle with a colour.
class ProbeControl : public IControl {
 public:
  ProbeControl(IPlugBase* plug, IRECT rect, int paramIdx = -1, IColor color = kColorRed)
      : IControl(plug, rect, paramIdx), mColor(color) {}
  void OnMouseDown(int x, int y, IMouseMod*) override { Note("down", x, y); }
  void OnMouseUp(int x, int y, IMouseMod*) override { Note("up", x, y); }
  void OnMouseDrag(int, int, int dX, int dY, IMouseMod*) override { Note("drag", dX, dY); }
  void OnMouseDblClick(int x, int y, IMouseMod*) override { Note("double", x, y); }
  void OnMouseWheel(int, int, IMouseMod*, int d) override { Note("wheel", d, 0); }
  void OnMouseOver(int x, int y, IMouseMod*) override { Note("over", x, y); }
  void OnMouseOut() override { Note("out", 0, 0); }
  bool OnKeyDown(int, int, int key) override { return Note("key", key, 0), takesKeys; }
  bool Draw(IGraphics* graphics) override;

  Calls TakeEvents() { return std::exchange(events, {}); }

  using IControl::mDblAsSingleClick;
  using IControl::mMOWhenGrayed;
  using IControl::mNameDisplayControl;
  using IControl::mValDisplayControl;

  bool takesKeys = true;
  std::function<void()> onDraw;

 private:
  void Note(const char* name, int a, int b) {
    events.push_back(std::string(name) + " " + std::to_string(a) + " " + std::to_string(b));
  }

  IColor mColor;
  Calls events;
};

// A plug-in with an editor of 200 by 100.
class EditorTest : public ::testing::Test {
 protected:
  static constexpr int kWidth = 200, kHeight = 100;

  EditorTest() : graphics(new TestGraphics(&plug, kWidth, kHeight)) {}
  ~EditorTest() override {
    if (!isAttached) delete graphics;
  }

  template <class T, class... Args>
  T* Attach(Args&&... args) {
    auto* control = new T(&plug, std::forward<Args>(args)...);
    graphics->AttachControl(control);
    return control;
  }
  // Gives the editor to the plug-in, draws it and forgets what was called.
  void Show();
  // Draws frames until nothing is dirty any more.
  void Settle();
  // A value from the host, drawn.
  void SetLevel(double value);
  void Click(int x, int y);

  EditedPlug plug;
  TestGraphics* graphics;  // owned by the plug-in from Show on
  bool isAttached = false;
  IMouseMod left{true}, right{false, true}, shifted{true, false, true};
};

// A bitmap of stacked frames of w by h, one of each colour.
IBitmap FramesOf(int w, int h, const std::vector<IColor>& colours, bool horizontal = false);
