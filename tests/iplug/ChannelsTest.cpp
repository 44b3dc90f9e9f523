// Channel tables and the way of a block through the three process functions.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "tests/iplug/TestPlug.h"
#include "tests/support/AllocationGuard.h"

namespace {

PlugOptions WithIO(const char* io) {
  PlugOptions options;
  options.channelIO = io;
  return options;
}

TEST(Channels, CountsAndLegalPairsComeFromTheString) {
  struct Case {
    const char* io;
    int in, out;
    bool monoIn;
  };
  for (const Case& c :
       {Case{"2-2", 2, 2, false}, Case{"1-1 1-2 2-2", 2, 2, true}, Case{"0-2", 0, 2, false},
        Case{"1-4 6-2", 6, 4, true}, Case{nullptr, 0, 0, false}, Case{"", 0, 0, false}}) {
    const Rig rig(WithIO(c.io));
    EXPECT_EQ(rig.effect->numInputs, c.in) << c.io;
    EXPECT_EQ(rig.effect->numOutputs, c.out) << c.io;
    EXPECT_EQ(rig.plug->LegalIO(1, -1), c.monoIn) << c.io;
    EXPECT_EQ((rig.effect->flags & effFlagsCanMono) != 0, c.monoIn) << c.io;
  }
  const Rig rig(WithIO("1-1 2-2"));
  EXPECT_TRUE(rig.plug->LegalIO(2, 2));
  EXPECT_FALSE(rig.plug->LegalIO(1, 2));
  EXPECT_TRUE(rig.plug->LegalIO(-1, 1));
  EXPECT_FALSE(rig.plug->LegalIO(-1, 3));
  EXPECT_TRUE(rig.plug->LegalIO(-1, -1));
  EXPECT_FALSE(Rig(WithIO(nullptr)).plug->LegalIO(-1, -1)) << "an empty list is never legal";
}

TEST(Channels, APairThatDoesNotParseCountsAsZeros) {
  const Rig rig(WithIO("2-2 x 3"));
  EXPECT_TRUE(rig.plug->LegalIO(0, 0));
  EXPECT_TRUE(rig.plug->LegalIO(3, 0)) << "what was read is kept";
  EXPECT_EQ(rig.effect->numInputs, 3);
}

TEST(Channels, ConnectionsAreClampedToTheChannels) {
  Rig rig;
  rig.plug->SetInputChannelConnections(1, INT_MAX, false);
  EXPECT_TRUE(rig.plug->IsInChannelConnected(0));
  EXPECT_FALSE(rig.plug->IsInChannelConnected(1));
  EXPECT_FALSE(rig.plug->IsInChannelConnected(-1));
  EXPECT_FALSE(rig.plug->IsOutChannelConnected(2));
  rig.plug->SetOutputChannelConnections(-5, 6, false);
  EXPECT_FALSE(rig.plug->IsOutChannelConnected(0));
  EXPECT_TRUE(rig.plug->IsOutChannelConnected(1));
}

TEST(Channels, InputBusesAreTwoAndOutputBusesAreNot) {
  Rig rig;
  for (const int idx : {2, 0, 1, -1}) {
    rig.plug->SetInputBusLabel(idx, std::to_string(idx).c_str());
    rig.plug->SetOutputBusLabel(idx, std::to_string(idx).c_str());
  }
  EXPECT_STREQ(rig.plug->GetInputBusLabel(0), "0");
  EXPECT_STREQ(rig.plug->GetInputBusLabel(1), "1");
  EXPECT_STREQ(rig.plug->GetOutputBusLabel(0), "0") << "replaces the 2 that came first";
  EXPECT_STREQ(rig.plug->GetOutputBusLabel(1), "1");
  EXPECT_STREQ(rig.plug->GetInputBusLabel(2), "");
}

// Blocks of n samples for a stereo plug-in; each sample tells channel and place.
template <typename T>
struct Blocks {
  explicit Blocks(int n) : size(static_cast<std::size_t>(n)) {
    for (std::size_t c = 0; c < 2; ++c) {
      for (std::size_t i = 0; i < size; ++i) in[c].push_back(static_cast<T>(100 * (c + 1) + i));
      out[c].assign(size, T{0.5});
      inputs[c] = in[c].data();
      outputs[c] = out[c].data();
    }
  }
  std::size_t size;
  std::vector<T> in[2], out[2];
  T* inputs[2];
  T* outputs[2];
};

// The three entries alike, for the tests below.
void RunBlock(AEffect* effect, Blocks<double>& b, int n) {
  effect->processDoubleReplacing(effect, b.inputs, b.outputs, n);
}
void RunBlock(AEffect* effect, Blocks<float>& b, int n) {
  effect->processReplacing(effect, b.inputs, b.outputs, n);
}

template <typename T>
class ProcessEntries : public testing::Test {};
using Samples = testing::Types<float, double>;
TYPED_TEST_SUITE(ProcessEntries, Samples);

TYPED_TEST(ProcessEntries, LongBlocksRunInPiecesOfAtMostTheAnnouncedSize) {
  Rig rig;
  rig.Dispatch(effSetBlockSize, 0, 64);
  std::vector<int> pieces;
  rig.plug->process = [&](double** in, double** out, int n) {
    EXPECT_TRUE(rig.plug->GetLock().IsMine());
    pieces.push_back(n);
    for (int c = 0; c < 2; ++c) {
      for (int i = 0; i < n; ++i) out[c][i] = 2.0 * in[c][i];
    }
  };
  Blocks<TypeParam> b(150);
  RunBlock(rig.effect, b, 150);
  EXPECT_EQ(pieces, (std::vector<int>{64, 64, 22}));
  for (std::size_t c = 0; c < 2; ++c) {
    for (std::size_t i = 0; i < b.size; ++i)
      ASSERT_EQ(b.out[c][i], 2 * b.in[c][i]) << c << " " << i;
  }
}

TYPED_TEST(ProcessEntries, NothingToDoTouchesNothing) {
  Rig rig;
  rig.plug->process = [](double**, double**, int) { FAIL(); };
  Blocks<TypeParam> b(8);
  for (const int n : {0, -1, INT_MIN}) RunBlock(rig.effect, b, n);
  EXPECT_EQ(b.out[0][0], TypeParam{0.5});
}

TYPED_TEST(ProcessEntries, NullBuffersAreSilenceAndNowhere) {
  Rig rig;
  Blocks<TypeParam> b(8);
  b.inputs[0] = nullptr;
  b.outputs[1] = nullptr;
  RunBlock(rig.effect, b, 8);
  EXPECT_EQ(b.out[0], std::vector<TypeParam>(8, TypeParam{0}));
  EXPECT_EQ(b.out[1], std::vector<TypeParam>(8, TypeParam{0.5}));
}

TYPED_TEST(ProcessEntries, InputAndOutputMayBeTheSameBuffers) {
  Rig rig;
  Blocks<TypeParam> b(8);
  const auto expected = b.in[1];
  b.outputs[0] = b.inputs[0];
  b.outputs[1] = b.inputs[1];
  RunBlock(rig.effect, b, 8);
  EXPECT_EQ(b.in[1], expected);
}

TYPED_TEST(ProcessEntries, ADisconnectedInputIsSilentAndTakesNoHostPointer) {
  Rig rig;
  Blocks<TypeParam> b(8);
  RunBlock(rig.effect, b, 8);  // leaves its sound in the buffers
  rig.plug->SetInputChannelConnections(0, 1, false);
  RunBlock(rig.effect, b, 8);
  EXPECT_EQ(b.out[0], std::vector<TypeParam>(8, TypeParam{0}));
  EXPECT_EQ(b.out[1], b.in[0]) << "the first pointer goes to the first connected channel";
  rig.Dispatch(effSetBlockSize, 0, 4);  // moves the buffer that the channel reads
  RunBlock(rig.effect, b, 8);
  EXPECT_EQ(b.out[0], std::vector<TypeParam>(8, TypeParam{0}));
}

TYPED_TEST(ProcessEntries, ADisconnectedOutputIsNotWritten) {
  Rig rig;
  Blocks<TypeParam> b(8);
  rig.plug->SetOutputChannelConnections(0, 1, false);
  RunBlock(rig.effect, b, 8);
  EXPECT_EQ(b.out[0], b.in[1]) << "its pointer is the first that the host gives";
  EXPECT_EQ(b.out[1], std::vector<TypeParam>(8, TypeParam{0.5}));
}

TYPED_TEST(ProcessEntries, ABlockNeitherAllocatesNorFrees) {
  Rig rig;
  Blocks<TypeParam> b(300);
  rig.Dispatch(effSetBlockSize, 0, 64);
  const AllocationGuard guard;
  const LockCount locks;
  RunBlock(rig.effect, b, 300);
  EXPECT_EQ(guard.allocations(), 0);
  EXPECT_EQ(guard.frees(), 0);
  EXPECT_EQ(locks.locks(), 1);
}

TEST(AudioCalls, TheOldEntryAddsToTheOutput) {
  Rig rig;
  Blocks<float> b(8);
  rig.effect->process(rig.effect, b.inputs, b.outputs, 8);
  EXPECT_EQ(b.out[1][3], 0.5F + 203.0F);
}

TEST(AudioCalls, OutputsBeyondTheInputsAreSilent) {
  Rig rig(WithIO("1-2"));
  Blocks<double> b(4);
  RunBlock(rig.effect, b, 4);
  EXPECT_EQ(b.out[0], b.in[0]);
  EXPECT_EQ(b.out[1], std::vector<double>(4, 0.0));
  Blocks<float> f(4);
  rig.plug->ProcessSingleReplacing(f.inputs, f.outputs, 4);
  EXPECT_EQ(f.out[0], f.in[0]);
  EXPECT_EQ(f.out[1], std::vector<float>(4, 0.0F));
}

TEST(AudioCalls, MissingPointersAreSurvived) {
  Rig rig;
  Blocks<float> b(4);
  rig.effect->processReplacing(rig.effect, nullptr, b.outputs, 4);
  rig.effect->processReplacing(rig.effect, b.inputs, nullptr, 4);
  rig.effect->processReplacing(nullptr, b.inputs, b.outputs, 4);
  EXPECT_EQ(b.out[0][0], 0.5F);
}

TEST(AudioCalls, MidiIsAskedForOnceABlock) {
  PlugOptions options;
  options.midi = true;
  Rig rig(options);
  Blocks<float> b(3000);
  rig.effect->processReplacing(rig.effect, b.inputs, b.outputs, 3000);
  rig.effect->processReplacing(rig.effect, b.inputs, b.outputs, 0);
  EXPECT_EQ(rig.host.Count(audioMasterWantMidi), 1);
  Rig without;
  without.effect->processReplacing(without.effect, b.inputs, b.outputs, 10);
  EXPECT_EQ(without.host.Count(audioMasterWantMidi), 0);
}

TEST(AudioCalls, PassThroughUsesTheDelayLineWhenThereIsLatency) {
  PlugOptions options;
  options.latency = 2;
  Rig rig(options);
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
  rig.plug->ZeroScratchBuffers();
}

}  // namespace
