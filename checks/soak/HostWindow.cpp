#include "checks/soak/HostWindow.h"

#include <xcb/xtest.h>

#include <cstdlib>
#include <stdexcept>

HostWindow::HostWindow(int width, int height)
    : mConnection(xcb_connect(nullptr, nullptr)), mWidth(width), mHeight(height) {
  if (xcb_connection_has_error(mConnection)) {
    xcb_disconnect(mConnection);
    throw std::runtime_error("no X server");
  }
  const xcb_screen_t& screen = *xcb_setup_roots_iterator(xcb_get_setup(mConnection)).data;
  mRoot = screen.root;
  mId = xcb_generate_id(mConnection);
  xcb_create_window(mConnection, XCB_COPY_FROM_PARENT, mId, mRoot, 0, 0,
                    static_cast<uint16_t>(width), static_cast<uint16_t>(height), 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, screen.root_visual, 0, nullptr);
  xcb_map_window(mConnection, mId);
  Sync();
}

void HostWindow::Fidget(Random& random) {
  constexpr int kLeft = 1, kRight = 3, kWheelUp = 4;
  constexpr int kReturnKey = 36, kFirstKey = 10, kLastKey = 60;  // codes of the usual keyboard
  const auto moveAnywhere = [&] {
    Input(XCB_MOTION_NOTIFY, 0, random.integer(0, mWidth - 1), random.integer(0, mHeight - 1));
  };
  moveAnywhere();
  switch (random.integer(0, 4)) {
    case 0:
    case 1: {
      const int button = random.integer(0, 3) == 0 ? kRight : kLeft;
      Input(XCB_BUTTON_PRESS, button);
      if (random.integer(0, 1)) moveAnywhere();
      Input(XCB_BUTTON_RELEASE, button);
      break;
    }
    case 2: {
      const int button = kWheelUp + random.integer(0, 1);
      Input(XCB_BUTTON_PRESS, button);
      Input(XCB_BUTTON_RELEASE, button);
      break;
    }
    case 3: {
      const int key = random.integer(0, 1) ? kReturnKey : random.integer(kFirstKey, kLastKey);
      Input(XCB_KEY_PRESS, key);
      Input(XCB_KEY_RELEASE, key);
      break;
    }
    default: break;
  }
  Sync();
}

void HostWindow::Input(int type, int detail, int x, int y) {
  xcb_test_fake_input(mConnection, static_cast<uint8_t>(type), static_cast<uint8_t>(detail),
                      XCB_CURRENT_TIME, mRoot, static_cast<int16_t>(x), static_cast<int16_t>(y), 0);
}

// The server has done what was asked when it answers.
void HostWindow::Sync() {
  std::free(xcb_get_input_focus_reply(mConnection, xcb_get_input_focus(mConnection), nullptr));
}
