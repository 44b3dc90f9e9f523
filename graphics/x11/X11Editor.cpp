// Opening the window, the loop and its frames.
#include "graphics/x11/X11Editor.h"

#include <poll.h>

#include <utility>

#include "graphics/lice/LICE_Bitmap.h"
#include "graphics/windows/FrameArea.h"
#include "graphics/x11/IGraphicsX11.h"

namespace {

constexpr uint32_t kEditorEvents =
    XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_BUTTON_PRESS |
    XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_ENTER_WINDOW |
    XCB_EVENT_MASK_LEAVE_WINDOW | XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_FOCUS_CHANGE;

}  // namespace

X11Editor::X11Editor(IGraphicsX11& graphics, const X11Ending& ending)
    : mGraphics(graphics), mEnding(ending), mConnection(ending.Fd()), mMouse(graphics) {}

X11Editor::~X11Editor() {
  EndTextEntry();
  mMouse.Cancel();
}

bool X11Editor::Open(xcb_window_t parent) {
  if (!mConnection.IsOpen() || !MakeLook(parent)) return false;
  mParent = parent;
  const IRECT all(0, 0, mGraphics.Width(), mGraphics.Height());
  mWindow.emplace(mConnection, *mLook, parent, all, X11Window::kChild, kEditorEvents);
  SetEmbedding();
  // The parent may have gone since it was looked at.
  if (!mConnection.Await<xcb_get_geometry_reply_t>(
          xcb_get_geometry(mConnection.Get(), mWindow->Id()))) {
    mWindow->Forget();
    return false;
  }
  mClipboard.emplace(mConnection, mWindow->Id());
  mKeymap.Load(mConnection);
  MakeSurface(all.W(), all.H());
  mNextFrame = Clock::now();
  Frame(mNextFrame);  // before it can be seen
  mWindow->Map();
  // Hosts look for the window as soon as this returns.
  mConnection.Await<xcb_get_input_focus_reply_t>(xcb_get_input_focus(mConnection.Get()));
  return true;
}

// Takes the parent's visual, so that nothing of the host's has to be converted by the server.
bool X11Editor::MakeLook(xcb_window_t parent) {
  xcb_connection_t* c = mConnection.Get();
  const auto attributesCookie = xcb_get_window_attributes(c, parent);
  const auto geometryCookie = xcb_get_geometry(c, parent);
  const auto attributes = mConnection.Await<xcb_get_window_attributes_reply_t>(attributesCookie);
  const auto geometry = mConnection.Await<xcb_get_geometry_reply_t>(geometryCookie);
  if (!attributes || !geometry) return false;

  xcb_visualid_t visual = attributes->visual;
  auto format =
      X11PixelFormat::Find(mConnection.Setup(), mConnection.Screen(), visual, geometry->depth);
  if (!format) {
    const xcb_screen_t& screen = mConnection.Screen();
    visual = screen.root_visual;
    format = X11PixelFormat::Find(mConnection.Setup(), screen, visual, screen.root_depth);
  }
  if (!format) return false;
  const xcb_colormap_t colormap = xcb_generate_id(c);
  xcb_create_colormap(c, XCB_COLORMAP_ALLOC_NONE, colormap, parent, visual);
  mLook.emplace(X11Look{visual, colormap, *format});
  return true;
}

void X11Editor::MakeSurface(int width, int height) {
  mSurface.reset();
  mSurface.emplace(mConnection, mWindow->Id(), mLook->format, width, height, true);
  // The canvas still shows what it did when the last window closed; controls that have changed
  // since are drawn with the first frame.
  ShowCanvas({0, 0, width, height});
}

// Hosts look for this on what they embed: version 0, wishes to be mapped.
void X11Editor::SetEmbedding() {
  const uint32_t info[] = {0, 1};
  const xcb_atom_t atom = mConnection.Atom(X11Atom::kXembedInfo);
  xcb_change_property(mConnection.Get(), XCB_PROP_MODE_REPLACE, mWindow->Id(), atom, atom, 32, 2,
                      info);
}

void X11Editor::Run() {
  while (!mEnding.IsNear()) Turn();
}

// Events, a frame when it is time, and a wait for whatever comes next. True when the watched
// descriptor is readable.
bool X11Editor::Turn(int watchedFd) {
  HandleEvents();
  if (IsLost() && !std::exchange(mLossIsKnown, true)) {
    EndTextEntry();
    mMouse.Cancel();
    return false;
  }
  const Clock::time_point now = Clock::now();
  if (now >= mNextFrame && !IsLost()) Frame(now);
  xcb_flush(mConnection.Get());
  if (mEnding.IsNear()) return false;
  const int wait_ms = !IsLost() ? UntilFrame_ms() : mLossIsKnown ? -1 : 0;
  // A broken connection would be readable for ever.
  pollfd fds[] = {{mEnding.Fd(), POLLIN, 0},
                  {watchedFd, POLLIN, 0},
                  {mConnection.IsOpen() ? mConnection.Fd() : -1, POLLIN, 0}};
  poll(fds, 3, wait_ms);
  return fds[1].revents != 0;
}

