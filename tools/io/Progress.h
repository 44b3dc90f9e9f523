// Telling on stderr how far a long command is.
#pragma once
#include <chrono>
#include <string>

// On a terminal a bar with the remaining time, redrawn at most ten times a second and wiped at the
// end; elsewhere nothing until the closing line. Silent if asked to be quiet.
class Progress {
 public:
  Progress(std::string what, bool quiet);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void Show(double done);  // 0 to 1
  // The result as one line, for both kinds of stderr; after the name, as by printf.
  void Close(const char* format, ...) __attribute__((format(printf, 2, 3)));
  double Seconds() const;  // since construction

 private:
  using Clock = std::chrono::steady_clock;
  void Wipe();

  std::string mWhat;
  bool mQuiet;
  bool mBar;  // stderr is a terminal
  bool mDrawn = false;
  Clock::time_point mStart = Clock::now();
  Clock::time_point mNext = mStart;  // not redrawn before
};
