// Opens, drives and closes instances of the built module round after round, several at a time, and
// fails when a sample is not finite or when the process holds more after a round than before it.
// The sanitizers that it is built with see the rest.
#include <signal.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

#include "checks/soak/Holdings.h"
#include "checks/soak/Session.h"

namespace {

constexpr int kWarmUpRounds = 1;          // in which libraries fill their caches
constexpr unsigned kStalled_s = 1200;     // no round takes that long
constexpr size_t kMoreHeap = 256 * 1024;  // some caches fill later; an instance has megabytes

struct Options {
  std::uint64_t seed = 1;
  double minutes = 0;
  int rounds = 1;
  int actions = 60;
  int instances = 3;
  bool tour = false;
};

[[noreturn]] void Stalled(int) {
  constexpr char kText[] = "soak: a round has stalled\n";
  [[maybe_unused]] const auto written = write(STDERR_FILENO, kText, sizeof kText - 1);
  abort();
}

// Links and file dialogs must find no program to start.
void HideDesktop() {
  setenv("PATH", "/nonexistent", 1);
  unsetenv("DBUS_SESSION_BUS_ADDRESS");
}

void RunRound(Random& random, const Options& options, Tally& tally) {
  const bool hasServer = std::getenv("DISPLAY") != nullptr;
  if (options.tour) return RunTour(hasServer, tally);
  std::vector<std::thread> hosts;
  for (int i = random.integer(1, options.instances); i > 0; --i) {
    hosts.emplace_back([&tally, &options, hasServer, seed = random.integer(0, 1 << 30)] {
      Random own(static_cast<std::uint64_t>(seed));
      RunSession(own, own.integer(1, options.actions), hasServer, tally);
    });
  }
  for (std::thread& host : hosts) host.join();
}

// A thread that was joined is counted for a moment longer.
Holdings SettledHoldings(int threads) {
  Holdings holdings = HoldingsNow();
  for (int i = 0; i < 500 && holdings.threads > threads; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    holdings = HoldingsNow();
  }
  return holdings;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app{"Drives instances of the built module, and the editor where DISPLAY is set."};
  app.add_option("--seed", options.seed, "Of all that is done");
  app.add_option("--minutes", options.minutes, "Go on for so long");
  app.add_option("--rounds", options.rounds, "At least so many");
  app.add_option("--actions", options.actions, "Per instance at most");
  app.add_option("--instances", options.instances, "At a time at most");
  app.add_flag("--tour", options.tour, "One short life instead, for slow tools");
  CLI11_PARSE(app, argc, argv);
  HideDesktop();
  signal(SIGALRM, Stalled);

  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  const auto minutes = [start] {
    return std::chrono::duration<double, std::ratio<60>>(Clock::now() - start).count();
  };
  Random random(options.seed);
  Tally tally;
  Holdings first = HoldingsNow(), last = first;
  int round = 0;
  while (round < options.rounds || minutes() < options.minutes) {
    alarm(kStalled_s);
    RunRound(random, options, tally);
    last = SettledHoldings(first.threads);
    if (++round <= kWarmUpRounds) first = last;
  }
  alarm(0);
  const bool isFlat = last.heap <= first.heap + kMoreHeap && last.threads <= first.threads &&
                      last.descriptors <= first.descriptors;
  if (!isFlat) ++tally.findings;
  std::printf(
      "soak: %.1f minutes, %d rounds, %d instances, %d editors, %d changes of a parameter, %d of "
      "rate and block, %d blocks; heap %zu to %zu kB, threads %d to %d, descriptors %d to %d; %d "
      "findings; seed %llu\n",
      minutes(), round, tally.instances.load(), tally.editors.load(), tally.changes.load(),
      tally.formats.load(), tally.blocks.load(), first.heap / 1024, last.heap / 1024, first.threads,
      last.threads, first.descriptors, last.descriptors, tally.findings.load(),
      static_cast<unsigned long long>(options.seed));
  return tally.findings == 0 ? 0 : 1;
}
