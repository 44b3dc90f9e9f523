// What a VST2 effect costs its host, measured through the binary interface alone: processor time
// per second of sound and of the silence after it, the calls' distribution, the time to scan and to
// construct it, and its resident memory. Ours and the peers that are installed, each in a process
// of its own.
//
//   ModuleBench [seconds of sound [block...]] [file.so[:program]...]
#include <dlfcn.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "tools/host/PluginHost.h"

namespace {

namespace fs = std::filesystem;

constexpr double kRate = 48000.0;
constexpr int kPasses = 5;
constexpr int kCycle = 4096;  // calls of a pass are a multiple: the work of ours repeats within it

struct Subject {
  std::string path;
  int program;  // -1: the effect as it comes

  std::string name() const {
    const std::string stem = fs::path(path).stem().string();
    return program < 0 ? stem : stem + ":" + std::to_string(program);
  }
};

double ms_of(clockid_t clock) {
  timespec t{};
  clock_gettime(clock, &t);
  return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) * 1e-6;
}
double wall_ms() { return ms_of(CLOCK_MONOTONIC); }
double cpu_ms() { return ms_of(CLOCK_PROCESS_CPUTIME_ID); }  // all threads

double resident_mb() {
  std::ifstream file("/proc/self/statm");
  double total = 0.0, resident = 0.0;
  file >> total >> resident;
  return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1 << 20);
}

// The effect that the host makes, for calls without the host's conversions.
PluginHost::EntryPoint entry = nullptr;
AEffect* effect = nullptr;
AEffect* make_effect(audioMasterCallback callback) { return effect = entry(callback); }

PluginHost::EntryPoint load(const std::string& path) {
  void* const object = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!object) throw std::runtime_error(dlerror());
  void* symbol = dlsym(object, "VSTPluginMain");
  if (!symbol) symbol = dlsym(object, "main");  // the older name
  if (!symbol) throw std::runtime_error(path + ": no entry point");
  return reinterpret_cast<PluginHost::EntryPoint>(symbol);
}

// Noise, then silence, in calls of one block.
class Player {
 public:
  Player(int block, double seconds)
      : frames(block),
        noise(static_cast<std::size_t>(kNoiseBlocks * block)),
        silence(noise.size()) {
    const int wanted = static_cast<int>(seconds * kRate / block);
    calls = (wanted + kCycle - 1) / kCycle * kCycle;
    least.assign(static_cast<std::size_t>(calls), std::numeric_limits<double>::infinity());
    std::mt19937 bits;
    for (float& x : noise) x = static_cast<float>(bits()) * 0x1p-34F - 0x1p-3F;
    inputs.resize(static_cast<std::size_t>(effect->numInputs));
    output.resize(static_cast<std::size_t>(effect->numOutputs * block));
    for (int c = 0; c < effect->numOutputs; ++c) outputs.push_back(output.data() + c * block);
  }

  // Each input hears another stretch of the noise.
  void call(std::vector<float>& sound, int number) {
    for (int c = 0; c < effect->numInputs; ++c) {
      const int place = (number + c * kNoiseBlocks / 2) % kNoiseBlocks;
      inputs[static_cast<std::size_t>(c)] = sound.data() + place * frames;
    }
    effect->processReplacing(effect, inputs.data(), outputs.data(), frames);
  }

  // Waits until the effect's own threads have nothing to do any more.
  void settle() {
    for (int quiet = 0; quiet < 10;) {
      call(silence, 0);
      const double before = cpu_ms();
      usleep(20000);
      quiet = cpu_ms() - before < 1.0 ? quiet + 1 : 0;
    }
  }

  // A call's cost is the least seen at its place in a pass, because all else that the machine does
  // can only add to it.
  void measure() {
    for (int pass = 0; pass < kPasses; ++pass) {
      sound_cpu = std::min(sound_cpu, run(noise));
      silence_cpu = std::min(silence_cpu, run(silence));
    }
    std::sort(least.begin(), least.end());
  }

  double seconds() const { return calls * frames / kRate; }
  double sound_load() const { return sound_cpu / seconds(); }
  double silence_load() const { return silence_cpu / seconds(); }
  // Microseconds of a call that `share` of the calls do not exceed.
  double quantile_us(double share) const {
    return 1e3 * least[static_cast<std::size_t>(share * (calls - 1))];
  }

