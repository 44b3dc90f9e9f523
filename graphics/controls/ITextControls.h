// Stock controls that show text. Tolmara uses none of it: its texts belong to dials, faders and
// menus.
#pragma once

#include "graphics/IControl.h"
#include "iplug/Containers.h"

// A fixed text.
class ITextControl : public IControl {
 public:
  ITextControl(IPlugBase* plug, IRECT rect, int paramIdx, const IText& text, const char* str = "");
  bool Draw(IGraphics* graphics) override;

  void SetTextFromPlug(const char* text);  // an equal text changes nothing

 protected:
  HeapString mStr;
};

// What a parameter shows; a press opens typed entry.
class ICaptionControl : public ITextControl {
 public:
  ICaptionControl(IPlugBase* plug, IRECT rect, int paramIdx, const IText& text,
                  bool showParamLabel = true);
  void OnMouseDown(int x, int y, IMouseMod* mod) override;
  void OnMouseDblClick(int x, int y, IMouseMod* mod) override;
  bool Draw(IGraphics* graphics) override;

 private:
  bool mShowParamLabel;
};

// One line of text in a font of pictures: frame 1 is the blank, cell after cell in character order.
class IBitmapTextControl : public IControl {
 public:
  IBitmapTextControl(IPlugBase* plug, IRECT rect, int paramIdx, const IBitmap& textBitmap,
                     const char* str, int charWidth, int charHeight);
  bool Draw(IGraphics* graphics) override;

  void SetTextFromPlug(const char* text);  // an equal text changes nothing

 private:
  HeapString mStr;
  int mCharWidth, mCharHeight;  // of one cell, in pixels
  IBitmap mTextBitmap;
};
