#include "tests/graphics/x11/EditorHost.h"

#include <map>

#include "graphics/controls/IControls.h"
#include "graphics/controls/IKnobControls.h"
#include "graphics/controls/ITextControls.h"
#include "graphics/lice/LICE_Bitmap.h"

namespace {

// Takes keys and text, and says which.
class ProbeControl : public IControl {
 public:
  using IControl::IControl;
  bool Draw(IGraphics* graphics) override {
    ++Plug().probeDraws;
    return graphics->FillIRect(&kColorBlue, &mRECT);
  }
  void OnMouseDown(int x, int y, IMouseMod* mod) override {
    Note("down", x, y,
         std::string(" ") + (mod->L ? "L" : "") + (mod->R ? "R" : "") + (mod->S ? "S" : "") +
             (mod->C ? "C" : "") + (mod->A ? "A" : ""));
    if (Plug().onProbe) Plug().onProbe();
  }
  void OnMouseUp(int x, int y, IMouseMod*) override { Note("up", x, y); }
  void OnMouseDrag(int, int, int, int, IMouseMod*) override {
    Plug().Notes().Note("drag");
    Plug().SetParameterFromGUI(kLevel, 0.5);
  }
  void OnMouseOver(int x, int y, IMouseMod*) override { Note("over", x, y); }
  void OnMouseOut() override { Plug().Notes().Note("out"); }
  bool OnKeyDown(int, int, int key) override {
    if (key == IGraphics::kKeySpace) return false;
    Plug().Notes().Note("key " + std::to_string(key));
    return true;
  }
  void TextFromTextEntry(const char* text) override { Plug().Notes().Note(text); }

 private:
  HostedPlug& Plug() { return *static_cast<HostedPlug*>(mPlug); }
  void Note(const std::string& what, int x, int y, const std::string& marks = "") {
    Plug().Notes().Note(what + " " + std::to_string(x) + " " + std::to_string(y) + marks);
  }
};

}  // namespace

void Journal::Note(const std::string& entry) {
  const std::lock_guard guard(mMutex);
  mEntries.push_back(entry);
}

Entries Journal::Take() {
  const std::lock_guard guard(mMutex);
  return std::exchange(mEntries, {});
}

Entries Journal::UpTo(const std::string& entry) {
  Entries taken;
  const bool found = Eventually([&] {
    const std::lock_guard guard(mMutex);
    const auto at = std::find(mEntries.begin(), mEntries.end(), entry);
    if (at == mEntries.end()) return false;
    taken.assign(mEntries.begin(), at + 1);
    mEntries.erase(mEntries.begin(), at + 1);
    return true;
  });
  EXPECT_TRUE(found) << entry << " is not in " << ::testing::PrintToString(Take());
  return taken;
}

HostTest::HostTest(int width, int height, const std::string& server)
    : mServer(server),
      mParent(
          mUser.MakeWindow({kLeft, kTop, kLeft + width, kTop + height}, XCB_EVENT_MASK_KEY_PRESS)) {
  mUser.MoveTo(0, 0);
}

VstIntPtr HostTest::Answer(AEffect* effect, int32_t opcode, int32_t index, VstIntPtr, void*,
                           float opt) {
  static const std::map<int32_t, std::string> kNames = {{audioMasterAutomate, "set "},
                                                        {audioMasterBeginEdit, "begin "},
                                                        {audioMasterEndEdit, "end "}};
  const auto name = kNames.find(opcode);
  if (!effect || !effect->user || name == kNames.end()) return 0;
  char value[32] = "";
  if (opcode == audioMasterAutomate) std::snprintf(value, sizeof value, " %.3f", double{opt});
  static_cast<Journal*>(effect->user)->Note(name->second + std::to_string(index) + value);
  return 0;
}

VstIntPtr HostTest::Dispatch(int opcode, int index, VstIntPtr value, void* ptr) {
  return mEffect->dispatcher(mEffect, opcode, index, value, ptr, 0.0f);
}

bool HostTest::Open(xcb_window_t parent) {
  return Dispatch(effEditOpen, 0, 0, reinterpret_cast<void*>(uintptr_t{parent})) == 1;
}

