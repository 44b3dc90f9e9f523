// What a thread of ours takes over from a host's real-time thread, and what it lends it.
#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <string>
#include <thread>

#include "iplug/PlugLock.h"
#include "iplug/StartThread.h"

namespace {

constexpr int kPriority = 50;

// False where this process may not have real-time threads.
bool BecomeRealTime() {
  const sched_param priority{kPriority};
  return pthread_setschedparam(pthread_self(), SCHED_FIFO, &priority) == 0;
}

struct Scheduling {
  int policy = -1, priority = -1, niceness = 0, processors = 0;
  bool takesSignals = false, takesFaults = false;
};

Scheduling OfThisThread() {
  Scheduling found;
  sched_param parameters{};
  pthread_getschedparam(pthread_self(), &found.policy, &parameters);
  found.priority = parameters.sched_priority;
  found.niceness = getpriority(PRIO_PROCESS, 0);
  cpu_set_t processors;
  sched_getaffinity(0, sizeof processors, &processors);
  found.processors = CPU_COUNT(&processors);
  sigset_t blocked;
  pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
  found.takesSignals = !sigismember(&blocked, SIGALRM) || !sigismember(&blocked, SIGTERM);
  found.takesFaults = !sigismember(&blocked, SIGSEGV) && !sigismember(&blocked, SIGFPE);
  return found;
}

// The kernel's field for a thread's effective priority: -1 minus the real-time priority, or 0 to 39
// for other threads.
int EffectivePriority(pid_t thread) {
  std::ifstream stat("/proc/self/task/" + std::to_string(thread) + "/stat");
  std::string text;
  std::getline(stat, text);
  text.erase(0, text.rfind(')') + 2);
  for (int field = 3; field < 18; ++field) text.erase(0, text.find(' ') + 1);
  return std::stoi(text);
}

}  // namespace

TEST(Scheduling, AThreadOfOursKeepsNothingOfTheAudioThreadThatStartsIt) {
  const Scheduling own = OfThisThread();
  Scheduling found;
  bool isRealTime = false;
  std::thread audio([&] {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, nullptr);
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(static_cast<std::size_t>(sched_getcpu()), &one);
    sched_setaffinity(0, sizeof one, &one);
    setpriority(PRIO_PROCESS, 0, 7);
    isRealTime = BecomeRealTime();
    StartThread("tolmara-test", [&] { found = OfThisThread(); }).join();
    sigset_t now;
    pthread_sigmask(SIG_SETMASK, nullptr, &now);
    EXPECT_TRUE(sigismember(&now, SIGSEGV)) << "the starting thread's own mask stays";
  });
  audio.join();
  EXPECT_EQ(found.policy, SCHED_OTHER);
  EXPECT_EQ(found.priority, 0);
  EXPECT_EQ(found.processors, own.processors);
  EXPECT_FALSE(found.takesSignals);
  EXPECT_TRUE(found.takesFaults);
  if (!isRealTime) GTEST_SKIP() << "no real-time threads here: neither policy nor niceness tried";
  EXPECT_EQ(found.niceness, own.niceness);
}

TEST(Scheduling, WhoHoldsThePluginLockRunsAtThePriorityOfTheAudioThreadThatWaits) {
  PlugLock lock;
  lock.Take();
  std::atomic<int> state = 0;  // 1 about to wait, 2 not allowed
  std::thread audio([&] {
    state = BecomeRealTime() ? 1 : 2;
    if (state == 1) const PlugLock::Guard guard(lock);
  });
  while (state == 0) std::this_thread::yield();
  int priority = 0;
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (state == 1 && priority >= 0 && std::chrono::steady_clock::now() < end) {
    priority = EffectivePriority(gettid());
  }
  lock.Release();
  audio.join();
  if (state == 2) GTEST_SKIP() << "no real-time threads here";
  EXPECT_EQ(priority, -1 - kPriority);
  EXPECT_GE(EffectivePriority(gettid()), 0);
}
