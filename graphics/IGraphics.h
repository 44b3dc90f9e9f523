// The editor: its controls, its canvas, the drawing primitives and the routing of input. Tolmara
// uses a background picture, bitmaps, text, lines, circles and filled rectangles, menus, typed
// entry and links; the other primitives, masks, key catcher and file prompts wait for other
// editors.
#pragma once

#include <memory>

#include "graphics/IControl.h"
#include "graphics/IGraphicsTypes.h"
#include "graphics/IPopupMenu.h"
#include "iplug/Containers.h"

class IParam;
class LICE_IBitmap;
class LICE_MemBitmap;
class LICE_SysBitmap;

// A canvas of fixed size with an ordered list of controls; the order is the drawing order. The
// platform's class supplies the virtual operations. One thread at a time, the editor's, runs all
// of it; only SetParameterFromPlug, SetControlFromPlug and SetAllControlsDirty may come from the
// host's thread at any time, while no control is being added or removed.
class IGraphics {
 public:
  // Key codes of OnKeyDown; digits run from kKey0 to kKey0 + 9, letters from kKeyA to kKeyA + 25.
  enum EKey { kKeySpace = 0, kKeyUp, kKeyDown, kKeyLeft, kKeyRight, kKey0 = 5, kKeyA = 15 };
  enum EFileAction { kFileOpen = 0, kFileSave = 1 };

  // `fps` of 0 or below means 25.
  IGraphics(IPlugBase* plug, int width, int height, int fps);
  IGraphics(const IGraphics&) = delete;
  IGraphics& operator=(const IGraphics&) = delete;

  // Platform services, in the order of the table.
  virtual bool DrawScreen(IRECT* rect) = 0;  // the whole canvas to the window; false without one
  virtual bool DrawIText(IText* text, const char* str, IRECT* rect) = 0;
  virtual void EndUserInput() = 0;  // closes an open text field
  virtual void Resize(int w, int h);
  virtual bool WindowIsOpen() = 0;
  virtual const char* GetGUIAPI() = 0;
  // `type`: 0 OK; 1 OK, Cancel; 3 Yes, No, Cancel; 4 Yes, No.
  virtual int ShowMessageBox(const char* text, const char* caption, int type) = 0;
  // Waits for the choice: the menu that holds the chosen item, or null when dismissed.
  virtual IPopupMenu* CreateIPopupMenu(IPopupMenu* menu, IRECT* rect) = 0;
  // Opens a field that ends in SetFromStringAfterPrompt, or without `param` in TextFromTextEntry.
  virtual void CreateTextEntry(IControl* control, IText* text, IRECT* rect, const char* str,
                               IParam* param) = 0;
  virtual void HostPath(HeapString* path) = 0;     // the plug-in's executable
  virtual void PluginPath(HeapString* path) = 0;   // its directory, ending in "/"
  virtual void DesktopPath(HeapString* path) = 0;  // ending in "/"
  virtual void PromptForFile(HeapString* file, int action, HeapString* dir,
                             const char* extensions) = 0;  // `file` is "" when nothing was chosen
  virtual bool PromptForColor(IColor* color, const char* prompt);
  virtual bool OpenURL(const char* url, const char* errMsg = nullptr) = 0;  // true: opened
  virtual void* OpenWindow(void* parent) = 0;  // null when no window could be made
  // kept: never called, but without it the operations below would change their place in the table.
  virtual bool ReservedHook() { return false; }
  virtual void* OpenWindowFromHandle(void* windowRef) = 0;
  virtual void CloseWindowFromHandle() = 0;
  virtual void CloseWindow() = 0;
  virtual void* GetWindow() = 0;
  virtual ~IGraphics();
  virtual void HideMouseCursor() = 0;
  virtual void ShowMouseCursor() = 0;

 protected:
  // A new bitmap for the cache to own, or null.
  virtual LICE_IBitmap* OSLoadBitmap(int id, const char* name) = 0;

