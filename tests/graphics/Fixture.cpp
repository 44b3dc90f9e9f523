// The recording plug-in and editor.
#include "tests/graphics/Fixture.h"

#include <algorithm>
#include <cstdio>

EditedPlug::EditedPlug()
    : IPlugVST([](AEffect*, std::int32_t, std::int32_t, VstIntPtr, void*,
                  float) -> VstIntPtr { return 0; },
               kNumEditedParams, "2-2", 1, "Test", "", "Maker", 0x10000, 1, 2) {
  GetParam(kLevel)->InitDouble("Level", 0.25, 0.0, 1.0, 0.01, "dB");
  GetParam(kCount)->InitInt("Count", 4, 0, 10);
  GetParam(kColour)->InitEnum("Colour", 1, 3);
  int value = 0;
  for (const char* text : {"red", "green", "blue"}) {
    GetParam(kColour)->SetDisplayText(value++, text);
  }
  GetParam(kOnOff)->InitBool("OnOff", false);
  GetParam(kNegated)->InitDouble("Negated", 3.0, 0.0, 12.0, 0.1);
  GetParam(kNegated)->NegateDisplay(true);
}

void EditedPlug::InformHostOfParamChange(int idx, double normalizedValue) {
  char text[64];
  std::snprintf(text, sizeof(text), "set %d %.3f", idx, normalizedValue);
  calls.push_back(text);
}

bool TestGraphics::DrawIText(IText* text, const char* str, IRECT* rect) {
  lastText = str ? str : "";
  lastStyle = *text;
  lastTextRect = *rect;
  return IGraphicsOffscreen::DrawIText(text, str, rect);
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
  if (!typedText.empty()) SetFromStringAfterPrompt(control, param, typedText.c_str());
}

void TestGraphics::PromptForFile(HeapString* file, int, HeapString*, const char*) {
  file->Set(chosenFile.c_str());
}

bool TestGraphics::OpenURL(const char* url, const char*) {
  urls.push_back(url);
  return opensURLs;
}

bool TestGraphics::Tick() {
  IRECT dirty;
  if (!IsDirty(&dirty)) return false;
  Draw(&dirty);
  return true;
}

void TestGraphics::DrawEverything() {
  IRECT all(0, 0, Width(), Height());
  Draw(&all);
}

IRECT TestGraphics::BoundsOf(uint32_t pixel) const {
  IRECT bounds;
  for (int i = 0; i < Width() * Height(); ++i) {
    const int x = i % Width();
    const int y = i / Width();
    if (PixelAt(x, y) == pixel) bounds = bounds.Union({x, y, x + 1, y + 1});
  }
  return bounds;
}

int TestGraphics::CountOf(uint32_t pixel) const {
  const auto pixels = Pixels();
  return static_cast<int>(std::count(pixels.begin(), pixels.end(), pixel));
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

void EditorTest::SetLevel(double value) {
  graphics->SetParameterFromPlug(kLevel, value, true);
  Settle();
}

void EditorTest::Click(int x, int y) {
  graphics->OnMouseDown(x, y, &left);
  graphics->OnMouseUp(x, y, &left);
  Settle();
}

IBitmap FramesOf(int w, int h, const std::vector<IColor>& colours, bool horizontal) {
  const int n = static_cast<int>(colours.size());
  auto* pixels = new LICE_MemBitmap(horizontal ? w * n : w, horizontal ? h : h * n);
  for (int i = 0; i < n; ++i) {
    LICE_FillRect(pixels, horizontal ? i * w : 0, horizontal ? 0 : i * h, w, h,
                  colours[static_cast<std::size_t>(i)].Pixel());
  }
  IBitmap bitmap(static_cast<LICE_IBitmap*>(pixels), pixels->getWidth(), pixels->getHeight(), n,
                 horizontal);
  IGraphics::RetainBitmap(&bitmap);
  return bitmap;
}
