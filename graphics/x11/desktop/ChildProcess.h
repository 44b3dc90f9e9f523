// Programs that the editor starts.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "graphics/x11/server/FileDescriptor.h"

// A program whose output is read through a pipe. It gets neither the host's descriptors nor its
// signal settings, nor the variables that lead to the host's own libraries. It is started without
// a copy of the host's process, and leaves no zombie, whichever of the two ends first.
class ChildProcess {
 public:
  // Looks for `arguments[0]` in PATH. `variables` ("NAME=value") are added to the environment.
  // None when there is no such program.
  static std::optional<ChildProcess> Start(const std::vector<std::string>& arguments,
                                           const std::vector<std::string>& variables = {});
  ChildProcess(ChildProcess&& other) noexcept;
  ChildProcess& operator=(ChildProcess&&) = delete;
  ~ChildProcess();  // if it still runs: kills it and what it started

  int Output() const { return mOutput.Get(); }  // readable; at its end with the program
  int End() const { return mEnd.Get(); }  // readable from its end on; -1 on systems without that
  // Waits for the end: the exit code, -1 when there is none.
  int Wait();

 private:
  ChildProcess(pid_t pid, FileDescriptor output);

  pid_t mPid;  // 0 once it has been waited for
  FileDescriptor mOutput, mEnd;
};

// Starts a program that goes on by itself; true when it is there.
bool RunInBackground(const std::vector<std::string>& arguments);
