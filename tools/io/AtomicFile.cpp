// A file that appears under its name only when it is whole.
#include "tools/io/AtomicFile.h"

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <filesystem>

#include "tools/io/Failure.h"

namespace fs = std::filesystem;

namespace {

// The unfinished file of this process, for the signal handler. A command writes one at a time.
char unfinishedPath[PATH_MAX];
volatile sig_atomic_t unfinishedExists = 0;

constexpr int kEndingSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE};

// Holds the ending signals back while a file and its note for the handler are out of step.
class SignalPause {
 public:
  SignalPause() {
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : kEndingSignals) sigaddset(&ending, signal);
    sigprocmask(SIG_BLOCK, &ending, &mFormer);
  }
  ~SignalPause() { sigprocmask(SIG_SETMASK, &mFormer, nullptr); }
  SignalPause(const SignalPause&) = delete;
  SignalPause& operator=(const SignalPause&) = delete;

 private:
  sigset_t mFormer;
};

// Only calls that a signal handler may make. The effect's threads simply end with the process.
void EndOnSignal(int signal) {
  if (unfinishedExists != 0) unlink(unfinishedPath);
  _exit(128 + signal);
}

[[noreturn]] void Fail(const std::string& shown, const std::string& reason) {
  throw Failure(ExitCode::kOutput, "cannot write " + shown + ": " + reason);
}

}  // namespace

AtomicFile::AtomicFile(const std::string& target) : mShown(target) {
  const SignalPause pause;
  mFile.emplace(target);
  Require(mFile->Fault().empty());
  std::memcpy(unfinishedPath, Path().c_str(), std::min(Path().size() + 1, sizeof unfinishedPath));
  unfinishedExists = 1;
}

AtomicFile::~AtomicFile() {
  const SignalPause pause;
  mFile.reset();
  unfinishedExists = 0;
}

void AtomicFile::Require(bool done) {
  if (!done) Fail(mShown, mFile->Fault());
}

void AtomicFile::Write(const void* data, std::size_t size) { Require(mFile->Write(data, size)); }

void AtomicFile::Commit() {
  const SignalPause pause;
  Require(mFile->Commit());
  unfinishedExists = 0;
}

void WriteWholeFile(const std::string& target, const void* data, std::size_t size) {
  AtomicFile file(target);
  file.Write(data, size);
  file.Commit();
}

void RequireOtherFile(const std::string& input, const std::string& output) {
  std::error_code ignored;
  if (!fs::equivalent(input, output, ignored)) return;
  throw Failure(ExitCode::kOutput, output + " is the file to read; choose another output");
}

void RemoveUnfinishedFileOnSignals() {
  struct sigaction action {};
  action.sa_handler = EndOnSignal;
  for (const int signal : kEndingSignals) {
    // The parent process may have asked for a signal to be ignored, like nohup does.
    struct sigaction former {};
    sigaction(signal, nullptr, &former);
    if (former.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);
  }
  // A file that outgrows a limit is then an ordinary write error.
  signal(SIGXFSZ, SIG_IGN);
}
