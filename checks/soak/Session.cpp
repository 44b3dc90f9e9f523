#include "checks/soak/Session.h"

#include <cmath>
#include <cstdio>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "checks/soak/HostWindow.h"
#include "plugin/FactoryPresets.h"
#include "plugin/ParamTable.h"
#include "tests/plugin/HostedPlugin.h"

namespace {

constexpr float kRates[] = {8000, 22050, 44100, 48000};
constexpr int kBlocks[] = {16, 64, 100, 256, 512, 1024};
constexpr int kEditorWidth = 960, kEditorHeight = 600;

template <class T, size_t count>
T OneOf(const T (&choices)[count], Random& random) {
  return choices[static_cast<size_t>(random.integer(0, count - 1))];
}

void Report(Tally& tally, const char* what) {
  ++tally.findings;
  std::printf("finding: %s\n", what);
}

class Session {
 public:
  Session(Random random, bool hasServer, Tally& tally)
      : mRandom(random),
        mHasServer(hasServer),
        mTally(tally),
        mPlugin(mBlock, OneOf(kRates, mRandom)) {
    ++mTally.instances;
    for (int d = 0; d < kNumDims; ++d) mPlugin.Set(DimParam(d, kDimRefl), -3);
    mAudio = std::thread([this, seed = mRandom.integer(0, 1 << 20)] { Play(Random(seed)); });
  }
  ~Session() {
    mStop = true;
    mAudio.join();
    // A host in a hurry closes the instance with its editor open.
    if (mRandom.integer(0, 3) > 0) CloseEditor();
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  void Act() {
    const int kind = mRandom.integer(0, 99);
    if (kind < 50) {
      Turn();
    } else if (kind < 60) {
      ReadTexts();
    } else if (kind < 63) {
      mPlugin.Dispatch(effSetProgram, 0, mRandom.integer(0, kNumPresets - 1));
    } else if (kind < 69) {
      PassChunk(mRandom.integer(0, 1));
    } else if (kind < 72) {
      ChangeFormat();
    } else if (kind < 77) {
      mWindow ? CloseEditor() : OpenEditor();
    } else if (mWindow) {
      mWindow->Fidget(mRandom);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(mRandom.integer(0, 20)));
  }

 private:
  // Reflections that keep more make rooms too large to render often.
  void Turn() {
    const int id = mRandom.integer(0, kNumParams - 1);
    const bool isRefl = id >= kFirstDim && id < kDummyVar && (id - kFirstDim) % 4 == kDimRefl;
    mPlugin.SetNormalized(id, isRefl ? mRandom.uniform(0, 0.8f) : mRandom.unit());
    ++mTally.changes;
  }
  void ReadTexts() {
    const int id = mRandom.integer(0, kNumParams - 1);
    for (const int opcode : {effGetParamName, effGetParamDisplay, effGetParamLabel}) {
      mPlugin.Text(opcode, id);
    }
    mPlugin.GetNormalized(id);
  }
  void PassChunk(int isProgram) {
    const std::uint8_t* data = nullptr;  // stays the plug-in's
    const VstIntPtr size = mPlugin.Dispatch(effGetChunk, isProgram, 0, &data);
    if (size <= 0 || !data) return Report(mTally, "no chunk");
    std::vector<std::uint8_t> copy(data, data + size);
    if (mRandom.integer(0, 3) == 0) copy.resize(static_cast<size_t>(mRandom.integer(1, int(size))));
    mPlugin.Dispatch(effSetChunk, isProgram, static_cast<VstIntPtr>(copy.size()), copy.data());
  }
  // The audio thread has to know of a smaller block before it makes the next call.
  void ChangeFormat() {
    const std::lock_guard pause(mBetweenBlocks);
    mBlock = OneOf(kBlocks, mRandom);
    mPlugin.Dispatch(effMainsChanged, 0, 0);
    mPlugin.Dispatch(effSetSampleRate, 0, 0, nullptr, OneOf(kRates, mRandom));
    mPlugin.Dispatch(effSetBlockSize, 0, mBlock);
    mPlugin.Dispatch(effMainsChanged, 0, 1);
    ++mTally.formats;
  }

  void OpenEditor() {
    if (!mHasServer) return;
    mWindow = std::make_unique<HostWindow>(kEditorWidth, kEditorHeight);
    if (mPlugin.Dispatch(effEditOpen, 0, 0, mWindow->Handle()) != 1) {
      Report(mTally, "the editor does not open");
    }
    ++mTally.editors;
  }
  void CloseEditor() {
    if (!mWindow) return;
    // A window may go before the host closes the editor in it.
    if (mRandom.integer(0, 7) == 0) mWindow.reset();
    mPlugin.Dispatch(effEditClose);
    mWindow.reset();
  }

  void Play(Random random) {
    constexpr size_t kLongest = 1024;
    std::vector<float> in(kLongest), left(kLongest), right(kLongest);
    for (float& sample : in) sample = random.uniform(-1, 1);
    while (!mStop) {
      {
        const std::lock_guard block(mBetweenBlocks);
        const int frames = random.integer(1, mBlock);
        float *ins[] = {in.data(), in.data()}, *outs[] = {left.data(), right.data()};
        mPlugin.Effect()->processReplacing(mPlugin.Effect(), ins, outs, frames);
        for (int i = 0; i < frames; ++i) {
          const auto at = static_cast<size_t>(i);
          if (std::isfinite(left[at]) && std::isfinite(right[at])) continue;
          Report(mTally, "a sample that is no number");
          return;
        }
        ++mTally.blocks;
      }
      std::this_thread::sleep_for(std::chrono::microseconds(500));
    }
  }

  Random mRandom;
  bool mHasServer;
  Tally& mTally;
  int mBlock = 256;
  HostedPlugin mPlugin;
  std::unique_ptr<HostWindow> mWindow;
  std::mutex mBetweenBlocks;  // held for a block, and to change mBlock
  std::atomic<bool> mStop{false};
  std::thread mAudio;
};

}  // namespace

void RunSession(Random random, int actions, bool window, Tally& tally) {
  Session session(random, window, tally);
  for (int i = 0; i < actions; ++i) session.Act();
}

void RunTour(bool window, Tally& tally) {
  constexpr int kBlock = 256;
  HostedPlugin plugin(kBlock);
  ++tally.instances;
  for (int d = 1; d < kNumDims; ++d) plugin.Set(DimParam(d, kDimEnabled), 0);
  plugin.Set(DimParam(0, kDimRefl), -3);
  plugin.SettleByReset();
  const Stereo out = plugin.Process({Signal(8 * kBlock, 0.5f), Signal(8 * kBlock, -0.5f)});
  for (const float sample : out.left) {
    if (!std::isfinite(sample)) return Report(tally, "a sample that is no number");
  }
  tally.blocks += 8;
  if (!window) return;
  HostWindow host(kEditorWidth, kEditorHeight);
  if (plugin.Dispatch(effEditOpen, 0, 0, host.Handle()) != 1) {
    return Report(tally, "the editor does not open");
  }
  ++tally.editors;
  Random random(1);
  for (int i = 0; i < 20; ++i) {
    host.Fidget(random);
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }
  plugin.Dispatch(effEditClose);
}
