// Mouse, keys and drawing of menus.
#include "graphics/x11/widgets/X11Menu.h"

#include "graphics/IGraphics.h"
#include "graphics/IPopupMenu.h"
#include "graphics/lice/LICE_Draw.h"
#include "graphics/x11/server/X11Connection.h"

namespace {

constexpr int kTextSize = 12;
constexpr IColor kGround(255, 27, 26, 24);
constexpr IColor kBorder(255, 68, 63, 54);
constexpr IColor kText(255, 255, 231, 168);
constexpr IColor kFaintText(255, 125, 115, 92);
constexpr IColor kLitGround(255, 255, 187, 0);
constexpr IColor kLitText(255, 18, 17, 16);

constexpr xcb_timestamp_t kOpeningTime_ms = 300;
constexpr int kOpeningDistance = 5;  // pixels
constexpr std::chrono::milliseconds kGrabTime(500);

bool DrawText(LICE_IBitmap* bitmap, const std::string& text, const IColor& color, IRECT* rect,
              bool measure) {
  IText style(kTextSize, color);
  style.mAlign = IText::kAlignNear;
  return IGraphics::DrawTextOn(bitmap, &style, text.c_str(), rect, measure);
}

int WidthOf(const std::string& text) {
  IRECT extent;
  DrawText(nullptr, text, kText, &extent, true);
  return extent.W();
}

IRECT SizeOf(const IPopupMenu& menu, int depth) {
  const MenuLayout layout(menu, WidthOf);
  IRECT size(0, 0, layout.Width(), layout.Height());
  for (const MenuRow& row : layout.Rows()) {
    if (row.submenu && depth < kDeepestMenu) size = size.Union(SizeOf(*row.submenu, depth + 1));
  }
  return size;
}

}  // namespace

X11Grab::X11Grab(X11Connection& connection, xcb_window_t window)
    : mConnection(connection),
      mWindow(window),
      mGiveUpTime(std::chrono::steady_clock::now() + kGrabTime) {
  Retry(mGiveUpTime - kGrabTime);
}

X11Grab::~X11Grab() {
  // Both are without effect where nothing was granted.
  xcb_ungrab_pointer(mConnection.Get(), XCB_CURRENT_TIME);
  xcb_ungrab_keyboard(mConnection.Get(), XCB_CURRENT_TIME);
}

