// The recording plug-in and editor.
#include "tests/graphics/Fixture.h"

#include <cstdio>

TestPlug::TestPlug()
    : IPlugBase(kNumTestParams, "2-2", 1, "Test", "", "Maker", 0x10000, 1, 2, 0, false, false,
                false, 0) {
  GetParam(kLevel)->InitDouble("Level", 0.25, 0.0, 1.0, 0.01, "dB");
  GetParam(kCount)->InitInt("Count", 4, 0, 10);
  GetParam(kColour)->InitEnum("Colour", 1, 3);
  GetParam(kColour)->SetDisplayText(0, "red");
  GetParam(kColour)->SetDisplayText(1, "green");
  GetParam(kColour)->SetDisplayText(2, "blue");
  GetParam(kOnOff)->InitBool("OnOff", false);
  GetParam(kNegated)->InitDouble("Negated", 3.0, 0.0, 12.0, 0.1);
  GetParam(kNegated)->NegateDisplay(true);
}

void TestPlug::OnParamChange(int paramIdx) {
  calls.push_back("changed " + std::to_string(paramIdx));
}

void TestPlug::BeginInformHostOfParamChange(int idx) {
  calls.push_back("begin " + std::to_string(idx));
}

void TestPlug::InformHostOfParamChange(int idx, double normalizedValue) {
  char text[64];
  std::snprintf(text, sizeof(text), "set %d %.3f", idx, normalizedValue);
  calls.push_back(text);
}

void TestPlug::EndInformHostOfParamChange(int idx) {
  calls.push_back("end " + std::to_string(idx));
}

bool TestGraphics::DrawScreen(IRECT*) {
  ++screens;
  return true;
}

IPopupMenu* TestGraphics::CreateIPopupMenu(IPopupMenu* menu, IRECT* rect) {
  IGraphicsOffscreen::CreateIPopupMenu(menu, rect);
  lastRect = *rect;
  return chooseItem ? chooseItem(menu) : nullptr;
}

void TestGraphics::CreateTextEntry(IControl* control, IText*, IRECT* rect, const char* str,
                                   IParam* param) {
  lastRect = *rect;
  fieldText = str;
  if (typeText) SetFromStringAfterPrompt(control, param, typeText(str).c_str());
}

void TestGraphics::PromptForFile(HeapString* file, int, HeapString* dir, const char*) {
  file->Set(chosenFile.c_str());
  dir->Set("/chosen/");
}

bool TestGraphics::OpenURL(const char* url, const char*) {
  urls.push_back(url);
  return openURL && openURL(url);
}

bool TestGraphics::Tick() {
  IRECT dirty;
  if (!IsDirty(&dirty)) return false;
  Draw(&dirty);
  return true;
}

IRECT TestGraphics::BoundsOf(uint32_t pixel) const {
  IRECT bounds;
  for (int y = 0; y < Height(); ++y) {
    for (int x = 0; x < Width(); ++x) {
      if (PixelAt(x, y) == pixel) bounds = bounds.Union({x, y, x + 1, y + 1});
    }
  }
  return bounds;
}

int TestGraphics::CountOf(uint32_t pixel) const {
  int n = 0;
  for (int y = 0; y < Height(); ++y) {
    for (int x = 0; x < Width(); ++x) n += PixelAt(x, y) == pixel;
  }
  return n;
}

bool ProbeControl::Draw(IGraphics* graphics) {
  events.push_back("draw");
  if (onDraw) onDraw();
  return graphics->FillIRect(&mColor, &mRECT, &mBlend);
}

void EditorTest::Show() {
  plug.AttachGraphics(graphics);
  isAttached = true;
  Settle();
  plug.TakeCalls();
}

void EditorTest::Settle() {
  for (int i = 0; i < 3 && graphics->Tick(); ++i) {
  }
}

IBitmap FramesOf(int w, int h, const std::vector<IColor>& colours, bool horizontal) {
  const int n = static_cast<int>(colours.size());
  auto pixels = std::make_unique<LICE_MemBitmap>(horizontal ? w * n : w, horizontal ? h : h * n);
  for (int i = 0; i < n; ++i) {
    LICE_FillRect(pixels.get(), horizontal ? i * w : 0, horizontal ? 0 : i * h, w, h,
                  colours[static_cast<size_t>(i)].Pixel());
  }
  IBitmap bitmap(static_cast<LICE_IBitmap*>(pixels.get()), pixels->getWidth(), pixels->getHeight(),
                 n, horizontal);
  IGraphics::RetainBitmap(&bitmap);
  pixels.release();
  return bitmap;
}
