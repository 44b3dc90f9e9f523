// Channel tables and the way of a block through the three process functions.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "tests/iplug/TestPlug.h"
#include "tests/support/AllocationGuard.h"

namespace {

TEST(Channels, CountsAndLegalPairsComeFromTheString) {
  const struct {
    const char* io;
    int in, out;
    bool monoIn;
  } kCases[] = {{"2-2", 2, 2, false},    {"1-1 1-2 2-2", 2, 2, true}, {"0-2", 0, 2, false},
                {"1-4 6-2", 6, 4, true}, {nullptr, 0, 0, false},      {"", 0, 0, false},
                {"2-2 x 3", 3, 2, false}};
  for (const auto& c : kCases) {
    const Rig rig({.channelIO = c.io});
    EXPECT_EQ(rig.effect->numInputs, c.in) << c.io;
    EXPECT_EQ(rig.effect->numOutputs, c.out) << c.io;
    EXPECT_EQ(rig.plug->LegalIO(1, -1), c.monoIn) << c.io;
    EXPECT_EQ((rig.effect->flags & effFlagsCanMono) != 0, c.monoIn) << c.io;
  }
  const Rig rig({.channelIO = "1-1 2-2 x 3"});
  for (const auto& [in, out] : {std::pair{2, 2}, {-1, 1}, {-1, -1}, {0, 0}, {3, 0}})
    EXPECT_TRUE(rig.plug->LegalIO(in, out)) << in << "-" << out;
  for (const auto& [in, out] : {std::pair{1, 2}, {-1, 3}, {4, -1}})
    EXPECT_FALSE(rig.plug->LegalIO(in, out)) << in << "-" << out;
  EXPECT_FALSE(Rig({.channelIO = nullptr}).plug->LegalIO(-1, -1)) << "an empty list is never legal";
}

TEST(Channels, ConnectionsAndLabelsAreClampedToTheChannels) {
  Rig rig;
  TestPlug& plug = *rig.plug;
  plug.SetInputChannelConnections(1, INT_MAX, false);
  plug.SetOutputChannelConnections(-5, 6, false);
  EXPECT_TRUE(plug.IsInChannelConnected(0));
  EXPECT_FALSE(plug.IsInChannelConnected(1));
  EXPECT_FALSE(plug.IsOutChannelConnected(0));
  EXPECT_TRUE(plug.IsOutChannelConnected(1));
  EXPECT_FALSE(plug.IsInChannelConnected(-1));
  EXPECT_FALSE(plug.IsOutChannelConnected(2));
  for (const int idx : {2, 0, 1, -1}) {
    plug.SetInputBusLabel(idx, std::to_string(idx).c_str());
    plug.SetOutputBusLabel(idx, std::to_string(idx).c_str());
  }
  EXPECT_STREQ(plug.GetInputBusLabel(0), "0");
  EXPECT_STREQ(plug.GetInputBusLabel(1), "1");
  EXPECT_STREQ(plug.GetInputBusLabel(2), "") << "input buses are two at most";
  EXPECT_STREQ(plug.GetOutputBusLabel(0), "0") << "replaces the 2 that came first";
  EXPECT_STREQ(plug.GetOutputBusLabel(1), "1");
}

// Blocks of n samples for a stereo plug-in; each sample tells channel and place.
template <typename T>
struct Blocks {
  explicit Blocks(std::size_t n) : silence(n, T{0}), before(n, T{0.5}) {
    for (std::size_t c = 0; c < 2; ++c) {
      for (std::size_t i = 0; i < n; ++i) in[c].push_back(static_cast<T>(100 * (c + 1) + i));
      out[c] = before;
      inputs[c] = in[c].data();
      outputs[c] = out[c].data();
    }
  }
  std::vector<T> silence, before;
  std::vector<T> in[2], out[2];
  T* inputs[2];
  T* outputs[2];
};

// The two replacing entries alike.
void RunBlock(AEffect* effect, Blocks<double>& b, int n) {
  effect->processDoubleReplacing(effect, b.inputs, b.outputs, n);
}
void RunBlock(AEffect* effect, Blocks<float>& b, int n) {
  effect->processReplacing(effect, b.inputs, b.outputs, n);
}

template <typename T>
class ProcessEntries : public testing::Test {
 protected:
  Rig mRig;
  Blocks<T> mBlocks{8};
};
using Samples = testing::Types<float, double>;
TYPED_TEST_SUITE(ProcessEntries, Samples);

TYPED_TEST(ProcessEntries, LongBlocksRunInPiecesUnderOneLockWithoutTouchingTheHeap) {
  Rig& rig = this->mRig;
  rig.Dispatch(effSetBlockSize, 0, 64);
  int pieces[4] = {};
  int count = 0;
  rig.plug->process = [&](double** in, double** out, int n) {
    pieces[count++] = rig.plug->GetLock().IsMine() ? n : -n;
    for (int c = 0; c < 2; ++c) {
      for (int i = 0; i < n; ++i) out[c][i] = in[c][i];
    }
  };
  Blocks<TypeParam> b(150);
  const AllocationGuard guard;
  const LockCount locks;
  RunBlock(rig.effect, b, 150);
  EXPECT_EQ(guard.allocations(), 0);
  EXPECT_EQ(guard.frees(), 0);
  EXPECT_EQ(locks.locks(), 1);
  EXPECT_EQ(std::vector<int>(pieces, pieces + 4), (std::vector<int>{64, 64, 22, 0}));
  EXPECT_EQ(b.out[0], b.in[0]);
  EXPECT_EQ(b.out[1], b.in[1]);
}

TYPED_TEST(ProcessEntries, NullBuffersAreSilenceAndNowhere) {
  Blocks<TypeParam>& b = this->mBlocks;
  b.inputs[0] = nullptr;
  b.outputs[1] = nullptr;
  RunBlock(this->mRig.effect, b, 8);
  EXPECT_EQ(b.out[0], b.silence);
  EXPECT_EQ(b.out[1], b.before);
}

TYPED_TEST(ProcessEntries, ADisconnectedInputIsSilentAndTakesNoHostPointer) {
  Blocks<TypeParam>& b = this->mBlocks;
  RunBlock(this->mRig.effect, b, 8);  // leaves its sound in the buffers
  this->mRig.plug->SetInputChannelConnections(0, 1, false);
  for (const int blockSize :
       {1024, 100000}) {  // the second moves the buffer that the channel reads
    this->mRig.Dispatch(effSetBlockSize, 0, blockSize);
    RunBlock(this->mRig.effect, b, 8);
    EXPECT_EQ(b.out[0], b.silence);
    EXPECT_EQ(b.out[1], b.in[0]) << "the first pointer goes to the first connected channel";
  }
}

TYPED_TEST(ProcessEntries, ADisconnectedOutputIsNotWritten) {
  Blocks<TypeParam>& b = this->mBlocks;
  this->mRig.plug->SetOutputChannelConnections(0, 1, false);
  RunBlock(this->mRig.effect, b, 8);
  EXPECT_EQ(b.out[0], b.in[1]) << "its pointer is the first that the host gives";
  EXPECT_EQ(b.out[1], b.before);
}

TEST(AudioCalls, OutputsBeyondTheInputsAreSilent) {
  Rig rig({.channelIO = "1-2"});
  Blocks<double> b(4);
  RunBlock(rig.effect, b, 4);
  EXPECT_EQ(b.out[0], b.in[0]);
  EXPECT_EQ(b.out[1], b.silence);
  Blocks<float> f(4);
  rig.plug->ProcessSingleReplacing(f.inputs, f.outputs, 4);
  EXPECT_EQ(f.out[0], f.in[0]);
  EXPECT_EQ(f.out[1], f.silence);
}

TEST(AudioCalls, MissingPointersAreSurvived) {
  Rig rig;
  Blocks<float> b(4);
  rig.effect->processReplacing(rig.effect, nullptr, b.outputs, 4);
  rig.effect->processReplacing(rig.effect, b.inputs, nullptr, 4);
  rig.effect->processReplacing(nullptr, b.inputs, b.outputs, 4);
  EXPECT_EQ(b.out[0], b.before);
}

TEST(AudioCalls, MidiIsAskedForOnceABlock) {
  for (const bool midi : {true, false}) {
    Rig rig({.midi = midi});
    Blocks<float> b(3000);
    RunBlock(rig.effect, b, 3000);
    RunBlock(rig.effect, b, 0);
    EXPECT_EQ(rig.host.calls.size(), midi ? 1U : 0U);
  }
}

TEST(AudioCalls, PassThroughUsesTheDelayLineWhenThereIsLatency) {
  Rig rig({.latency = 2});
  rig.plug->mDelay = std::make_unique<NChanDelay>(2, 2);
  rig.plug->SetLatency(3);
  EXPECT_EQ(rig.effect->initialDelay, 3);
  Blocks<double> b(5);
  rig.plug->AttachInputBuffers(0, 2, b.inputs, 5);
  rig.plug->AttachOutputBuffers(0, 2, b.outputs);
  rig.plug->PassThroughBuffers(0.0, 5);
  EXPECT_EQ(b.out[0], (std::vector<double>{0, 0, 0, 100, 101}));
  rig.plug->PassThroughBuffers(0.0, 4);
  EXPECT_EQ(b.out[1], (std::vector<double>{202, 203, 204, 200, 201}));
}

}  // namespace
