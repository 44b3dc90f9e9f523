// Telling on stderr how far a long command is.
#include "tools/io/Progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <utility>

namespace {
constexpr int kBarCells = 30;
constexpr std::chrono::milliseconds kRedraw{100};
}  // namespace

Progress::Progress(std::string what, bool quiet)
    : mWhat(std::move(what)), mQuiet(quiet), mBar(!quiet && isatty(STDERR_FILENO) != 0) {}

Progress::~Progress() { Wipe(); }

double Progress::Seconds() const {
  return std::chrono::duration<double>(Clock::now() - mStart).count();
}

void Progress::Show(double done) {
  const Clock::time_point now = Clock::now();
  if (!mBar || now < mNext) return;
  mNext = now + kRedraw;
  const double part = std::clamp(done, 0.0, 1.0);
  const auto filled = static_cast<std::size_t>(part * kBarCells);
  const std::string bar = std::string(filled, '#') + std::string(kBarCells - filled, '.');
  std::fprintf(stderr, "\r%s [%s] %3.0f %%", mWhat.c_str(), bar.c_str(), part * 100);
  if (part > 0.02) {
    const int left = static_cast<int>(Seconds() * (1 - part) / part + 0.5);
    std::fprintf(stderr, "  %d:%02d left ", left / 60, left % 60);
  }
  std::fflush(stderr);
  mDrawn = true;
}

void Progress::Wipe() {
  if (mDrawn) std::fprintf(stderr, "\r\033[K");
  mDrawn = false;
}

void Progress::Close(const char* format, ...) {
  Wipe();
  if (mQuiet) return;
  std::fprintf(stderr, "%s: ", mWhat.c_str());
  va_list values;
  va_start(values, format);
  std::vfprintf(stderr, format, values);
  va_end(values);
  std::fputc('\n', stderr);
}