int X11Editor::UntilFrame_ms() const {
  using std::chrono::milliseconds;
  const auto left = std::chrono::ceil<milliseconds>(mNextFrame - Clock::now()).count();
  return static_cast<int>(std::max<milliseconds::rep>(left, 0));
}

void X11Editor::Frame(Clock::time_point now) {
  const auto period = std::chrono::nanoseconds(1'000'000'000 / mGraphics.FPS());
  mNextFrame = std::max(mNextFrame + period, now);
  if (mField) mField->Blink(now);
  if (mMenu) mMenu->Tick(now);
  IRECT rect;
  if (!mGraphics.IsDirty(&rect)) return;
  IRECT view = FrameArea(rect).Intersect({0, 0, mGraphics.Width(), mGraphics.Height()});
  mGraphics.Draw(&view);
}

bool X11Editor::ShowCanvas(const IRECT& rect) {
  const LICE_IBitmap* canvas = mGraphics.GetCanvas();
  if (IsLost() || !mSurface || !canvas) return false;
  mSurface->Copy(*canvas, rect);
  mSurface->Show(rect);
  return true;
}

void X11Editor::Resize(int width, int height) {
  if (IsLost()) return;
  mWindow->Resize(width, height);
  MakeSurface(width, height);
}

bool X11Editor::WaitFor(int fd) {
  mMouse.Swallow();
  mInDialog = true;
  bool readable = false;
  while (!readable && !mEnding.IsNear() && !IsLost()) readable = Turn(fd);
  mInDialog = false;
  return readable;
}

X11Point X11Editor::MiddleFor(const IPopupMenu& menu) const {
  const IRECT size = X11Menu::LargestSize(menu);
  return {(mGraphics.Width() - size.W()) / 2, (mGraphics.Height() - size.H()) / 2};
}

IPopupMenu* X11Editor::RunMenu(IPopupMenu& menu, X11Point corner) {
  if (mMenu || mInDialog || IsLost() || menu.GetNItems() == 0) return nullptr;
  const auto origin = X11OriginOf(mConnection, mWindow->Id());
  if (!origin) return nullptr;
  const X11Point start{origin->x + corner.x, origin->y + corner.y};
  const IRECT window(origin->x, origin->y, origin->x + mGraphics.Width(),
                     origin->y + mGraphics.Height());
  const IRECT monitor = X11MonitorAt(mConnection, start);
  const IRECT size = X11Menu::LargestSize(menu);

  // Inside the window where it fits: that needs no place on the screen that others know of.
  X11Menu::Stage stage{window.Intersect(monitor), X11Window::kChild, mWindow->Id(), *origin,
                       XCB_NONE};
  if (size.W() > stage.area.W() || size.H() > stage.area.H()) {
    stage = {monitor, X11Window::kOverAll, mConnection.Screen().root, {}, TopLevel()};
  }
  mMouse.Swallow();
  mMenu.emplace(mConnection, *mLook, stage, mWindow->Id(), menu, start,
                X11Menu::Opening{mTime, mScreenPoint});
  while (mMenu->IsOpen() && !mEnding.IsNear() && !IsLost()) Turn();
  IPopupMenu* chosen = mMenu->Chosen();
  mMenu.reset();
  xcb_flush(mConnection.Get());  // whatever comes next, the mouse is free
  return chosen;
}

std::optional<X11Point> X11Editor::HideCursor() {
  xcb_connection_t* c = mConnection.Get();
  const auto place =
      mConnection.Await<xcb_query_pointer_reply_t>(xcb_query_pointer(c, mConnection.Screen().root));
  if (IsLost() || !place) return std::nullopt;
  // A cursor of a single pixel that is masked out: fresh pixmaps hold anything, so it is cleared.
  const xcb_pixmap_t pixmap = xcb_generate_id(c);
  const xcb_gcontext_t gc = xcb_generate_id(c);
  const xcb_cursor_t cursor = xcb_generate_id(c);
  const xcb_rectangle_t pixel{0, 0, 1, 1};
  const uint32_t clear = 0;
  xcb_create_pixmap(c, 1, pixmap, mWindow->Id(), 1, 1);
  xcb_create_gc(c, gc, pixmap, XCB_GC_FOREGROUND, &clear);
  xcb_poly_fill_rectangle(c, pixmap, gc, 1, &pixel);
  xcb_create_cursor(c, cursor, pixmap, pixmap, 0, 0, 0, 0, 0, 0, 0, 0);
  xcb_change_window_attributes(c, mWindow->Id(), XCB_CW_CURSOR, &cursor);
  xcb_free_cursor(c, cursor);
  xcb_free_gc(c, gc);
  xcb_free_pixmap(c, pixmap);
  return X11Point{place->root_x, place->root_y};
}

void X11Editor::ShowCursor(const X11Point& point) {
  if (IsLost()) return;
  const xcb_cursor_t parents = XCB_NONE;
  xcb_warp_pointer(mConnection.Get(), XCB_NONE, mConnection.Screen().root, 0, 0, 0, 0,
                   X11Int<int16_t>(point.x), X11Int<int16_t>(point.y));
  xcb_change_window_attributes(mConnection.Get(), mWindow->Id(), XCB_CW_CURSOR, &parents);
}
