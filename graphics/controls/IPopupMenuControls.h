// The product's three pop-up menus, which show their choice as text. Tolmara uses all of it but the
// second menu.
#pragma once

#include <span>

#include "graphics/IControl.h"
#include "graphics/IPopupMenu.h"

// A press opens the menu of fixed items; item n stands for the value n / `lastValue`.
class IPopupMenuControl : public IControl {
 public:
  void OnMouseDown(int x, int y, IMouseMod* mod) override;
  bool Draw(IGraphics* graphics) override;

  IPopupMenu& GetAuxMenu() { return mAuxMenu; }

 protected:
  IPopupMenuControl(IPlugBase* plug, IRECT rect, int paramIdx, std::span<const char* const> items,
                    double lastValue);

 private:
  IPopupMenu mMainMenu;
  IPopupMenu mAuxMenu;  // empty here; a plug-in may fill it
  double mLastValue;    // what a normalised value of 1 stands for
};

// "0 Blocks" to "12 Blocks".
class IFFTSizePopupMenu : public IPopupMenuControl {
 public:
  IFFTSizePopupMenu(IPlugBase* plug, IRECT rect, int paramIdx);
};

// "Low Mem", "Fast".
class IComputeModePopupMenu : public IPopupMenuControl {
 public:
  IComputeModePopupMenu(IPlugBase* plug, IRECT rect, int paramIdx);
};

// "None", "RMS".
class INormModePopupMenu : public IPopupMenuControl {
 public:
  INormModePopupMenu(IPlugBase* plug, IRECT rect, int paramIdx);
};