 private:
  double run(std::vector<float>& sound) {
    const double start = cpu_ms();
    for (int i = 0; i < calls; ++i) {
      const double before = wall_ms();
      call(sound, i);
      double& cost = least[static_cast<std::size_t>(i)];
      if (&sound == &noise) cost = std::min(cost, wall_ms() - before);
    }
    return cpu_ms() - start;
  }

  static constexpr int kNoiseBlocks = 61;
  int frames;
  int calls;
  std::vector<float> noise, silence;
  std::vector<float*> inputs, outputs;
  std::vector<float> output;
  std::vector<double> least;                                   // per call of a pass, ms
  double sound_cpu = std::numeric_limits<double>::infinity();  // per pass, ms, all threads
  double silence_cpu = std::numeric_limits<double>::infinity();
};

// As a host lists an effect: load, make, ask for its name and parameters, close.
double scan(const Subject& subject) {
  const double start = wall_ms();
  entry = load(subject.path);
  PluginHost host(subject.path, make_effect);
  host.EffectName();
  host.ProgramNames();
  for (int i = 0; i < host.NumParams(); ++i) host.Text(effGetParamName, i);
  return wall_ms() - start;
}

void measure(const Subject& subject, int block, double seconds) {
  const double resident_before = resident_mb();
  const double scan_ms = scan(subject);
  const double start = wall_ms();
  PluginHost host(subject.path, make_effect);
  host.Connect(2);
  host.Configure(kRate, block);
  const double construct_ms = wall_ms() - start;
  Player player(block, seconds);
  player.settle();
  if (subject.program >= 0) {
    host.SelectProgram(subject.program);
    player.settle();
  }
  const double resident = resident_mb() - resident_before;
  player.measure();
  std::printf("%-28s %5d %8.2f %8.2f %8.1f %8.1f %8.1f %8.1f %8.1f %8.1f %8.1f\n",
              subject.name().c_str(), block, player.sound_load(), player.silence_load(),
              1e3 * player.sound_load() * block / kRate, player.quantile_us(0.99),
              player.quantile_us(0.999), player.quantile_us(1.0), scan_ms, construct_ms, resident);
  std::fflush(stdout);
}

void measure_in_child(const Subject& subject, int block, double seconds) {
  std::fflush(stdout);  // or the child prints it again
  const pid_t child = fork();
  if (child == 0) {
    try {
      measure(subject, block, seconds);
    } catch (const std::exception& error) {
      std::printf("%-28s %5d %s\n", subject.name().c_str(), block, error.what());
      std::fflush(stdout);
    }
    _exit(0);  // without the clean-up of foreign code
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) < 0 || !WIFEXITED(status)) {
    std::printf("%-28s %5d crashed\n", subject.name().c_str(), block);
  }
}

// Ours in its default room and in the one with the longest response, then peers that need no file
// of a response, which the interface offers no way to name.
std::vector<Subject> usual_subjects() {
  const std::string ours = TOLMARA_BINARY_DIR "/Tolmara.so";
  std::vector<Subject> subjects = {{ours, 0}, {ours, 18}};
  for (const char* const peer :
       {"/usr/lib/lxvst/DragonflyHallReverb-vst.so", "/usr/lib/lxvst/DragonflyRoomReverb-vst.so",
        "/usr/lib/lxvst/DragonflyPlateReverb-vst.so"}) {
    if (fs::exists(peer)) subjects.push_back({peer, -1});
  }
  return subjects;
}

Subject subject_of(const std::string& text) {
  const std::size_t colon = text.rfind(':');
  if (colon == std::string::npos) return {text, -1};
  return {text.substr(0, colon), std::atoi(text.c_str() + colon + 1)};
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<Subject> subjects;
  std::vector<double> numbers;
  for (int i = 1; i < argc; ++i) {
    char* end = nullptr;
    const double number = std::strtod(argv[i], &end);
    *end == '\0' ? numbers.push_back(number) : subjects.push_back(subject_of(argv[i]));
  }
  if (numbers.empty()) numbers = {1.0};
  if (numbers.size() == 1) numbers.insert(numbers.end(), {64, 512});
  if (subjects.empty()) subjects = usual_subjects();

  std::printf("%-28s %5s %8s %8s %8s %8s %8s %8s %8s %8s %8s\n", "effect:program", "block", "ms/s",
              "silence", "mean us", "99 %", "99.9 %", "worst", "scan ms", "make ms", "MB");
  for (const Subject& subject : subjects) {
    for (std::size_t i = 1; i < numbers.size(); ++i) {
      measure_in_child(subject, static_cast<int>(numbers[i]), numbers[0]);
    }
  }
}
