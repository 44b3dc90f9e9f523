// Walks through the space of settings and checks what holds for every response and sound. Runs for
// a minute in the tests and for hours by hand; each finding comes with the option that repeats it.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <deque>
#include <numeric>
#include <vector>

#include "checks/sweep/Invariants.h"
#include "plugin/FactoryPresets.h"
#include "tests/support/Random.h"

namespace {

struct Options {
  std::uint64_t seed = 1;
  double seconds = 60;
  int positions = 0;
  int rate = 0;
  std::vector<std::string> cases;
};

constexpr int kRates[] = {8000,  11025, 16000, 22050,  32000, 44100,
                          48000, 88200, 96000, 176400, 192000};
constexpr int kWalksPerRenderAnew = 3;  // which costs as much as many steps of a walk
constexpr int kBlocks[] = {16, 37, 64, 100, 256, 441, 512, 1024, 4096};

class Sweep {
 public:
  explicit Sweep(const Options& options) : mOptions(options), mRandom(options.seed) {}

  void RunCases() {
    for (const std::string& line : mOptions.cases) CheckFully(CaseOf(line));
  }
  // Every parameter of the response at its positions, with the others at each preset, and random
  // rooms in between and after. What leaves the room as it is comes first, since it keeps the
  // table.
  void Run() {
    for (const bool ofRoom : {false, true}) {
      std::vector<int> slots(kNumPresets);
      std::iota(slots.begin(), slots.end(), 0);
      Shuffle(slots);
      for (const int slot : slots) {
        for (int id = 0; id < kNumParams; ++id) {
          if (IsOfResponse(id) && IsOfRoom(id) == ofRoom) Walk(slot, id);
        }
        if (HasTime()) CheckFully(RandomCase());
      }
    }
    while (HasTime()) CheckFully(RandomCase());
  }
  int Summarise() const {
    std::printf(
        "sweep: %d responses of %d walks and %d random rooms, %d findings; at most %.1f s and "
        "%.0f MB for one, %d of one sample before or after the decay; seed %llu\n",
        mResponses, mWalks, mRooms, mFindings, mMostSeconds, mMostMegabytes, mSingle,
        static_cast<unsigned long long>(mOptions.seed));
    return mFindings == 0 ? 0 : 1;
  }

 private:
  bool HasTime() const {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC < mOptions.seconds;
  }

  template <class T>
  void Shuffle(std::vector<T>& list) {
    for (int i = static_cast<int>(list.size()) - 1; i > 0; --i) {
      std::swap(list[static_cast<size_t>(i)], list[static_cast<size_t>(mRandom.integer(0, i))]);
    }
  }

  static bool IsOfRoom(int id) { return id >= kFirstDim && id < kDummyVar; }
  // The others are heard without a render and take part in random rooms only.
  static bool IsOfResponse(int id) {
    constexpr int kIds[] = {kTimeStretch,     kTimeLinearity,    kHighDecay,      kLowDecay,
                            kLowCutFreq,      kLowCutQuality,    kReversePercent, kTimeT0Percent,
                            kTimeAttenuation, kNormalizationMode};
    return IsOfRoom(id) || std::find(std::begin(kIds), std::end(kIds), id) != std::end(kIds);
  }

  std::vector<int> PositionsToWalk(int id) {
    std::vector<int> positions(static_cast<size_t>(PositionsOf(id)));
    std::iota(positions.begin(), positions.end(), 0);
    if (mOptions.positions > 0 && mOptions.positions < PositionsOf(id)) {
      std::swap(positions[1], positions.back());
      for (int i = 2; i < mOptions.positions; ++i) {
        std::swap(positions[static_cast<size_t>(i)],
                  positions[static_cast<size_t>(mRandom.integer(i, PositionsOf(id) - 1))]);
      }
      positions.resize(static_cast<size_t>(mOptions.positions));
    }
    return positions;
  }

