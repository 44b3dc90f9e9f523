// Running the command-line programs for real, in a folder of their own.
#include "tests/tools/ToolRun.h"

#include <fcntl.h>
#include <signal.h>
#include <sndfile.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <thread>

namespace fs = std::filesystem;

namespace {

std::string Slurp(const fs::path& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

[[noreturn]] void BecomeProgram(const std::string& program, Words& arguments,
                                const fs::path& folder, const std::string& streams, long fileSize) {
  std::vector<char*> argv = {const_cast<char*>(program.c_str())};
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  const int flags = O_WRONLY | O_CREAT | O_TRUNC;
  dup2(open((streams + ".out").c_str(), flags, 0600), STDOUT_FILENO);
  dup2(open((streams + ".err").c_str(), flags, 0600), STDERR_FILENO);
  if (fileSize > 0) {
    const rlimit limit{static_cast<rlim_t>(fileSize), static_cast<rlim_t>(fileSize)};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  if (chdir(folder.c_str()) == 0) execv(program.c_str(), argv.data());
  _exit(127);
}

}  // namespace

Words operator+(Words a, const Words& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

ToolTest::ToolTest() {
  std::string name = (fs::temp_directory_path() / "tolmara-test-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) std::abort();
  mFolder = name;
}

ToolTest::~ToolTest() {
  std::error_code ignored;
  fs::remove_all(mFolder, ignored);
  for (const char* const stream : {".out", ".err"}) fs::remove(mFolder.string() + stream, ignored);
}

Ended ToolTest::Run(const std::string& program, Words arguments, const RunLimits& limits) {
  const pid_t child = fork();
  if (child == 0) BecomeProgram(program, arguments, mFolder, mFolder.string(), limits.fileSize);
  for (bool sent = limits.signal == 0; !sent;) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    const Words files = Files();
    sent = std::any_of(files.begin(), files.end(), [&](const std::string& file) {
      return file.starts_with(limits.signalOnFile);
    });
    if (sent) kill(child, limits.signal);
  }
  int status = 0;
  rusage usage{};
  wait4(child, &status, 0, &usage);
  const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return {code, Slurp(mFolder.string() + ".out"), Slurp(mFolder.string() + ".err"),
          usage.ru_maxrss};
}

Ended ToolTest::Tolmara(Words arguments, const RunLimits& limits) {
  const bool named = std::count(arguments.begin(), arguments.end(), "--plugin") > 0;
  if (!mPlugin.empty() && !named && arguments.size() > 1) {
    arguments = arguments + Words{"--plugin", mPlugin};
  }
  for (std::string& argument : arguments) {
    const fs::path effect = fs::path(TOLMARA_BINARY_DIR "/test_effects") / argument;
    if (argument.ends_with(".so") && fs::exists(effect)) argument = effect.string();
  }
  return Run(TOLMARA_BINARY_DIR "/tolmara", std::move(arguments), limits);
}

std::string ToolTest::Works(const Words& arguments) {
  const Ended ended = Tolmara(arguments);
  EXPECT_EQ(ended.code, 0) << ended.err;
  return ended.out;
}

Words ToolTest::Files() const {
  Words names;
  for (const auto& entry : fs::directory_iterator(mFolder))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

std::string ToolTest::Bytes(const std::string& name) const { return Slurp(mFolder / name); }

void ToolTest::PutBytes(const std::string& name, const std::string& bytes) const {
  std::ofstream(mFolder / name, std::ios::binary) << bytes;
}

Sound ToolTest::Read(const std::string& name) const {
  SF_INFO info{};
  SNDFILE* const file = sf_open((mFolder / name).c_str(), SFM_READ, &info);
  if (file == nullptr) return {};
  Sound sound{info.channels, info.samplerate, info.format, {}};
  sound.samples.resize(static_cast<std::size_t>(info.frames * info.channels));
  EXPECT_EQ(sf_readf_double(file, sound.samples.data(), info.frames), info.frames);
  sf_close(file);
  return sound;
}

void ToolTest::Write(const std::string& name, const Sound& sound) const {
  SF_INFO info{};
  info.channels = sound.channels;
  info.samplerate = sound.rate;
  info.format = sound.format;
  SNDFILE* const file = sf_open((mFolder / name).c_str(), SFM_WRITE, &info);
  ASSERT_NE(file, nullptr) << sf_strerror(nullptr);
  const auto frames = static_cast<sf_count_t>(sound.Frames());
  std::vector<int> integers;
  if ((sound.format & SF_FORMAT_SUBMASK) == SF_FORMAT_FLOAT) {
    sf_writef_double(file, sound.samples.data(), frames);
  } else {
    for (const double x : sound.samples) integers.push_back(static_cast<int>(x * 2147483648.0));
    sf_writef_int(file, integers.data(), frames);
  }
  sf_close(file);
}

Sound NoiseSound(int channels, int rate, std::size_t frames, int format) {
  Sound sound{channels, rate, format, {}};
  std::mt19937 random(static_cast<unsigned>(rate + channels));
  for (std::size_t i = 0; i < frames * static_cast<std::size_t>(channels); ++i)
    sound.samples.push_back((static_cast<double>(random() >> 17) - 16384) / 32768);
  return sound;
}