void X11Grab::Retry(std::chrono::steady_clock::time_point now) {
  if ((mHasPointer && mHasKeyboard) || now > mGiveUpTime) return;
  xcb_connection_t* c = mConnection.Get();
  constexpr uint16_t kEvents =
      XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION;
  const auto pointer = xcb_grab_pointer(c, 1, mWindow, kEvents, XCB_GRAB_MODE_ASYNC,
                                        XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
  const auto keyboard =
      xcb_grab_keyboard(c, 1, mWindow, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
  const auto gotPointer = mConnection.Await<xcb_grab_pointer_reply_t>(pointer);
  const auto gotKeyboard = mConnection.Await<xcb_grab_keyboard_reply_t>(keyboard);
  mHasPointer = gotPointer && gotPointer->status == XCB_GRAB_STATUS_SUCCESS;
  mHasKeyboard = gotKeyboard && gotKeyboard->status == XCB_GRAB_STATUS_SUCCESS;
}

X11Menu::Panel::Panel(X11Menu& owner, IPopupMenu& panelMenu, const IRECT& rect,
                      MenuLayout&& panelLayout)
    : menu(panelMenu),
      layout(std::move(panelLayout)),
      place(rect),
      pane(owner.mConnection, owner.mLook, owner.mStage.parent,
           {rect.L - owner.mStage.origin.x, rect.T - owner.mStage.origin.y,
            rect.R - owner.mStage.origin.x, rect.B - owner.mStage.origin.y},
           owner.mStage.kind, owner.mStage.owner) {}

X11Menu::X11Menu(X11Connection& connection, const X11Look& look, const Stage& stage,
                 xcb_window_t editor, IPopupMenu& menu, const X11Point& corner,
                 const Opening& opening)
    : mConnection(connection),
      mLook(look),
      mStage(stage),
      mGrab(connection, editor),
      mOpening(opening) {
  MenuLayout layout(menu, WidthOf);
  const IRECT place(corner.x, corner.y, corner.x + layout.Width(), corner.y + layout.Height());
  OpenPanel(menu, place, std::move(layout));
}

IRECT X11Menu::LargestSize(const IPopupMenu& menu) { return SizeOf(menu, 0); }

void X11Menu::OpenPanel(IPopupMenu& menu, const IRECT& place, MenuLayout&& layout) {
  const IRECT fitted = MovedInto(place, mStage.area);
  mPanels.push_back(std::make_unique<Panel>(*this, menu, fitted, std::move(layout)));
  Draw(Last());
}

// Beside the lit row of the last panel, on the right where there is room.
void X11Menu::OpenSubmenu() {
  if (mPanels.size() > kDeepestMenu) return;
  const Panel& parent = Last();
  const MenuRow& row = parent.layout.Row(parent.lit);
  MenuLayout layout(*row.submenu, WidthOf);
  constexpr int kOverlap = 2;
  const int top = parent.place.T + row.top - parent.scroll - kOverlap;
  int left = parent.place.R - kOverlap;
  if (left + layout.Width() > mStage.area.R) left = parent.place.L + kOverlap - layout.Width();
  const IRECT place(left, top, left + layout.Width(), top + layout.Height());
  OpenPanel(*row.submenu, place, std::move(layout));
}

int X11Menu::PanelAt(int x, int y) const {
  for (int i = static_cast<int>(mPanels.size()) - 1; i >= 0; --i) {
    if (mPanels[static_cast<std::size_t>(i)]->place.Contains(x, y)) return i;
  }
  return -1;
}

int X11Menu::RowAt(int panel, int y) const {
  const Panel& p = *mPanels[static_cast<std::size_t>(panel)];
  return p.layout.RowAt(y - p.place.T + p.scroll);
}

void X11Menu::Light(int panel, int row) {
  Panel& p = *mPanels[static_cast<std::size_t>(panel)];
  if (row >= 0 && !p.layout.Row(row).CanBeLit()) row = -1;
  const bool hasSubmenuOpen = static_cast<std::size_t>(panel) + 1 < mPanels.size();
  if (p.lit == row && (hasSubmenuOpen || row < 0 || !p.layout.Row(row).submenu)) return;
  mPanels.resize(static_cast<std::size_t>(panel) + 1);
  p.lit = row;
  Draw(p);
  if (row >= 0 && p.layout.Row(row).submenu) OpenSubmenu();
}

void X11Menu::Motion(const xcb_motion_notify_event_t& event) {
  const int dx = event.root_x - mOpening.point.x;
  const int dy = event.root_y - mOpening.point.y;
  if (std::max(std::abs(dx), std::abs(dy)) > kOpeningDistance) mHasMoved = true;
  const int panel = PanelAt(event.root_x, event.root_y);
  if (panel >= 0) Light(panel, RowAt(panel, event.root_y));
}

void X11Menu::Press(const xcb_button_press_event_t& event) {
  mHasMoved = true;
  const int panel = PanelAt(event.root_x, event.root_y);
  if (panel < 0) return Dismiss();
  Light(panel, RowAt(panel, event.root_y));
}

void X11Menu::Release(const xcb_button_release_event_t& event) {
  if (!mHasMoved && event.time - mOpening.time < kOpeningTime_ms) return;
  const int panel = PanelAt(event.root_x, event.root_y);
  if (panel < 0) return;
  Light(panel, RowAt(panel, event.root_y));
  if (static_cast<std::size_t>(panel) + 1 == mPanels.size()) Choose();
}

void X11Menu::Choose() {
  Panel& panel = Last();
  if (panel.lit < 0 || LeadsOn(panel)) return;
  panel.menu.SetChosenItemIdx(panel.lit);
  mChosen = &panel.menu;
  Dismiss();
}

void X11Menu::Key(const X11Key& key) {
  switch (key.symbol) {
    case kX11Down: return Step(1);
    case kX11Up: return Step(-1);
    case kX11Home: Last().lit = -1; return Step(1);
    case kX11End: Last().lit = -1; return Step(-1);
    case kX11Right: return StepIn();
    case kX11Left:
      if (mPanels.size() > 1) mPanels.pop_back();
      return;
    case kX11Return:
    case ' ': return Enter();
    case kX11Escape: return Dismiss();
    default: return;
  }
}

// Moves the light without opening a sub-menu, which the next step would have to leave again.
void X11Menu::Step(int direction) {
  Panel& panel = Last();
  const int next = panel.layout.Next(panel.lit, direction);
  if (next < 0) return;
  panel.lit = next;
  ScrollToLit(panel);
  Draw(panel);
}

void X11Menu::StepIn() {
  const bool openedByMouse = mPanels.size() > 1 && Last().lit < 0;
  if (!openedByMouse && !LeadsOn(Last())) return;
  if (!openedByMouse) OpenSubmenu();
  Step(1);
}

void X11Menu::Enter() {
  if (LeadsOn(Last())) {
    StepIn();
  } else {
    Choose();
  }
}

bool X11Menu::LeadsOn(const Panel& panel) const {
  return panel.lit >= 0 && panel.layout.Row(panel.lit).submenu;
}

void X11Menu::ScrollToLit(Panel& panel) const {
  const MenuRow& row = panel.layout.Row(panel.lit);
  const int top = row.top - MenuLayout::kPadding;
  const int bottom = row.top + row.height + MenuLayout::kPadding - panel.place.H();
  panel.scroll = std::clamp(panel.scroll, std::min(bottom, top), top);
}

bool X11Menu::Expose(xcb_window_t window, const IRECT& rect) {
  for (const auto& panel : mPanels) {
    if (!panel->pane.Is(window)) continue;
    panel->pane.Expose(rect);
    return true;
  }
  return false;
}

void X11Menu::Draw(Panel& panel) {
  LICE_IBitmap* bitmap = &panel.pane.Bitmap();
  const int w = panel.place.W();
  const int h = panel.place.H();
  LICE_FillRect(bitmap, 0, 0, w, h, kBorder.Pixel());
  LICE_FillRect(bitmap, 1, 1, w - 2, h - 2, kGround.Pixel());
  for (int i = 0; i < static_cast<int>(panel.layout.Rows().size()); ++i) DrawRow(panel, i);
  panel.pane.Show();
}

void X11Menu::DrawRow(Panel& panel, int index) {
  LICE_IBitmap* bitmap = &panel.pane.Bitmap();
  const MenuRow& row = panel.layout.Row(index);
  const int w = panel.place.W();
  const int top = row.top - panel.scroll;
  const int middle = top + row.height / 2;
  if (row.separator) return LICE_FillRect(bitmap, 8, middle, w - 16, 1, kBorder.Pixel());

  const bool lit = index == panel.lit;
  const IColor& color = lit ? kLitText : row.enabled ? kText : kFaintText;
  if (lit) LICE_FillRect(bitmap, 1, top, w - 2, row.height, kLitGround.Pixel());
  IRECT place(MenuLayout::kTextLeft + (row.indented ? MenuLayout::kIndentation : 0),
              middle - kTextSize / 2, w, top + row.height);
  DrawText(bitmap, row.text, color, &place, false);
  const auto y = static_cast<float>(middle);
  if (row.checked) {
    LICE_Line(bitmap, 7.0f, y, 10.0f, y + 3.5f, color.Pixel());
    LICE_Line(bitmap, 10.0f, y + 3.5f, 15.0f, y - 4.0f, color.Pixel());
  }
  if (row.submenu) {
    LICE_FillTriangle(bitmap, w - 13, middle - 4, w - 13, middle + 4, w - 9, middle, color.Pixel());
  }
}
