// A file that appears under its name only when it is whole.
#include "tools/io/AtomicFile.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "tools/io/Failure.h"

namespace fs = std::filesystem;

namespace {

// The unfinished file of this process, for the signal handler. A command writes one at a time.
char unfinishedPath[PATH_MAX];
volatile sig_atomic_t unfinishedExists = 0;

constexpr int kMostLinks = 40;  // in a row, as the system has it
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
  throw Failure(ExitCode::Output, "cannot write " + shown + ": " + reason);
}

mode_t CurrentUmask() {
  const mode_t mask = umask(0);
  umask(mask);
  return mask;
}

// The permissions of the finished file: those of the one it replaces, else the usual ones.
mode_t FinalMode(const std::string& target) {
  struct stat status {};
  if (stat(target.c_str(), &status) == 0) return status.st_mode & 07777;
  return static_cast<mode_t>(0666) & ~CurrentUmask();
}

void RequireWritable(const std::string& shown, const std::string& target) {
  struct stat status {};
  if (stat(target.c_str(), &status) != 0) return;
  if (S_ISDIR(status.st_mode)) Fail(shown, "it is a folder");
  if (!S_ISREG(status.st_mode)) Fail(shown, "it is not a regular file");
  if (access(target.c_str(), W_OK) != 0) Fail(shown, std::strerror(errno));
}

// The file that symbolic links lead to, which need not exist yet.
std::string Resolved(const std::string& target) {
  std::error_code ignored;
  fs::path path = target;
  for (int i = 0; i < kMostLinks && !fs::exists(path, ignored) && fs::is_symlink(path, ignored);
       ++i)
    path = path.parent_path() / fs::read_symlink(path, ignored);
  path = fs::weakly_canonical(path, ignored);
  return path.empty() ? target : path.string();
}

}  // namespace

AtomicFile::AtomicFile(const std::string& target) : mShown(target) {
  mTarget = Resolved(target);
  RequireWritable(mShown, mTarget);
  mPath = mTarget + ".part-XXXXXX";
  if (mPath.size() >= sizeof unfinishedPath) Fail(mShown, "its name is too long");
  const mode_t mode = FinalMode(mTarget);

  const SignalPause pause;
  const int descriptor = mkstemp(mPath.data());
  if (descriptor < 0) Fail(mShown, std::strerror(errno));
  fchmod(descriptor, mode);
  close(descriptor);
  std::memcpy(unfinishedPath, mPath.c_str(), mPath.size() + 1);
  unfinishedExists = 1;
}

AtomicFile::~AtomicFile() {
  if (mCommitted) return;
  unlink(mPath.c_str());
  unfinishedExists = 0;
}

void AtomicFile::Commit() {
  const SignalPause pause;
  if (std::rename(mPath.c_str(), mTarget.c_str()) != 0) Fail(mShown, std::strerror(errno));
  unfinishedExists = 0;
  mCommitted = true;
}

void WriteWholeFile(const std::string& target, const void* data, std::size_t size) {
  AtomicFile file(target);
  std::FILE* const stream = std::fopen(file.Path().c_str(), "wb");
  if (stream == nullptr) Fail(target, std::strerror(errno));
  const bool written = std::fwrite(data, 1, size, stream) == size;
  const int error = errno;
  if (std::fclose(stream) != 0 || !written) Fail(target, std::strerror(written ? errno : error));
  file.Commit();
}

void RequireOtherFile(const std::string& input, const std::string& output) {
  std::error_code ignored;
  if (!fs::equivalent(input, output, ignored)) return;
  throw Failure(ExitCode::Output, output + " is the file to read; choose another output");
}

void RemoveUnfinishedFileOnSignals() {
  struct sigaction action {};
  action.sa_handler = EndOnSignal;
  for (const int signal : kEndingSignals) {
    // Whoever started us may have asked for a signal to be ignored, as nohup does.
    struct sigaction former {};
    sigaction(signal, nullptr, &former);
    if (former.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);
  }
  // A file that outgrows a limit is then an ordinary write error.
  signal(SIGXFSZ, SIG_IGN);
}
