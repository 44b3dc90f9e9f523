#include "tests/graphics/x11/XServer.h"

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <xcb/xtest.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <thread>

namespace {

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

int EntryCount(const char* folder) {
  int count = 0;
  DIR* dir = opendir(folder);
  while (const dirent* entry = dir ? readdir(dir) : nullptr) count += entry->d_name[0] != '.';
  if (dir) closedir(dir);
  return count;
}

}  // namespace

bool Eventually(const std::function<bool()>& condition) {
  using namespace std::chrono;
  const auto end = steady_clock::now() + seconds(10);
  while (!condition()) {
    if (steady_clock::now() > end) return false;
    std::this_thread::sleep_for(milliseconds(2));
  }
  return true;
}

TestProgram::TestProgram(std::vector<std::string> arguments) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], 3);
  posix_spawn_file_actions_adddup2(&actions, ends[1], 1);
  posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
  if (posix_spawnp(&mPid, arguments[0].c_str(), &actions, nullptr, Pointers(arguments).data(),
                   environ) != 0) {
    mPid = 0;
    ADD_FAILURE() << arguments[0] << " cannot be started";
  }
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  for (char c = 0; read(ends[0], &c, 1) == 1 && c != '\n';) mFirstLine += c;
  close(ends[0]);
}

TestProgram::~TestProgram() { Kill(); }

void TestProgram::Kill() {
  if (!mPid) return;
  kill(mPid, SIGTERM);
  waitpid(mPid, nullptr, 0);
  mPid = 0;
}

XServer::XServer(int depth, std::vector<std::string> options) {
  const std::string screen =
      std::to_string(kWidth) + "x" + std::to_string(kHeight) + "x" + std::to_string(depth);
  std::vector<std::string> command = {"Xvfb", "-displayfd", "3",   "-screen", "0",
                                      screen, "-nolisten",  "tcp", "-noreset"};
  command.insert(command.end(), options.begin(), options.end());
  mProgram = std::make_unique<TestProgram>(command);
  setenv("DISPLAY", (":" + mProgram->FirstLine()).c_str(), 1);
}

XServer::~XServer() { unsetenv("DISPLAY"); }

XUser::XUser() : mConnection(xcb_connect(nullptr, nullptr)) {
  EXPECT_EQ(xcb_connection_has_error(mConnection), 0);
  mScreen = xcb_setup_roots_iterator(xcb_get_setup(mConnection)).data;
  Sync();
}

XUser::~XUser() { xcb_disconnect(mConnection); }

void XUser::Sync() const { Focus(); }

