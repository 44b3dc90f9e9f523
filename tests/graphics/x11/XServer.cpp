#include "tests/graphics/x11/XServer.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <xcb/xtest.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <thread>

namespace {

int EntryCount(const char* folder) {
  const std::filesystem::directory_iterator entries(folder);
  return static_cast<int>(std::distance(begin(entries), end(entries)));
}

std::string Line(std::FILE* file) {
  char line[256] = "";
  if (!file || !std::fgets(line, sizeof line, file)) return "";
  line[std::strcspn(line, "\n")] = 0;
  return line;
}

}  // namespace

bool Eventually(const std::function<bool()>& condition) {
  using namespace std::chrono;
  const auto end = steady_clock::now() + seconds(60);
  while (!condition()) {
    if (steady_clock::now() > end) return false;
    std::this_thread::sleep_for(milliseconds(2));
  }
  return true;
}

TestProgram::TestProgram(const std::string& command)
    : mOutput(popen(("echo $$; exec " + command + " 2>/dev/null").c_str(), "re")) {
  mPid = std::atoi(Line(mOutput).c_str());
  mFirstLine = Line(mOutput);
  EXPECT_NE(mFirstLine, "") << command << " does not start";
}

void TestProgram::Kill() {
  if (!mOutput) return;
  kill(mPid, SIGTERM);
  pclose(std::exchange(mOutput, nullptr));
}

XServer::XServer(const std::string& options)
    : mProgram("Xvfb -displayfd 1 -nolisten tcp -noreset " + options) {
  setenv("DISPLAY", (":" + mProgram.FirstLine()).c_str(), 1);
}

XServer::~XServer() { unsetenv("DISPLAY"); }

XUser::XUser() : mConnection(-1) { EXPECT_TRUE(mConnection.IsOpen()); }

xcb_window_t XUser::MakeWindow(const IRECT& place, uint32_t events, int depth,
                               xcb_visualid_t visual) {
  if (!depth) depth = Screen().root_depth;
  if (!visual) visual = Screen().root_visual;
  const xcb_colormap_t colormap = xcb_generate_id(Get());
  xcb_create_colormap(Get(), XCB_COLORMAP_ALLOC_NONE, colormap, Screen().root, visual);
  const xcb_window_t window = xcb_generate_id(Get());
  const uint32_t values[] = {0, 0, 1, events, colormap};
  xcb_create_window(Get(), static_cast<uint8_t>(depth), window, Screen().root,
                    static_cast<int16_t>(place.L), static_cast<int16_t>(place.T),
                    static_cast<uint16_t>(place.W()), static_cast<uint16_t>(place.H()), 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                    XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT |
                        XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
                    values);
  xcb_map_window(Get(), window);
  Sync();
  return window;
}

void XUser::Destroy(xcb_window_t window) {
  xcb_destroy_window(Get(), window);
  Sync();
}

std::vector<xcb_window_t> XUser::ChildrenOf(xcb_window_t window) {
  const auto tree = Ask<xcb_query_tree_reply_t>(xcb_query_tree(Get(), window));
  if (!tree) return {};
  const xcb_window_t* children = xcb_query_tree_children(tree.get());
  return {children, children + xcb_query_tree_children_length(tree.get())};
}

IRECT XUser::Place(xcb_window_t window) {
  const auto g = Ask<xcb_get_geometry_reply_t>(xcb_get_geometry(Get(), window));
  return g ? IRECT(g->x, g->y, g->x + g->width, g->y + g->height) : IRECT();
}

xcb_window_t XUser::Focus() {
  const auto focus = Ask<xcb_get_input_focus_reply_t>(xcb_get_input_focus(Get()));
  return focus ? focus->focus : XCB_NONE;
}

