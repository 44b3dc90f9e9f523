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
  if (mStrict) {
    DrawStrict(*rect);
  } else if (mControls.Get(0)->IsDirty()) {
    DrawAll();
  } else {
    for (int i = 1; i < mControls.GetSize(); ++i) {
      if (mControls.Get(i)->IsDirty()) DrawWithNeighbours(i);
    }
  }
  return DrawScreen(rect);
}

// Controls draw past the rectangle in hand. Text and translucent lines laid twice over the same
// pixels would grow bolder with each frame, so only what lies inside reaches the canvas.
template <class DrawFn>
void IGraphics::DrawInside(const IRECT& rect, DrawFn draw) {
  const auto copy = [&rect](LICE_IBitmap* to, const LICE_IBitmap* from) {
    LICE_Blit(to, from, rect.L, rect.T, rect.L, rect.T, rect.W(), rect.H(), 1.0F,
              LICE_BLIT_MODE_COPY);
  };
  mDrawRECT = rect;
  copy(mFrameBitmap.get(), mDrawBitmap.get());
  mDrawBitmap.swap(mFrameBitmap);
  draw();
  mDrawBitmap.swap(mFrameBitmap);
  copy(mDrawBitmap.get(), mFrameBitmap.get());
}

void IGraphics::DrawStrict(const IRECT& rect) {
  DrawInside(rect, [this] {
    for (IControl* control : mControls) {
      if (!control->IsHidden() && control->GetRECT().Intersects(mDrawRECT)) control->Draw(this);
      control->SetClean();
    }
  });
}

void IGraphics::DrawAll() {
  mDrawRECT = mControls.Get(0)->GetRECT();
  for (int i = 0; i < mControls.GetSize(); ++i) {
    IControl* control = mControls.Get(i);
    if (i > 0 && control->IsHidden()) continue;
    control->Draw(this);
    control->SetClean();
  }
}

void IGraphics::DrawWithNeighbours(int controlIdx) {
  IControl* dirty = mControls.Get(controlIdx);
  DrawInside(dirty->GetRECT(), [this, dirty] {
    for (IControl* control : mControls) {
      if (control->IsHidden()) continue;
      if (control == dirty || control->GetRECT().Intersects(mDrawRECT)) control->Draw(this);
    }
  });
  dirty->SetClean();
}