xcb_window_t XUser::MakeWindow(const IRECT& place, uint32_t events) const {
  const xcb_window_t window = xcb_generate_id(mConnection);
  const uint32_t values[] = {mScreen->black_pixel, 1, events};
  xcb_create_window(mConnection, XCB_COPY_FROM_PARENT, window, mScreen->root,
                    static_cast<int16_t>(place.L), static_cast<int16_t>(place.T),
                    static_cast<uint16_t>(place.W()), static_cast<uint16_t>(place.H()), 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                    XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
  xcb_map_window(mConnection, window);
  Sync();
  return window;
}

void XUser::Destroy(xcb_window_t window) const {
  xcb_destroy_window(mConnection, window);
  Sync();
}

std::vector<xcb_window_t> XUser::ChildrenOf(xcb_window_t window) const {
  const X11Reply<xcb_query_tree_reply_t> tree(
      xcb_query_tree_reply(mConnection, xcb_query_tree(mConnection, window), nullptr));
  if (!tree) return {};
  const xcb_window_t* children = xcb_query_tree_children(tree.get());
  return {children, children + xcb_query_tree_children_length(tree.get())};
}

xcb_window_t XUser::Focus() const {
  const X11Reply<xcb_get_input_focus_reply_t> focus(
      xcb_get_input_focus_reply(mConnection, xcb_get_input_focus(mConnection), nullptr));
  return focus ? focus->focus : XCB_NONE;
}

void XUser::SetFocus(xcb_window_t window) const {
  xcb_set_input_focus(mConnection, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
  Sync();
}

bool XUser::CanGrab() const {
  const auto mouse = xcb_grab_pointer(mConnection, 0, mScreen->root, 0, XCB_GRAB_MODE_ASYNC,
                                      XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
  const auto keys = xcb_grab_keyboard(mConnection, 0, mScreen->root, XCB_CURRENT_TIME,
                                      XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
  const X11Reply<xcb_grab_pointer_reply_t> gotMouse(
      xcb_grab_pointer_reply(mConnection, mouse, nullptr));
  const X11Reply<xcb_grab_keyboard_reply_t> gotKeys(
      xcb_grab_keyboard_reply(mConnection, keys, nullptr));
  xcb_ungrab_pointer(mConnection, XCB_CURRENT_TIME);
  xcb_ungrab_keyboard(mConnection, XCB_CURRENT_TIME);
  Sync();
  return gotMouse->status == XCB_GRAB_STATUS_SUCCESS && gotKeys->status == XCB_GRAB_STATUS_SUCCESS;
}

void XUser::Fake(uint8_t type, int detail, int x, int y) const {
  xcb_test_fake_input(mConnection, type, static_cast<uint8_t>(detail), XCB_CURRENT_TIME,
                      mScreen->root, static_cast<int16_t>(x), static_cast<int16_t>(y), 0);
  Sync();
}

X11Point XUser::Pointer() const {
  const X11Reply<xcb_query_pointer_reply_t> place(
      xcb_query_pointer_reply(mConnection, xcb_query_pointer(mConnection, mScreen->root), nullptr));
  return {place->root_x, place->root_y};
}

void XUser::MoveTo(int x, int y) const { Fake(XCB_MOTION_NOTIFY, 0, x, y); }
void XUser::Press(int button) const { Fake(XCB_BUTTON_PRESS, button); }
void XUser::Release(int button) const { Fake(XCB_BUTTON_RELEASE, button); }

void XUser::Click(int button) const {
  Press(button);
  Release(button);
}

void XUser::Wheel(int distance) const {
  for (int i = 0; i < std::abs(distance); ++i) Click(distance > 0 ? 4 : 5);
}

xcb_keycode_t XUser::CodeOf(xcb_keysym_t symbol, bool* shifted) const {
  const xcb_setup_t* setup = xcb_get_setup(mConnection);
  const int count = setup->max_keycode - setup->min_keycode + 1;
  const X11Reply<xcb_get_keyboard_mapping_reply_t> mapping(xcb_get_keyboard_mapping_reply(
      mConnection,
      xcb_get_keyboard_mapping(mConnection, setup->min_keycode, static_cast<uint8_t>(count)),
      nullptr));
  const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
  for (int column = 0; column < 2; ++column) {
    for (int i = 0; i < count; ++i) {
      if (symbols[i * mapping->keysyms_per_keycode + column] != symbol) continue;
      *shifted = column == 1;
      return static_cast<xcb_keycode_t>(setup->min_keycode + i);
    }
  }
  ADD_FAILURE() << "no key for symbol " << symbol;
  return 0;
}

void XUser::HoldKey(xcb_keysym_t symbol) const {
  bool shifted;
  Fake(XCB_KEY_PRESS, CodeOf(symbol, &shifted));
}

void XUser::ReleaseKey(xcb_keysym_t symbol) const {
  bool shifted;
  Fake(XCB_KEY_RELEASE, CodeOf(symbol, &shifted));
}

void XUser::Type(xcb_keysym_t symbol) const {
  bool shifted;
  CodeOf(symbol, &shifted);
  if (shifted) HoldKey(kShiftKey);
  HoldKey(symbol);
  ReleaseKey(symbol);
  if (shifted) ReleaseKey(kShiftKey);
}

void XUser::Type(const std::string& text) const {
  for (const char c : text) Type(static_cast<xcb_keysym_t>(c));
}

void XUser::TypeWith(xcb_keysym_t modifier, xcb_keysym_t symbol) const {
  HoldKey(modifier);
  HoldKey(symbol);
  ReleaseKey(symbol);
  ReleaseKey(modifier);
}

std::vector<uint32_t> XUser::Picture(xcb_window_t window, const IRECT& rect) const {
  const X11Reply<xcb_get_image_reply_t> image(xcb_get_image_reply(
      mConnection,
      xcb_get_image(mConnection, XCB_IMAGE_FORMAT_Z_PIXMAP, window, static_cast<int16_t>(rect.L),
                    static_cast<int16_t>(rect.T), static_cast<uint16_t>(rect.W()),
                    static_cast<uint16_t>(rect.H()), ~0U),
      nullptr));
  if (!image) return {};
  std::vector<uint32_t> pixels(static_cast<size_t>(rect.W()) * static_cast<size_t>(rect.H()));
  const auto bytes = static_cast<size_t>(xcb_get_image_data_length(image.get()));
  if (bytes != pixels.size() * 4) return {};
  std::memcpy(pixels.data(), xcb_get_image_data(image.get()), bytes);
  for (uint32_t& pixel : pixels) pixel &= 0xFFFFFF;
  return pixels;
}

uint32_t XUser::ScreenPixel(int x, int y) const {
  const auto pixels = Picture(mScreen->root, {x, y, x + 1, y + 1});
  return pixels.empty() ? ~0U : pixels[0];
}

X11Event XUser::NextEvent() const {
  X11Event event;
  Eventually([&] {
    event.reset(xcb_poll_for_event(mConnection));
    return event != nullptr;
  });
  return event;
}

xcb_atom_t XUser::Atom(const char* name) const {
  const auto length = static_cast<uint16_t>(std::strlen(name));
  const X11Reply<xcb_intern_atom_reply_t> reply(
      xcb_intern_atom_reply(mConnection, xcb_intern_atom(mConnection, 0, length, name), nullptr));
  return reply->atom;
}

std::string XUser::Property(xcb_window_t window, xcb_atom_t name) const {
  const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
      mConnection, xcb_get_property(mConnection, 0, window, name, XCB_ATOM_ANY, 0, 1000), nullptr));
  if (!reply || reply->format != 8) return "";
  return {static_cast<const char*>(xcb_get_property_value(reply.get())),
          static_cast<size_t>(xcb_get_property_value_length(reply.get()))};
}

bool XUser::ServeSelection(const std::string& text) const {
  X11Event event;
  do {
    event = NextEvent();
    if (!event) return false;
  } while (X11TypeOf(*event) != XCB_SELECTION_REQUEST);
  const auto& request = reinterpret_cast<const xcb_selection_request_event_t&>(*event);
  xcb_change_property(mConnection, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                      request.target, 8, static_cast<uint32_t>(text.size()), text.data());
  xcb_selection_notify_event_t answer{};
  answer.response_type = XCB_SELECTION_NOTIFY;
  answer.requestor = request.requestor;
  answer.selection = request.selection;
  answer.target = request.target;
  answer.property = request.property;
  xcb_send_event(mConnection, 0, request.requestor, 0, reinterpret_cast<const char*>(&answer));
  Sync();
  return true;
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
