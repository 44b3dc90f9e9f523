// What the command-line host reports when it cannot do what was asked: one line and an exit code.
#pragma once
#include <stdexcept>
#include <string>

// The exit codes of `tolmara`, as its help lists them. An interrupt ends with 128 + the signal.
enum class ExitCode : int {
  kSuccess = 0,
  kInternal = 1,  // nothing below: out of memory, a defect
  kUsage = 2,     // the command line itself
  kInput = 3,     // a file to read: missing, damaged, empty, of the wrong kind
  kSetting = 4,   // an unknown parameter or preset, a value out of range
  kPlugin = 5,    // no plug-in, or one that cannot do what is needed
  kOutput = 6,    // a file to write
};

// Thrown anywhere in the host and caught in main; `what()` is one line without the program's name.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& line) : std::runtime_error(line), mCode(code) {}
  ExitCode Code() const { return mCode; }

 private:
  ExitCode mCode;
};