void XUser::SetFocus(xcb_window_t window) {
  xcb_set_input_focus(Get(), XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
  Sync();
}

bool XUser::GrabKeys() {
  const auto reply = Ask<xcb_grab_keyboard_reply_t>(xcb_grab_keyboard(
      Get(), 0, Screen().root, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
  return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

bool XUser::CanGrab() {
  const auto mouse = Ask<xcb_grab_pointer_reply_t>(
      xcb_grab_pointer(Get(), 0, Screen().root, 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                       XCB_NONE, XCB_NONE, XCB_CURRENT_TIME));
  const bool granted = GrabKeys() && mouse && mouse->status == XCB_GRAB_STATUS_SUCCESS;
  xcb_ungrab_pointer(Get(), XCB_CURRENT_TIME);
  xcb_ungrab_keyboard(Get(), XCB_CURRENT_TIME);
  Sync();
  return granted;
}

void XUser::Input(uint8_t type, int detail, int x, int y) {
  xcb_test_fake_input(Get(), type, static_cast<uint8_t>(detail), XCB_CURRENT_TIME, Screen().root,
                      static_cast<int16_t>(x), static_cast<int16_t>(y), 0);
}

void XUser::Fake(uint8_t type, int detail, int x, int y) {
  Input(type, detail, x, y);
  Sync();
}

X11Point XUser::Pointer() {
  const auto place = Ask<xcb_query_pointer_reply_t>(xcb_query_pointer(Get(), Screen().root));
  return {place->root_x, place->root_y};
}

void XUser::Click(int button, int times) {
  for (int i = 0; i < 2 * times; ++i) Input(i % 2 ? XCB_BUTTON_RELEASE : XCB_BUTTON_PRESS, button);
  Sync();
}

xcb_keycode_t XUser::CodeOf(xcb_keysym_t symbol, bool* shifted) {
  const int first = mConnection.Setup()->min_keycode;
  const int count = mConnection.Setup()->max_keycode - first + 1;
  const auto mapping = Ask<xcb_get_keyboard_mapping_reply_t>(xcb_get_keyboard_mapping(
      Get(), static_cast<xcb_keycode_t>(first), static_cast<uint8_t>(count)));
  const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
  for (int i = 0; i < 2 * count; ++i) {  // plain symbols before those with shift
    if (symbols[i % count * mapping->keysyms_per_keycode + i / count] != symbol) continue;
    if (shifted) *shifted = i >= count;
    return static_cast<xcb_keycode_t>(first + i % count);
  }
  ADD_FAILURE() << "no key for symbol " << symbol;
  return 0;
}

void XUser::Type(xcb_keysym_t symbol) {
  bool shifted = false;
  CodeOf(symbol, &shifted);
  if (shifted) HoldKey(kShiftKey);
  HoldKey(symbol);
  ReleaseKey(symbol);
  if (shifted) ReleaseKey(kShiftKey);
}

void XUser::Type(const std::string& text) {
  for (const char c : text) Type(static_cast<xcb_keysym_t>(c));
}

void XUser::TypeWith(xcb_keysym_t modifier, xcb_keysym_t symbol) {
  HoldKey(modifier);
  HoldKey(symbol);
  ReleaseKey(symbol);
  ReleaseKey(modifier);
}

std::vector<uint32_t> XUser::Picture(xcb_window_t window, const IRECT& rect) {
  const auto image = Ask<xcb_get_image_reply_t>(
      xcb_get_image(Get(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, static_cast<int16_t>(rect.L),
                    static_cast<int16_t>(rect.T), static_cast<uint16_t>(rect.W()),
                    static_cast<uint16_t>(rect.H()), ~0U));
  if (!image) return {};
  const std::size_t pixelBytes = image->depth <= 16 ? 2 : 4;
  const uint32_t mask = image->depth < 32 ? (1U << image->depth) - 1 : ~0U;
  const int rowBytes = xcb_get_image_data_length(image.get()) / rect.H();
  std::vector<uint32_t> pixels;
  for (int y = 0; y < rect.H(); ++y) {
    const uint8_t* row = xcb_get_image_data(image.get()) + ptrdiff_t{y} * rowBytes;
    for (int x = 0; x < rect.W(); ++x, row += pixelBytes) {
      uint32_t pixel = 0;
      std::memcpy(&pixel, row, pixelBytes);
      pixels.push_back(pixel & mask);
    }
  }
  return pixels;
}

uint32_t XUser::ScreenPixel(int x, int y) {
  const auto pixels = Picture(Screen().root, {x, y, x + 1, y + 1});
  return pixels.empty() ? ~0U : pixels[0];
}

X11Event XUser::NextEvent(int type) {
  X11Event event;
  const bool came = Eventually([&] {
    event = mConnection.NextEvent();
    return event && X11TypeOf(*event) == type;
  });
  return came ? std::move(event) : nullptr;
}

void XUser::Send(xcb_window_t window, uint32_t mask, const void* event) {
  xcb_send_event(Get(), 0, window, mask, static_cast<const char*>(event));
  Sync();
}

xcb_atom_t XUser::Atom(const char* name) {
  const auto length = static_cast<uint16_t>(std::strlen(name));
  return Ask<xcb_intern_atom_reply_t>(xcb_intern_atom(Get(), 0, length, name))->atom;
}

void XUser::SetText(xcb_window_t window, xcb_atom_t name, const std::string& text,
                    xcb_atom_t type) {
  xcb_change_property(Get(), XCB_PROP_MODE_REPLACE, window, name, type, 8,
                      static_cast<uint32_t>(text.size()), text.data());
}

std::string XUser::Text(xcb_window_t window, xcb_atom_t name) {
  const auto reply = Ask<xcb_get_property_reply_t>(
      xcb_get_property(Get(), 0, window, name, XCB_ATOM_ANY, 0, 1000));
  if (!reply || reply->format != 8) return "";
  return {static_cast<const char*>(xcb_get_property_value(reply.get())),
          static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

int ThreadCount() { return EntryCount("/proc/self/task"); }
int DescriptorCount() { return EntryCount("/proc/self/fd"); }

int ChildCount() {
  int count = 0;
  // Each thread's own, whether they still run or nobody has waited for them.
  for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
    std::ifstream file(task.path() / "children");
    for (int pid; file >> pid;) ++count;
  }
  return count;
}