 public:
  // Set-up.
  void PrepDraw();
  // The picture becomes control 0, whatever was attached before.
  void AttachBackground(int id, const char* name);
  void AttachPanelBackground(const IColor* color);
  int AttachControl(IControl* control);   // takes ownership; returns its index
  void SetKeyCatcher(IControl* control);  // takes ownership; gets keys that no control is under
  IBitmap LoadIBitmap(int id, const char* name, int nStates = 1, bool framesAreHorizontal = false);
  static void RetainBitmap(IBitmap* bitmap);   // the cache owns the pixels from now on
  static void ReleaseBitmap(IBitmap* bitmap);  // deletes them
  void HandleMouseOver(bool handle) { mHandleMouseOver = handle; }
  void SetStrictDrawing(bool strict);

  // Values and states of the controls.
  void SetParameterFromPlug(int paramIdx, double value, bool normalized);
  void SetControlFromPlug(int controlIdx, double normalizedValue);
  void SetAllControlsDirty();
  void HideControl(int paramIdx, bool hide);
  void GrayOutControl(int paramIdx, bool gray);
  void ClampControl(int paramIdx, double lo, double hi, bool normalized);
  void OnGUIIdle();

  // Frames. IsDirty sets `rect` to the union of all dirty controls and allocates nothing; Draw
  // takes that rectangle, draws it anew and cleans every control. Outside of it only those texts
  // change that stand out of a control which lies in it.
  bool IsDirty(IRECT* rect);
  bool Draw(IRECT* rect);

  // Input, in canvas coordinates.
  void OnMouseDown(int x, int y, IMouseMod* mod);
  void OnMouseUp(int x, int y, IMouseMod* mod);
  void OnMouseDrag(int x, int y, IMouseMod* mod);
  bool OnMouseDblClick(int x, int y, IMouseMod* mod);  // true: it was taken as a press
  void OnMouseOver(int x, int y, IMouseMod* mod);
  void OnMouseOut();
  void OnMouseWheel(int x, int y, IMouseMod* mod, int d);
  bool OnKeyDown(int x, int y, int key);  // false: not taken
  void ReleaseMouseCapture();

  // Typed entry and menus of a parameter.
  void PromptUserInput(IControl* control, IParam* param, IRECT* textRect);
  void SetFromStringAfterPrompt(IControl* control, IParam* param, const char* text);

  // Drawing on the canvas, which PrepDraw has made. Null blends copy at full weight. All but
  // DrawBitmap reach the whole canvas; the two forms of that are clipped to the rectangle in hand.
  bool DrawBitmap(const IBitmap* bitmap, const IRECT* dest, int srcX, int srcY,
                  const IChannelBlend* blend = nullptr);
  bool DrawBitmap(const IBitmap* bitmap, const IRECT* dest, int state,
                  const IChannelBlend* blend = nullptr);  // `state` counts frames from 1
  // Angles in radians, 0 upright, clockwise.
  bool DrawRotatedBitmap(const IBitmap* bitmap, int destCtrX, int destCtrY, double angle,
                         int yOffsetZeroDeg = 0, const IChannelBlend* blend = nullptr);
  bool DrawRotatedMask(const IBitmap* base, const IBitmap* mask, const IBitmap* top, int x, int y,
                       double angle, const IChannelBlend* blend = nullptr);
  bool DrawPoint(const IColor* color, float x, float y, const IChannelBlend* blend = nullptr);
  bool ForcePixel(const IColor* color, int x, int y);
  IColor GetPoint(int x, int y) const;
  bool DrawLine(const IColor* color, float x1, float y1, float x2, float y2,
                const IChannelBlend* blend = nullptr, bool antiAlias = false);
  bool DrawArc(const IColor* color, float cx, float cy, float r, float minAngle, float maxAngle,
               const IChannelBlend* blend = nullptr, bool antiAlias = false);
  bool DrawCircle(const IColor* color, float cx, float cy, float r,
                  const IChannelBlend* blend = nullptr, bool antiAlias = false);
  bool FillCircle(const IColor* color, float cx, float cy, float r,
                  const IChannelBlend* blend = nullptr, bool antiAlias = false);
  bool RoundRect(const IColor* color, const IRECT* rect, const IChannelBlend* blend,
                 int cornerRadius, bool antiAlias);
  bool FillRoundRect(const IColor* color, const IRECT* rect, const IChannelBlend* blend,
                     int cornerRadius, bool antiAlias);
  bool FillIRect(const IColor* color, const IRECT* rect, const IChannelBlend* blend = nullptr);
  bool FillTriangle(const IColor* color, int x1, int y1, int x2, int y2, int x3, int y3,
                    const IChannelBlend* blend = nullptr);
  // `x` and `y` hold `nPoints` corners each.
  bool FillIConvexPolygon(const IColor* color, const int* x, const int* y, int nPoints,
                          const IChannelBlend* blend = nullptr);
  bool DrawRect(const IColor* color, const IRECT* rect);
  bool DrawVerticalLine(const IColor* color, int x, int y1, int y2);
  bool DrawHorizontalLine(const IColor* color, int y, int x1, int x2);
  bool DrawVerticalLine(const IColor* color, const IRECT* rect, float fraction);
  bool DrawHorizontalLine(const IColor* color, const IRECT* rect, float fraction);
  bool DrawRadialLine(const IColor* color, float cx, float cy, float angle, float rMin, float rMax,
                      const IChannelBlend* blend = nullptr, bool antiAlias = false);
  // Draws, or with `measure` only sets `rect` to the area taken; `bitmap` may then be null. True
  // for an empty text; false when no font can be made. Drawing unites `ink`, if given, with the
  // area that it may have changed.
  static bool DrawTextOn(LICE_IBitmap* bitmap, IText* text, const char* str, IRECT* rect,
                         bool measure, IRECT* ink = nullptr);
  IBitmap ScaleBitmap(const IBitmap* bitmap, int w, int h);
  IBitmap CropBitmap(const IBitmap* bitmap, const IRECT* rect);
  uint32_t* GetBits() const;  // first pixel of the canvas, null before PrepDraw
  LICE_SysBitmap* GetDrawBitmap() const { return mDrawBitmap.get(); }

