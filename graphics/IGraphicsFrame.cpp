// Which controls a frame draws.
#include "graphics/IGraphics.h"
#include "graphics/lice/LICE.h"

bool IGraphics::IsDirty(IRECT* rect) {
  rect->Clear();
  bool dirty = false;
  for (IControl* control : mControls) {
    if (!control->IsDirty()) continue;
    *rect = rect->Union(control->GetRECT());
    dirty = true;
  }
  return dirty;
}

bool IGraphics::Draw(IRECT* rect) {
  if (mControls.GetSize() == 0) return true;
  if (!mDrawBitmap) return false;
  IRECT drawn = *rect;
  if (mStrict) {
    drawn = DrawArea(*rect, true);
  } else if (mControls.Get(0)->IsDirty()) {
    DrawAll();
  } else {
    for (int i = 1; i < mControls.GetSize(); ++i) {
      IControl* control = mControls.Get(i);
      if (!control->IsDirty()) continue;
      drawn = drawn.Union(DrawArea(control->GetRECT(), false));
      control->SetClean();
    }
  }
  return DrawScreen(&drawn);
}

// The rectangle and all that the controls which lie in it reach.
IRECT IGraphics::WithReach(IRECT rect) const {
  const IRECT inner = rect;
  for (const IControl* control : mControls) {
    if (control->GetRECT().Intersect(inner) == control->GetRECT()) {
      rect = rect.Union(control->GetReach());
    }
  }
  return rect;
}

// Draws what meets the rectangle; with `clean` cleans every control. Returns the area drawn anew.
IRECT IGraphics::DrawArea(const IRECT& rect, bool clean) {
  // What the texts of the last frame covered goes with the rectangle.
  const IRECT area = WithReach(rect);
  DrawInside(area, clean);
  // A text may have grown beyond the one that it replaces.
  const IRECT grown = area.Union(WithReach(rect));
  if (grown != area) DrawInside(grown, false);
  return grown;
}

// Controls draw past the area in hand. Text and translucent lines laid twice over the same pixels
// would grow bolder with each frame, so they draw on an empty bitmap, of which only what lies
// inside reaches the canvas.
void IGraphics::DrawInside(const IRECT& area, bool clean) {
  const auto copy = [](LICE_IBitmap& to, const LICE_IBitmap& from, const IRECT& r) {
    LICE_Blit(&to, &from, r.L, r.T, r.L, r.T, r.W(), r.H(), 1.0f, LICE_BLIT_MODE_COPY);
  };
  mDrawRECT = area;
  LICE_FillRect(mFrameBitmap.get(), area.L, area.T, area.W(), area.H(), kColorBlack.Pixel());
  mDrawBitmap.swap(mFrameBitmap);
  for (IControl* control : mControls) {
    const IRECT reach = control->GetReach();
    control->SetInFrame(true);
    if (!control->IsHidden() && reach.Intersects(area) && !DrawControl(control)) {
      copy(*mDrawBitmap, *mFrameBitmap, reach);
    }
    if (clean) control->SetClean();
    control->SetInFrame(false);
  }
  mDrawBitmap.swap(mFrameBitmap);
  copy(*mDrawBitmap, *mFrameBitmap, area);
}

// False if the control skipped the frame, so that its last picture is to stay.
bool IGraphics::DrawControl(IControl* control) {
  mInk.Clear();
  if (!control->Draw(this) && control->MaySkipFrames()) {
    control->MarkRedraw();  // what it could not draw now is drawn with the next frame
    return false;
  }
  control->SetInk(mInk);
  return true;
}

void IGraphics::DrawAll() {
  mDrawRECT = mControls.Get(0)->GetRECT();
  for (int i = 0; i < mControls.GetSize(); ++i) {
    IControl* control = mControls.Get(i);
    if (i > 0 && control->IsHidden()) continue;
    DrawControl(control);
    control->SetClean();
  }
}
