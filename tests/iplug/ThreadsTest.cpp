// Host, audio and editor threads meeting in one plug-in; meant for the thread sanitizer.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "tests/iplug/TestPlug.h"

namespace {

// The lists of what was told and asked have no lock.
void StopNoting(Rig& rig) {
  rig.plug->log = nullptr;
  rig.effect->resvd1 = 0;
}

TEST(Threads, ParametersStateAndSoundDoNotInterleave) {
  Rig rig;
  rig.plug->MakeEmptyPresets();
  StopNoting(rig);
  std::atomic<int> inside{0};
  rig.plug->process = [&](double**, double** out, int) {
    EXPECT_EQ(inside.fetch_add(1), 0);
    out[0][0] = rig.plug->Value(kLevel);
    EXPECT_EQ(rig.plug->Value(kLevel), out[0][0]) << "changed during a block";
    inside.fetch_sub(1);
  };
  std::atomic<bool> stop{false};
  std::atomic<int> steps{0};
  const auto until = [&](auto step) {
    return std::thread([&stop, &steps, step] {
      for (int i = 0; !stop; ++i, ++steps) step(i);
    });
  };
  std::thread threads[] = {
      until([&](int i) {
        rig.effect->setParameter(rig.effect, i % kNumTestParams, static_cast<float>(i % 11) * 0.1f);
      }),
      until([&](int i) { rig.plug->SetParameterFromGUI(i % kNumTestParams, (i % 7) / 7.0); }),
      until([&](int i) {
        rig.Dispatch(effSetProgram, 0, i % 4);
        rig.SetChunk(rig.GetChunk(i % 2 == 0), i % 2 == 0);
        rig.Dispatch(effSetBlockSize, 0, 16 + i % 3);
      })};
  float in[64] = {};
  float out[2][64] = {};
  float* inputs[2] = {in, in};
  float* outputs[2] = {out[0], out[1]};
  for (int block = 0; block < 300 || steps < 300; ++block) {
    rig.effect->processReplacing(rig.effect, inputs, outputs, 64);
    rig.effect->getParameter(rig.effect, block % kNumTestParams);
  }
  stop = true;
  for (std::thread& thread : threads) thread.join();
}

TEST(Threads, InstancesAreConstructedOneAtATime) {
  static std::atomic<int> inside{0};
  const auto make = [](audioMasterCallback callback) -> IPlugVST* {
    EXPECT_EQ(inside.fetch_add(1), 0);
    auto* plug = new TestPlug(callback);
    std::this_thread::sleep_for(std::chrono::microseconds(200));
    inside.fetch_sub(1);
    return plug;
  };
  const auto construct = [make] {
    for (int i = 0; i < 20; ++i) {
      AEffect* effect = ConstructUnderLock(make, nullptr);
      effect->dispatcher(effect, effOpen, 0, 0, nullptr, 0.0f);
      effect->dispatcher(effect, effClose, 0, 0, nullptr, 0.0f);
    }
  };
  std::thread other(construct);
  construct();
  other.join();
}

// Waits in its close for a thread that needs the plug-in's lock, as a window layer does.
class WaitingEditor : public FakeEditor {
 public:
  explicit WaitingEditor(TestPlug* plug) : FakeEditor(plug) {}
  void* OpenWindow(void* parent) override {
    mThread = std::thread([this] {
      while (!mStop) GetPlug()->SetParameterFromGUI(kLevel, 0.5);
    });
    return parent;
  }
  void CloseWindow() override {
    if (!mThread.joinable()) return;
    const PlugLock::Pause pause(GetPlug()->GetLock());
    mStop = true;
    mThread.join();
  }

 private:
  std::thread mThread;
  std::atomic<bool> mStop{false};
};

TEST(Threads, ClosingTheEditorWaitsForItsThreadWithoutTheLock) {
  for (const bool closeEditor : {true, false}) {
    Rig rig;
    StopNoting(rig);
    rig.plug->AttachGraphics(new WaitingEditor(rig.plug.get()));
    rig.Dispatch(effEditOpen, 0, 0, &rig);
    if (closeEditor) rig.Dispatch(effEditClose);
    rig.Close();
  }
}

}  // namespace
