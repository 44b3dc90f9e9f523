#include "checks/sweep/Rooms.h"

#include <ctime>
#include <fstream>
#include <string>

namespace {

double ProcessorSeconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// A line of the kernel's status of this process, in megabytes.
double StatusMegabytes(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(name)) return std::stod(line.substr(name.size() + 1)) / 1024;
  }
  return 0;
}

void ForgetPeakMemory() { std::ofstream("/proc/self/clear_refs") << "5"; }

void Apply(TolmaraProbe& probe, const Case& settings) {
  for (int id = 0; id < kNumParams; ++id) {
    probe.Set(id, settings.values[static_cast<size_t>(id)]);
  }
}

}  // namespace

Rendered Rooms::Render(const Case& settings) {
  Apply(mProbe, settings);
  mProbe.Set(kRenderMode, mFast);
  Rendered rendered;
  ForgetPeakMemory();
  const double resident = StatusMegabytes("VmRSS");
  const double start = ProcessorSeconds();
  rendered.response = mProbe.Render(settings.rate);
  rendered.seconds = ProcessorSeconds() - start;
  rendered.megabytes = StatusMegabytes("VmHWM") - resident;
  return rendered;
}

TolmaraProbe::Sound SoundOfImpulse(const Case& settings, size_t count) {
  TolmaraProbe probe(settings.block, settings.rate);
  Apply(probe, settings);
  probe.Settle();
  std::vector<double> impulse(count);
  impulse[0] = 1;
  return probe.Play(impulse);
}
