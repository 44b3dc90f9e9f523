// The built module under an audio thread of real-time priority, with everything else that a host
// does going on at once, all on one processor.
#include <dirent.h>
#include <pthread.h>
#include <sched.h>
#include <time.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <fstream>
#include <map>
#include <thread>

#include "tests/graphics/x11/ModuleHost.h"
#include "tests/support/Random.h"

namespace {

constexpr int kAudioPriority = 70, kOtherPriority = 30;  // of SCHED_FIFO
constexpr long kPeriod_ns = 5'333'333;                   // 256 frames at 48 kHz
constexpr int kBlocks = 1500;                            // 8 s

bool BecomeRealTime(int priority) {
  const sched_param parameters{priority};
  return pthread_setschedparam(pthread_self(), SCHED_FIFO, &parameters) == 0;
}

long Now_ns() {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * 1'000'000'000L + now.tv_nsec;
}

void SleepUntil(long time_ns) {
  const timespec time{time_ns / 1'000'000'000L, time_ns % 1'000'000'000L};
  clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &time, nullptr);
}

// How many blocks ended how long after their period had begun, by powers of two.
class Lateness {
 public:
  void Add(long late_ns) {
    int row = 0;
    while (row < kRows - 1 && late_ns >= kFirst_ns << row) ++row;
    ++mCounts[row];
    mWorst_ns = std::max(mWorst_ns, late_ns);
  }
  void Print() const {
    std::printf("blocks by the time from the start of their period (%.2f ms) to their end:\n",
                static_cast<double>(kPeriod_ns) * 1e-6);
    for (int row = 0; row < kRows; ++row) {
      if (mCounts[row]) std::printf("  below %8.2f ms %6d\n", Limit_ms(row), mCounts[row]);
    }
    std::printf("  worst %.2f ms\n", static_cast<double>(mWorst_ns) * 1e-6);
  }

 private:
  static constexpr int kRows = 16;
  static constexpr long kFirst_ns = 62'500;
  static double Limit_ms(int row) { return static_cast<double>(kFirst_ns << row) * 1e-6; }

  int mCounts[kRows] = {};
  long mWorst_ns = 0;
};

// The policies that threads with this start of a name have been seen with.
class PolicyWatch {
 public:
  void Look() {
    DIR* const tasks = opendir("/proc/self/task");
    while (const dirent* entry = tasks ? readdir(tasks) : nullptr) {
      std::string name;
      std::getline(std::ifstream("/proc/self/task/" + std::string(entry->d_name) + "/comm"), name);
      const int policy = sched_getscheduler(static_cast<pid_t>(std::atoi(entry->d_name)));
      if (name.starts_with("tolmara-") && policy >= 0) ++mSeen[name][policy];
    }
    if (tasks) closedir(tasks);
  }
  // name to policy to count
  const std::map<std::string, std::map<int, int>>& Seen() const { return mSeen; }

 private:
  std::map<std::string, std::map<int, int>> mSeen;
};

class RealTimeTest : public ModuleHostTest {
 protected:
  RealTimeTest() {
    sched_getaffinity(0, sizeof mBefore, &mBefore);
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(static_cast<size_t>(sched_getcpu()), &one);
    sched_setaffinity(0, sizeof one, &one);
  }
  ~RealTimeTest() override { sched_setaffinity(0, sizeof mBefore, &mBefore); }

  void PlayInTime() {
    mMayBeRealTime = BecomeRealTime(kAudioPriority) ? 1 : 0;
    long start = Now_ns();
    for (int block = 0; mMayBeRealTime && block < kBlocks; ++block) {
      PlayBlock();
      mLateness.Add(Now_ns() - start);
      start = std::max(start + kPeriod_ns, Now_ns() - 100 * kPeriod_ns);
      SleepUntil(start);
    }
    mEnd = true;
  }
  // Another program's thread of a priority between those of the audio and of the host.
  void Disturb() {
    BecomeRealTime(kOtherPriority);
    while (!mEnd) {
      const long until = Now_ns() + 20'000'000;
      while (Now_ns() < until && !mEnd) {
      }
      SleepUntil(Now_ns() + 40'000'000);
    }
  }
  void Storm() {
    Random random(1);
    for (int i = 0; !mEnd; ++i) {
      const int id = random.integer(0, 45);
      if (id < 11 || id > 30) mEffect->setParameter(mEffect, id, random.unit());
      void* chunk = nullptr;
      Dispatch(effGetChunk, i % 2, 0, &chunk);
      if (i % 50 == 0) Dispatch(effSetProgram, 0, i / 50 % 4);
      std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
  }

  std::atomic<int> mMayBeRealTime = -1;
  std::atomic<bool> mEnd = false;
  Lateness mLateness;
  cpu_set_t mBefore;
};

TEST_F(RealTimeTest, ThreadsOfThePluginStayBelowTheAudioThreadWhateverElseGoesOn) {
  ASSERT_TRUE(Open());
  std::thread audio([this] { PlayInTime(); });
  while (mMayBeRealTime < 0) std::this_thread::yield();
  if (mMayBeRealTime == 0) {
    audio.join();
    GTEST_SKIP() << "no real-time threads here: raise `ulimit -r` to 70 or run as root";
  }
  std::thread other([this] { Disturb(); });
  std::thread storm([this] { Storm(); });
  PolicyWatch watch;
  for (int i = 0; !mEnd; ++i) {
    watch.Look();
    Point(691 + i % 200, 118 + i % 160);  // knobs swell and shrink below the mouse
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  audio.join();
  other.join();
  storm.join();
  mLateness.Print();
  EXPECT_EQ(watch.Seen().count("tolmara-render"), 1u);
  EXPECT_EQ(watch.Seen().count("tolmara-editor"), 1u);
  for (const auto& [name, policies] : watch.Seen()) {
    int others = 0;
    for (const auto& [policy, count] : policies) {
      if (policy != SCHED_OTHER) others += count;
    }
    // A thread is seen at its parent's policy until it has run its first instructions.
    EXPECT_LE(others, 2) << name;
  }
}

}  // namespace
