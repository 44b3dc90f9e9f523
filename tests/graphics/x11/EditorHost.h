// A host with a window, and a small plug-in whose editor opens in it.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

#include "graphics/x11/IGraphicsX11.h"
#include "iplug/vst2/IPlugVST.h"
#include "tests/graphics/x11/XServer.h"

// As a server of 24 bits counts them: 0xRRGGBB.
std::vector<uint32_t> RgbOf(const LICE_IBitmap& bitmap);

using Entries = std::vector<std::string>;

// Every thread may note something, and all see it in one order.
class Journal {
 public:
  void Note(const std::string& entry);
  Entries Take();
  // Waits for an entry, and takes all up to it; none when it does not come.
  Entries UpTo(const std::string& entry);
  bool Comes(const std::string& entry) { return !UpTo(entry).empty(); }

 private:
  std::mutex mMutex;
  Entries mEntries;
};

// A host of one effect with a server of its own. It notes "begin 0", "set 0 0.500" and "end 0" in
// the journal that the effect's `user` points at.
class HostTest : public ::testing::Test {
 protected:
  static constexpr int kLeft = 100, kTop = 50;  // of the host's window on the screen

  HostTest(int width, int height, const std::string& server);

  VstIntPtr Dispatch(int opcode, int index = 0, VstIntPtr value = 0, void* ptr = nullptr);
  bool Open() { return Open(mParent); }
  bool Open(xcb_window_t parent);
  void Close() { Dispatch(effEditClose); }
  xcb_window_t Window();  // the editor's, none when there is none
  void Set(int param, double normalized);
  double Normalized(int param) { return double{mEffect->getParameter(mEffect, param)}; }

  // Puts the mouse where the editor takes it to be at (x, y) of the canvas.
  void Point(int x, int y) { mUser.MoveTo(kLeft + x + 2, kTop + y + 3); }
  void Point(const IRECT& rect) { Point((rect.L + rect.R) / 2, (rect.T + rect.B) / 2); }
  template <class... Place>
  void PressAt(const Place&... place) {
    Point(place...);
    mUser.Press(1);
  }
  template <class... Place>
  void ClickAt(const Place&... place) {
    Point(place...);
    mUser.Click();
  }

  static VstIntPtr Answer(AEffect* effect, int32_t opcode, int32_t index, VstIntPtr, void*, float);

  XServer mServer;
  XUser mUser;
  xcb_window_t mParent;
  AEffect* mEffect = nullptr;
};

enum EHostedParam { kLevel, kCount, kColour, kNumHostedParams };

// Parameters: Level 0 to 100 (default 25), Count 0 to 10 (default 4), Colour red, green, blue.
class HostedPlug : public IPlugVST {
 public:
  static constexpr int kWidth = 300, kHeight = 200;
  static constexpr IRECT kLevelRect{10, 10, 60, 60};     // a knob with typed entry
  static constexpr IRECT kCountRect{70, 10, 120, 60};    // likewise
  static constexpr IRECT kColourRect{130, 10, 190, 30};  // a caption that opens a menu
  static constexpr IRECT kProbeRect{190, 10, 240, 60};   // notes what happens to it

  explicit HostedPlug(audioMasterCallback callback);

  IGraphicsX11* Graphics() const { return mGraphics; }
  Journal& Notes() { return mNotes; }
  std::function<void()> onProbe;  // what a press of the probe does, on the editor's thread
  std::atomic<int> probeDraws{0};

 private:
  IGraphicsX11* mGraphics;
  Journal mNotes;
};

class EditorHostTest : public HostTest {
 protected:
  explicit EditorHostTest(const std::string& server = XServer::kUsual);
  ~EditorHostTest() override;

  void MakePlug();
  void EndPlug();
  IGraphicsX11& Graphics() { return *mPlug->Graphics(); }
  Journal& Notes() { return mPlug->Notes(); }
  double Value(int param) { return mPlug->GetParam(param)->Value(); }
  bool HasChild() { return !mUser.ChildrenOf(Window()).empty(); }  // a field or menu
  // As the window should show it, from an editor that never had one.
  std::vector<uint32_t> Canvas();
  static void ExpectBalancedEdits(const Entries& entries);

  HostedPlug* mPlug = nullptr;
};
