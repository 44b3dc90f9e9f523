#include "tests/graphics/x11/EditorHost.h"

#include <map>

#include "graphics/IControls.h"
#include "graphics/IKnobControls.h"
#include "graphics/ITextControls.h"
#include "graphics/lice/LICE_Bitmap.h"

namespace {

HostedPlug* PlugOf(IPlugBase* plug) { return static_cast<HostedPlug*>(plug); }

}  // namespace

void ProbeControl::Note(const std::string& what) { PlugOf(mPlug)->Notes().Note(what); }

bool ProbeControl::Draw(IGraphics* graphics) { return graphics->FillIRect(&kColorBlue, &mRECT); }

void ProbeControl::OnMouseDown(int x, int y, IMouseMod* mod) {
  const std::string marks = std::string(mod->L ? "L" : "") + (mod->R ? "R" : "") +
                            (mod->S ? "S" : "") + (mod->C ? "C" : "") + (mod->A ? "A" : "");
  Note("down " + std::to_string(x) + " " + std::to_string(y) + " " + marks);
  if (PlugOf(mPlug)->onProbe) PlugOf(mPlug)->onProbe();
}

void ProbeControl::OnMouseUp(int x, int y, IMouseMod*) {
  Note("up " + std::to_string(x) + " " + std::to_string(y));
}

void ProbeControl::OnMouseOver(int x, int y, IMouseMod*) {
  Note("over " + std::to_string(x) + " " + std::to_string(y));
}

bool ProbeControl::OnKeyDown(int, int, int key) {
  if (key == IGraphics::kKeySpace) return false;
  Note("key " + std::to_string(key));
  return true;
}

void Journal::Note(const std::string& entry) {
  const std::lock_guard guard(mMutex);
  mEntries.push_back(entry);
}

std::vector<std::string> Journal::Take() {
  const std::lock_guard guard(mMutex);
  return std::exchange(mEntries, {});
}

bool Journal::EndsWith(const std::string& entry) {
  const bool found = Eventually([&] {
    const std::lock_guard guard(mMutex);
    return !mEntries.empty() && mEntries.back() == entry;
  });
  const std::lock_guard guard(mMutex);
  EXPECT_TRUE(found) << "the last of " << ::testing::PrintToString(mEntries) << " is not " << entry;
  return found;
}

bool Journal::Comes(const std::string& entry) {
  const bool found = Eventually([&] {
    const std::lock_guard guard(mMutex);
    const auto at = std::find(mEntries.begin(), mEntries.end(), entry);
    if (at == mEntries.end()) return false;
    mEntries.erase(mEntries.begin(), at + 1);
    return true;
  });
  const std::lock_guard guard(mMutex);
  EXPECT_TRUE(found) << entry << " is not in " << ::testing::PrintToString(mEntries);
  return found;
}

HostedPlug::HostedPlug(audioMasterCallback callback)
    : IPlugVST(callback, kNumHostedParams, "2-2", 1, "Hosted", "Hosted", "Tests", 0x00010000,
               0x486F7374, 0) {
  GetParam(kLevel)->InitDouble("Level", 25.0, 0.0, 100.0, 0.1);
  GetParam(kCount)->InitInt("Count", 4, 0, 10);
  GetParam(kColour)->InitEnum("Colour", 0, 3);
  for (const char* text : {"red", "green", "blue"}) {
    IParam* colour = GetParam(kColour);
    colour->SetDisplayText(colour->GetNDisplayTexts(), text);
  }
  mGraphics = new IGraphicsX11(this, kWidth, kHeight, 0);
  mGraphics->HandleMouseOver(true);
  const IColor ground(255, 40, 80, 120);
  mGraphics->AttachPanelBackground(&ground);
  for (const auto& [rect, param] : {std::pair{kLevelRect, kLevel}, {kCountRect, kCount}}) {
    auto* knob = new IKnobLineControl(this, rect, param, kColorWhite);
    knob->DisablePrompt(false);
    mGraphics->AttachControl(knob);
  }
  auto* caption = new ICaptionControl(this, kColourRect, kColour, IText(14, kColorWhite), false);
  caption->DisablePrompt(false);
  mGraphics->AttachControl(caption);
  mGraphics->AttachControl(new ProbeControl(this, kProbeRect));
  AttachGraphics(mGraphics);
}

EditorHostTest::EditorHostTest(int depth, std::vector<std::string> serverOptions)
    : mServer(depth, std::move(serverOptions)),
      mParent(
          mUser.MakeWindow({kLeft, kTop, kLeft + HostedPlug::kWidth, kTop + HostedPlug::kHeight},
                           XCB_EVENT_MASK_KEY_PRESS)) {
  mUser.MoveTo(0, 0);
  MakePlug();
}

EditorHostTest::~EditorHostTest() {
  if (mPlug) Dispatch(effClose);
}

void EditorHostTest::MakePlug() { mPlug = new HostedPlug(&EditorHostTest::Answer); }

VstIntPtr EditorHostTest::Answer(AEffect* effect, int32_t opcode, int32_t index, VstIntPtr, void*,
                                 float opt) {
  static const std::map<int32_t, std::string> kNames = {{audioMasterAutomate, "set "},
                                                        {audioMasterBeginEdit, "begin "},
                                                        {audioMasterEndEdit, "end "}};
  const auto name = kNames.find(opcode);
  if (!effect || name == kNames.end()) return 0;
  char value[32] = "";
  if (opcode == audioMasterAutomate) std::snprintf(value, sizeof value, " %.3f", double{opt});
  auto* plug = static_cast<HostedPlug*>(static_cast<IPlugVST*>(effect->object));
  plug->Notes().Note(name->second + std::to_string(index) + value);
  return 0;
}

VstIntPtr EditorHostTest::Dispatch(int opcode, int index, VstIntPtr value, void* ptr) {
  AEffect* effect = mPlug->GetAEffect();
  if (opcode == effClose) mPlug = nullptr;
  return effect->dispatcher(effect, opcode, index, value, ptr, 0.0F);
}

bool EditorHostTest::Open(xcb_window_t parent) {
  return Dispatch(effEditOpen, 0, 0, reinterpret_cast<void*>(uintptr_t{parent})) == 1;
}

xcb_window_t EditorHostTest::Window() const {
  return static_cast<xcb_window_t>(reinterpret_cast<uintptr_t>(mPlug->Graphics()->GetWindow()));
}

float EditorHostTest::Normalized(int param) {
  AEffect* effect = mPlug->GetAEffect();
  return effect->getParameter(effect, param);
}

bool EditorHostTest::HasPicture(const IRECT& rect, uint32_t rgb) {
  return Eventually([&] {
    const auto pixels = mUser.Picture(Window(), rect);
    return !pixels.empty() &&
           std::all_of(pixels.begin(), pixels.end(), [rgb](uint32_t p) { return p == rgb; });
  });
}

void EditorHostTest::ExpectBalancedEdits(const std::vector<std::string>& entries) {
  std::map<std::string, int> open;
  for (const std::string& entry : entries) {
    const std::string param = entry.substr(entry.find(' ') + 1);
    if (entry.starts_with("begin ")) {
      EXPECT_EQ(++open[param], 1) << entry << " twice";
    } else if (entry.starts_with("end ")) {
      EXPECT_EQ(--open[param], 0) << entry << " unasked";
    }
  }
  for (const auto& [param, count] : open) EXPECT_EQ(count, 0) << "edit of " << param << " is open";
}