  void Walk(int slot, int id) {
    const int rate = mOptions.rate > 0 ? mOptions.rate : RandomRate();
    Case settings{rate, 512, FactoryPresetValues(slot)};
    for (const int at : PositionsToWalk(id)) {
      if (!HasTime()) return;
      settings.values[static_cast<size_t>(id)] = ValueAt(id, at);
      Check(settings);
    }
    if (mRandom.integer(0, kWalksPerRenderAnew - 1) == 0) CheckAnew();
    ++mWalks;
  }

  int RandomRate() { return kRates[mRandom.integer(0, std::size(kRates) - 1)]; }
  Case RandomCase() {
    ++mRooms;
    Case settings = CaseOf("44100 512");
    // Evenly on a scale of octaves, since high rates cost as much as many low ones.
    settings.rate = mRandom.integer(0, 3) == 0
                        ? RandomRate()
                        : static_cast<int>(8000 * std::pow(24.0, double{mRandom.unit()}));
    settings.block = kBlocks[mRandom.integer(0, std::size(kBlocks) - 1)];
    for (int id = 0; id < kNumParams; ++id) {
      if (mRandom.integer(0, 1)) {
        settings.values[static_cast<size_t>(id)] =
            ValueAt(id, mRandom.integer(0, PositionsOf(id) - 1));
      }
    }
    return settings;
  }

  // What a response has to be by itself.
  void Check(const Case& settings) {
    mCases.push_back(settings);
    if (mCases.size() > 2) mCases.pop_front();
    ++mResponses;
    Findings findings;
    mLast = mKept.Render(settings);
    if (!mLast.response.empty()) {
      CheckResponse(settings, mLast, mKept.Stages(), findings);
      mSingle += IsOneSample(mKept.Stages());
    }
    Report(findings);
  }
  // What the last response has to be beside one that is made anew, and its cost.
  void CheckAnew() {
    const Rendered anew = mAnew.Render(mCases.back());
    mMostSeconds = std::max(mMostSeconds, anew.seconds);
    mMostMegabytes = std::max(mMostMegabytes, anew.megabytes);
    Findings findings;
    CheckSame(mLast, anew, findings);
    if (!anew.response.empty()) CheckCost(mCases.back(), anew, mKept.Stages(), findings);
    Report(findings);
  }
  void CheckFully(const Case& settings) {
    Check(settings);
    CheckAnew();
    Findings findings;
    CheckSound(settings, mLast.response, findings);
    Report(findings);
  }

  // Kept tables depend on the case before, so that it is part of what repeats a finding.
  void Report(const Findings& findings) {
    for (const Finding& finding : findings) {
      std::printf("%s: %s; repeat:", finding.invariant.c_str(), finding.detail.c_str());
      for (const Case& settings : mCases) std::printf(" --case \"%s\"", LineOf(settings).c_str());
      std::printf("\n");
    }
    mFindings += static_cast<int>(findings.size());
  }

  Options mOptions;
  Random mRandom;
  Rooms mKept{true}, mAnew{false};
  std::deque<Case> mCases;  // the last two
  Rendered mLast;
  int mResponses = 0, mWalks = 0, mRooms = 0, mFindings = 0, mSingle = 0;
  double mMostSeconds = 0, mMostMegabytes = 0;
};

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app{"Checks the response and the sound of many settings."};
  app.add_option("--seed", options.seed, "Of the order of the walks and of the random rooms");
  app.add_option("--seconds", options.seconds, "Of processor time to run for");
  app.add_option("--positions", options.positions,
                 "Of a parameter in one walk: both ends and others at random; 0 is every one");
  app.add_option("--rate", options.rate, "Of all walks, in Hz; 0 draws one for each");
  app.add_option("--case", options.cases, "Check only this: rate, block, id=value...");
  CLI11_PARSE(app, argc, argv);
  Sweep sweep(options);
  if (options.cases.empty()) {
    sweep.Run();
  } else {
    sweep.RunCases();
  }
  return sweep.Summarise();
}