  IPlugBase* GetPlug() const { return mPlug; }
  int Width() const { return mWidth; }
  int Height() const { return mHeight; }
  int FPS() const { return mFPS; }
  int NControls() const { return mControls.GetSize(); }
  IControl* GetControl(int idx) const { return mControls.Get(idx); }
  int GetMouseCapture() const { return mMouseCapture; }
  // Who would get a press there, null for nobody.
  IControl* ControlAt(int x, int y) const { return GetControl(GetMouseControlIdx(x, y)); }

 protected:
  // The control that gets an event there: the one that holds the mouse, else the topmost; -1: none.
  int GetMouseControlIdx(int x, int y, bool mouseOver = false) const;
  IRECT mInk;  // texts of the control that is being drawn; DrawIText widens it

 private:
  void CaptureMouse(int controlIdx, int x, int y);
  void InsertBackground(std::unique_ptr<IControl> control);
  void DeleteControls();
  void DrawAll();
  IRECT DrawArea(const IRECT& rect, bool clean);
  void DrawInside(const IRECT& area, bool clean);
  bool DrawControl(IControl* control);
  IRECT WithReach(IRECT rect) const;
  void PromptWithMenu(IControl* control, IParam* param, IRECT* rect);

  OwnedPointerList<IControl> mControls;
  IPlugBase* mPlug;  // not owned
  IRECT mDrawRECT;   // what is being drawn

 protected:
  bool mCursorHidden = false;
  int mHiddenMousePointX = -1, mHiddenMousePointY = -1;  // where the cursor was hidden

 private:
  std::unique_ptr<LICE_SysBitmap> mDrawBitmap;  // the canvas
  std::unique_ptr<LICE_MemBitmap> mTmpBitmap;   // where masks are combined
  int mWidth, mHeight, mFPS;
  int mMouseCapture = -1;          // index of the control that holds the mouse
  int mMouseOver = -1;             // index of the control under the mouse
  int mMouseX = -1, mMouseY = -1;  // last position that a control got
  int mLastClickedParam = -1;
  bool mHandleMouseOver = false;
  bool mStrict = true;
  std::unique_ptr<IControl> mKeyCatcher;
  std::unique_ptr<LICE_SysBitmap> mFrameBitmap;  // replaces the canvas during a partial draw
};
