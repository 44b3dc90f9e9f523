// The connection of one open editor to the X server.
#pragma once

#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>
#include <memory>

struct X11Free {
  void operator()(void* reply) const { std::free(reply); }
};
template <class T>
using X11Reply = std::unique_ptr<T, X11Free>;
using X11Event = X11Reply<xcb_generic_event_t>;

// A coordinate as the protocol takes it: what is out of its reach ends at its limit.
template <class T>
constexpr T X11Int(int v) {
  constexpr int kLo = std::numeric_limits<T>::min();
  constexpr int kHi = std::numeric_limits<T>::max();
  return static_cast<T>(std::clamp(v, kLo, kHi));
}

enum class X11Atom {
  kClipboard,
  kUtf8String,
  kTextPlainUtf8,
  kTargets,
  kPasted,  // property of ours that takes pasted text
  kXembedInfo,
  kWmState,
  kNetWmWindowType,
  kNetWmWindowTypePopupMenu,
  kCount
};

// Opened to the server that DISPLAY names. Used by the thread that made it only. The server's
// errors come as values: a failed question has no answer, and error events are dropped here.
class X11Connection {
 public:
  // While `wakeFd` is readable no answer is waited for.
  explicit X11Connection(int wakeFd);
  ~X11Connection();
  X11Connection(const X11Connection&) = delete;
  X11Connection& operator=(const X11Connection&) = delete;

  bool IsOpen() const { return xcb_connection_has_error(mConnection) == 0; }
  xcb_connection_t* Get() const { return mConnection; }
  int Fd() const { return xcb_get_file_descriptor(mConnection); }
  const xcb_setup_t* Setup() const { return xcb_get_setup(mConnection); }
  const xcb_screen_t& Screen() const { return *mScreen; }
  xcb_atom_t Atom(X11Atom atom) const { return mAtoms[static_cast<std::size_t>(atom)]; }
  // Images can be handed over as memory shared with the server.
  bool SharesMemory() const { return mSharesMemory; }

  // The answer to a request; null for an error, a broken connection, an editor that is being
  // closed and a server that says nothing for some seconds.
  template <class Reply, class Cookie>
  X11Reply<Reply> Await(Cookie cookie) {
    return X11Reply<Reply>(static_cast<Reply*>(AwaitReply(cookie.sequence)));
  }

  // The next event, never an error; null when there is none now. Of a run of motions in one
  // window it is the last.
  X11Event NextEvent();

 private:
  void FindScreen(int number);
  void InternAtoms();
  void AskForSharedMemory();
  void* AwaitReply(unsigned sequence);
  X11Event Poll();

  xcb_connection_t* mConnection;
  int mWakeFd;
  const xcb_screen_t* mScreen = nullptr;
  std::array<xcb_atom_t, static_cast<std::size_t>(X11Atom::kCount)> mAtoms{};
  bool mSharesMemory = false;
  X11Event mAhead;  // read while a run of motions was looked for
};

// Type of an event, without the mark of one that another client sent.
inline int X11TypeOf(const xcb_generic_event_t& event) { return event.response_type & 0x7F; }
