// How the editor's thread learns that it has to end.
#pragma once

#include <sys/eventfd.h>

#include <atomic>
#include <cstdint>

#include "graphics/x11/server/FileDescriptor.h"

// Announced by any thread; seen as a flag and as a descriptor that stays readable.
class X11Ending {
 public:
  // Takes an announcement back, while no thread looks. False when there is no descriptor left.
  bool Reset() {
    mFd = FileDescriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    mFlag.store(false, std::memory_order_relaxed);
    return mFd.IsOpen();
  }
  void Announce() {
    mFlag.store(true, std::memory_order_release);
    const std::uint64_t one = 1;
    // Fails only when it is readable anyway.
    [[maybe_unused]] const ssize_t written = write(mFd.Get(), &one, sizeof one);
  }
  bool IsNear() const { return mFlag.load(std::memory_order_acquire); }
  int Fd() const { return mFd.Get(); }

 private:
  std::atomic<bool> mFlag{false};
  FileDescriptor mFd;
};
