// The product's pop-up menus: their items, and how a choice becomes a value.
#include "graphics/controls/IPopupMenuControls.h"

#include <cmath>

#include "graphics/IGraphics.h"
#include "iplug/IPlugBase.h"

namespace {

// kept: "1 Blocks" is spelled like its neighbours, because users and their notes know it so.
constexpr const char* kFFTSizes[] = {"0 Blocks",  "1 Blocks",  "2 Blocks", "3 Blocks", "4 Blocks",
                                     "5 Blocks",  "6 Blocks",  "7 Blocks", "8 Blocks", "9 Blocks",
                                     "10 Blocks", "11 Blocks", "12 Blocks"};
constexpr const char* kComputeModes[] = {"Low Mem", "Fast"};
constexpr const char* kNormModes[] = {"None", "RMS"};
constexpr int kTextSize = 12;

}  // namespace

IPopupMenuControl::IPopupMenuControl(IPlugBase* plug, IRECT rect, int paramIdx,
                                     std::span<const char* const> items, double lastValue)
    : IControl(plug, rect, paramIdx), mLastValue(lastValue) {
  for (const char* item : items) mMainMenu.AddItem(item);
}

void IPopupMenuControl::OnMouseDown(int, int, IMouseMod*) {
  IGraphics* graphics = mPlug ? mPlug->GetGraphics() : nullptr;
  const IPopupMenu* menu = graphics ? graphics->CreateIPopupMenu(&mMainMenu, &mRECT) : nullptr;
  if (menu == &mMainMenu) {
    SetValueFromUserInput(mMainMenu.GetChosenItemIdx() / mLastValue);
  } else if (menu == &mAuxMenu) {
    mAuxMenu.CheckItemAlone(mAuxMenu.GetChosenItemIdx());
  }
  // kept: the present value goes to the plug-in whether or not one was chosen. A host that records
  // automation relies on a value between the begin and the end of an edit.
  MarkRedraw();
  SetDirty(true);
}

bool IPopupMenuControl::Draw(IGraphics* graphics) {
  const int n = mMainMenu.GetNItems();
  const int index = TruncateToPixel(std::round(GetValue() * mLastValue));
  IText text = mText;
  text.mSize = kTextSize;
  text.mColor = kColorWhite;
  text.mAlign = IText::kAlignCenter;
  // A value above the range starts over.
  return graphics->DrawIText(&text, mMainMenu.GetItemText((index % n + n) % n), &mRECT);
}

IFFTSizePopupMenu::IFFTSizePopupMenu(IPlugBase* plug, IRECT rect, int paramIdx)
    : IPopupMenuControl(plug, rect, paramIdx, kFFTSizes, 12.0) {}

IComputeModePopupMenu::IComputeModePopupMenu(IPlugBase* plug, IRECT rect, int paramIdx)
    : IPopupMenuControl(plug, rect, paramIdx, kComputeModes, 1.0) {}

INormModePopupMenu::INormModePopupMenu(IPlugBase* plug, IRECT rect, int paramIdx)
    : IPopupMenuControl(plug, rect, paramIdx, kNormModes, 1.0) {}
