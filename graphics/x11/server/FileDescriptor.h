// An owned file descriptor.
#pragma once

#include <unistd.h>

#include <utility>

class FileDescriptor {
 public:
  explicit FileDescriptor(int fd = -1) : mFd(fd) {}
  FileDescriptor(FileDescriptor&& other) noexcept : mFd(std::exchange(other.mFd, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(mFd, other.mFd);
    return *this;
  }
  ~FileDescriptor() {
    if (mFd >= 0) close(mFd);
  }

  int Get() const { return mFd; }
  bool IsOpen() const { return mFd >= 0; }
  int Release() { return std::exchange(mFd, -1); }
  void Close() { *this = FileDescriptor(); }

 private:
  int mFd;
};
