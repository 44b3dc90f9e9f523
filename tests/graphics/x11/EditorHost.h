// A host with a window, and a small plug-in whose editor opens in it.
#pragma once

#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <vector>

#include "graphics/x11/IGraphicsX11.h"
#include "iplug/IPlugVST.h"
#include "tests/graphics/x11/XServer.h"

enum EHostedParam { kLevel, kCount, kColour, kNumHostedParams };

// Takes keys and text, and says which.
class ProbeControl : public IControl {
 public:
  using IControl::IControl;
  bool Draw(IGraphics* graphics) override;
  void OnMouseDown(int x, int y, IMouseMod* mod) override;
  void OnMouseUp(int x, int y, IMouseMod* mod) override;
  void OnMouseOver(int x, int y, IMouseMod* mod) override;
  void OnMouseOut() override { Note("out"); }
  bool OnKeyDown(int x, int y, int key) override;
  void TextFromTextEntry(const char* text) override { Note(text); }

 private:
  void Note(const std::string& what);
};

// Every thread may note something, and all see it in one order.
class Journal {
 public:
  void Note(const std::string& entry);
  std::vector<std::string> Take();
  // Waits until the last entry is this one.
  bool EndsWith(const std::string& entry);
  // Waits for an entry and takes all up to it.
  bool Comes(const std::string& entry);

 private:
  std::mutex mMutex;
  std::vector<std::string> mEntries;
};

// Parameters: Level 0 to 100 (default 25), Count 0 to 10 (default 4), Colour red, green, blue.
class HostedPlug : public IPlugVST {
 public:
  static constexpr int kWidth = 300, kHeight = 200;
  static constexpr IRECT kLevelRect{10, 10, 60, 60};     // a knob with typed entry
  static constexpr IRECT kCountRect{70, 10, 120, 60};    // likewise
  static constexpr IRECT kColourRect{130, 10, 180, 30};  // a caption that opens a menu
  static constexpr IRECT kProbeRect{190, 10, 240, 60};

  explicit HostedPlug(audioMasterCallback callback);

  IGraphicsX11* Graphics() const { return mGraphics; }
  Journal& Notes() { return mNotes; }
  std::function<void()> onProbe;  // what a press of the probe does, on the editor's thread

 private:
  IGraphicsX11* mGraphics;
  Journal mNotes;
};

// The host notes "begin 0", "set 0 0.500" and "end 0".
class EditorHostTest : public ::testing::Test {
 protected:
  static constexpr int kLeft = 100, kTop = 50;  // of the host's window on the screen

  explicit EditorHostTest(int depth = 24, std::vector<std::string> serverOptions = {});
  ~EditorHostTest() override;

  void MakePlug();
  VstIntPtr Dispatch(int opcode, int index = 0, VstIntPtr value = 0, void* ptr = nullptr);
  bool Open() { return Open(mParent); }
  bool Open(xcb_window_t parent);
  void Close() { Dispatch(effEditClose); }
  // The editor's window.
  xcb_window_t Window() const;

  // Puts the mouse where the editor takes it to be at (x, y) of the canvas.
  void Point(int x, int y) { mUser.MoveTo(kLeft + x + 2, kTop + y + 3); }
  void Point(const IRECT& rect) { Point((rect.L + rect.R) / 2, (rect.T + rect.B) / 2); }
  bool HasPicture(const IRECT& rect, uint32_t rgb);
  double Value(int param) { return mPlug->GetParam(param)->Value(); }
  float Normalized(int param);
  void ExpectBalancedEdits(const std::vector<std::string>& entries);

  XServer mServer;
  XUser mUser;
  xcb_window_t mParent;
  HostedPlug* mPlug = nullptr;

 private:
  static VstIntPtr Answer(AEffect* effect, int32_t opcode, int32_t index, VstIntPtr value,
                          void* ptr, float opt);
};
