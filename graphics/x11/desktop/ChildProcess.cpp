// Starting programs from inside somebody else's process.
#include "graphics/x11/desktop/ChildProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <string_view>

namespace {

// They lead to libraries of the host, or of its wrapper, that other programs fail with.
constexpr std::string_view kNotInherited[] = {"LD_LIBRARY_PATH", "LD_PRELOAD", "GTK_PATH",
                                              "QT_PLUGIN_PATH", "PYTHONHOME"};

std::vector<std::string> EnvironmentWith(const std::vector<std::string>& variables) {
  std::vector<std::string> result = variables;
  const auto nameOf = [](std::string_view entry) { return entry.substr(0, entry.find('=')); };
  for (char** entry = environ; entry && *entry; ++entry) {
    const std::string_view name = nameOf(*entry);
    const bool isNew = std::none_of(variables.begin(), variables.end(),
                                    [&](const std::string& v) { return nameOf(v) == name; });
    if (isNew && std::find(std::begin(kNotInherited), std::end(kNotInherited), name) ==
                     std::end(kNotInherited)) {
      result.emplace_back(*entry);
    }
  }
  return result;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

// What holds from the start of the program on: its own session, no signal blocked or ignored, and
// no descriptor beyond the first three.
class Spawning {
 public:
  explicit Spawning(int output) {
    posix_spawn_file_actions_init(&mActions);
    posix_spawn_file_actions_addopen(&mActions, 0, "/dev/null", O_RDONLY, 0);
    if (output >= 0) posix_spawn_file_actions_adddup2(&mActions, output, 1);
    posix_spawn_file_actions_addclosefrom_np(&mActions, 3);
    sigset_t none, all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_init(&mAttributes);
    posix_spawnattr_setsigmask(&mAttributes, &none);
    posix_spawnattr_setsigdefault(&mAttributes, &all);
    posix_spawnattr_setflags(&mAttributes,
                             POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID);
  }
  ~Spawning() {
    posix_spawnattr_destroy(&mAttributes);
    posix_spawn_file_actions_destroy(&mActions);
  }
  Spawning(const Spawning&) = delete;
  Spawning& operator=(const Spawning&) = delete;

  // The process, 0 when it could not be started.
  pid_t Run(std::vector<std::string> arguments, std::vector<std::string> environment) {
    pid_t pid = 0;
    const int error = posix_spawnp(&pid, arguments[0].c_str(), &mActions, &mAttributes,
                                   Pointers(arguments).data(), Pointers(environment).data());
    return error == 0 ? pid : 0;
  }

 private:
  posix_spawn_file_actions_t mActions;
  posix_spawnattr_t mAttributes;
};

// A host that ignores the end of its children leaves nothing to wait for: -1.
int WaitFor(pid_t pid) {
  int status = 0;
  pid_t waited;
  do {
    waited = waitpid(pid, &status, 0);
  } while (waited < 0 && errno == EINTR);
  return waited == pid && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

std::optional<ChildProcess> ChildProcess::Start(const std::vector<std::string>& arguments,
                                                const std::vector<std::string>& variables) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return std::nullopt;
  FileDescriptor readable(ends[0]);
  const FileDescriptor writable(ends[1]);
  const pid_t pid = Spawning(writable.Get()).Run(arguments, EnvironmentWith(variables));
  if (!pid) return std::nullopt;
  return ChildProcess(pid, std::move(readable));
}

ChildProcess::ChildProcess(pid_t pid, FileDescriptor output)
    : mPid(pid),
      mOutput(std::move(output)),
      mEnd(static_cast<int>(syscall(SYS_pidfd_open, pid, 0))) {}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : mPid(std::exchange(other.mPid, 0)),
      mOutput(std::move(other.mOutput)),
      mEnd(std::move(other.mEnd)) {}

ChildProcess::~ChildProcess() {
  if (!mPid) return;
  kill(-mPid, SIGKILL);  // its session is its own
  Wait();
}

int ChildProcess::Wait() { return mPid ? WaitFor(std::exchange(mPid, 0)) : -1; }

bool RunInBackground(const std::vector<std::string>& arguments) {
  // A shell that leaves it to init at once can be waited for here.
  std::vector<std::string> command = {
      "/bin/sh", "-c", "command -v \"$1\" >/dev/null || exit 1; \"$@\" >/dev/null 2>&1 &", "sh"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  const pid_t pid = Spawning(-1).Run(std::move(command), EnvironmentWith({}));
  return pid && WaitFor(pid) != 1;
}
