// Opening, asking and listening.
#include "graphics/x11/server/X11Connection.h"

#include <poll.h>
#include <xcb/randr.h>
#include <xcb/shm.h>
#include <xcb/xcbext.h>

#include <cstring>

namespace {

constexpr int kAnswerTimeout_ms = 5000;  // a server that somebody else has grabbed says nothing

constexpr const char* kAtomNames[] = {
    "CLIPBOARD", "UTF8_STRING",         "text/plain;charset=utf-8",
    "TARGETS",   "TOLMARA_PASTED",      "_XEMBED_INFO",
    "WM_STATE",  "_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_POPUP_MENU"};
static_assert(std::size(kAtomNames) == static_cast<std::size_t>(X11Atom::kCount));

const xcb_motion_notify_event_t* AsMotion(const X11Event& event) {
  const bool isMotion = event && X11TypeOf(*event) == XCB_MOTION_NOTIFY;
  return isMotion ? reinterpret_cast<const xcb_motion_notify_event_t*>(event.get()) : nullptr;
}

// Nothing that matters lies between two such events.
bool Supersedes(const xcb_motion_notify_event_t& later, const xcb_motion_notify_event_t& earlier) {
  return later.event == earlier.event && later.state == earlier.state;
}

}  // namespace

X11Connection::X11Connection(int wakeFd) : mConnection(nullptr), mWakeFd(wakeFd) {
  int screen = 0;
  mConnection = xcb_connect(nullptr, &screen);
  if (!IsOpen()) return;
  FindScreen(screen);
  // Asked for now and kept by the library, because it would wait for these answers without limit.
  xcb_get_extension_data(mConnection, &xcb_randr_id);
  xcb_get_maximum_request_length(mConnection);
  InternAtoms();
  AskForSharedMemory();
}

X11Connection::~X11Connection() {
  xcb_flush(mConnection);
  xcb_disconnect(mConnection);
}

void X11Connection::FindScreen(int number) {
  auto it = xcb_setup_roots_iterator(Setup());
  for (; it.rem > 1 && number > 0; --number) xcb_screen_next(&it);
  mScreen = it.data;
}

void X11Connection::InternAtoms() {
  std::array<xcb_intern_atom_cookie_t, std::size(kAtomNames)> cookies;
  for (std::size_t i = 0; i < cookies.size(); ++i) {
    const auto length = static_cast<uint16_t>(std::strlen(kAtomNames[i]));
    cookies[i] = xcb_intern_atom(mConnection, 0, length, kAtomNames[i]);
  }
  for (std::size_t i = 0; i < cookies.size(); ++i) {
    const auto reply = Await<xcb_intern_atom_reply_t>(cookies[i]);
    if (reply) mAtoms[i] = reply->atom;
  }
}

void X11Connection::AskForSharedMemory() {
  const xcb_query_extension_reply_t* shm = xcb_get_extension_data(mConnection, &xcb_shm_id);
  if (!shm || !shm->present) return;
  const auto version = Await<xcb_shm_query_version_reply_t>(xcb_shm_query_version(mConnection));
  // From 1.2 on memory is passed as a file descriptor, so that nothing remains in the system.
  mSharesMemory = version && (version->major_version > 1 || version->minor_version >= 2);
}

void* X11Connection::AwaitReply(unsigned sequence) {
  xcb_flush(mConnection);
  for (;;) {
    void* reply = nullptr;
    xcb_generic_error_t* error = nullptr;
    if (xcb_poll_for_reply(mConnection, sequence, &reply, &error)) {
      std::free(error);
      return reply;
    }
    pollfd fds[] = {{Fd(), POLLIN, 0}, {mWakeFd, POLLIN, 0}};
    if (poll(fds, 2, kAnswerTimeout_ms) <= 0 || fds[1].revents) {
      xcb_discard_reply(mConnection, sequence);
      return nullptr;
    }
  }
}

X11Event X11Connection::Poll() {
  for (;;) {
    X11Event event(xcb_poll_for_event(mConnection));
    if (!event || event->response_type != 0) return event;
  }
}

X11Event X11Connection::NextEvent() {
  X11Event event = mAhead ? std::move(mAhead) : Poll();
  while (const auto* motion = AsMotion(event)) {
    mAhead = Poll();
    const auto* later = AsMotion(mAhead);
    if (!later || !Supersedes(*later, *motion)) break;
    event = std::move(mAhead);
  }
  return event;
}