xcb_window_t HostTest::Window() {
  const auto windows = mUser.ChildrenOf(mParent);
  return windows.empty() ? XCB_NONE : windows.back();
}

void HostTest::Set(int param, double normalized) {
  mEffect->setParameter(mEffect, param, static_cast<float>(normalized));
}

HostedPlug::HostedPlug(audioMasterCallback callback)
    : IPlugVST(callback, kNumHostedParams, "2-2", 1, "Hosted", "Hosted", "Tests", 0x00010000,
               0x486F7374, 0) {
  GetAEffect()->user = &mNotes;
  GetParam(kLevel)->InitDouble("Level", 25.0, 0.0, 100.0, 0.1);
  GetParam(kCount)->InitInt("Count", 4, 0, 10);
  IParam* colour = GetParam(kColour);
  colour->InitEnum("Colour", 0, 3);
  for (const char* text : {"red", "green", "blue"}) {
    colour->SetDisplayText(colour->GetNDisplayTexts(), text);
  }
  mGraphics = new IGraphicsX11(this, kWidth, kHeight, 0);
  mGraphics->HandleMouseOver(true);
  const IColor ground(255, 40, 80, 120);
  mGraphics->AttachPanelBackground(&ground);
  for (const auto& [rect, param] : {std::pair{kLevelRect, kLevel}, {kCountRect, kCount}}) {
    mGraphics->AttachControl(new IKnobLineControl(this, rect, param, kColorWhite));
  }
  mGraphics->AttachControl(
      new ICaptionControl(this, kColourRect, kColour, IText(14, kColorWhite), false));
  for (int i = 1; i <= 3; ++i) mGraphics->GetControl(i)->DisablePrompt(false);
  mGraphics->AttachControl(new ProbeControl(this, kProbeRect));
  AttachGraphics(mGraphics);
}

EditorHostTest::EditorHostTest(const std::string& server)
    : HostTest(HostedPlug::kWidth, HostedPlug::kHeight, server) {
  MakePlug();
}

EditorHostTest::~EditorHostTest() { EndPlug(); }

void EditorHostTest::MakePlug() {
  mPlug = new HostedPlug(&EditorHostTest::Answer);
  mEffect = mPlug->GetAEffect();
}

void EditorHostTest::EndPlug() {
  if (std::exchange(mPlug, nullptr)) Dispatch(effClose);
}

std::vector<uint32_t> EditorHostTest::Canvas() {
  HostedPlug twin(&EditorHostTest::Answer);
  AEffect* effect = twin.GetAEffect();
  for (int i = 0; i < kNumHostedParams; ++i) {
    effect->setParameter(effect, i, static_cast<float>(Normalized(i)));
  }
  IRECT all(0, 0, HostedPlug::kWidth, HostedPlug::kHeight);
  twin.Graphics()->Draw(&all);
  return RgbOf(*twin.Graphics()->GetCanvas());
}

std::vector<uint32_t> RgbOf(const LICE_IBitmap& bitmap) {
  std::vector<uint32_t> pixels;
  for (int y = 0; y < bitmap.getHeight(); ++y) {
    const LICE_pixel* row = bitmap.getBits() + ptrdiff_t{y} * bitmap.getRowSpan();
    for (int x = 0; x < bitmap.getWidth(); ++x) {
      pixels.push_back(static_cast<uint32_t>(LICE_GETR(row[x]) << 16 | LICE_GETG(row[x]) << 8 |
                                             LICE_GETB(row[x])));
    }
  }
  return pixels;
}

void EditorHostTest::ExpectBalancedEdits(const Entries& entries) {
  std::map<std::string, int> open;
  for (const std::string& entry : entries) {
    int& count = open[entry.substr(entry.find(' ') + 1)];
    count += entry.starts_with("begin ") - entry.starts_with("end ");
    EXPECT_TRUE(count == 0 || count == 1) << entry << " unasked";
  }
  for (const auto& [param, count] : open) EXPECT_EQ(count, 0) << "edit of " << param << " is open";
}
