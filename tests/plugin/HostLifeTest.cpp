// A host's life with the built module: scan, open, opcodes, sound, changes from several threads,
// close at any moment.
#include <elf.h>
#include <gtest/gtest.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <fstream>
#include <iterator>
#include <limits>
#include <set>
#include <thread>

#include "plugin/ParamTable.h"
#include "tests/plugin/HostedPlugin.h"
#include "tests/support/Random.h"

namespace {

// Names of the symbols that the module offers to the outside.
std::set<std::string> ExportedSymbols() {
  std::ifstream file(kModulePath, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
  const auto* header = reinterpret_cast<const Elf64_Ehdr*>(bytes.data());
  const auto* sections = reinterpret_cast<const Elf64_Shdr*>(bytes.data() + header->e_shoff);
  std::set<std::string> names;
  for (int i = 0; i < header->e_shnum; ++i) {
    if (sections[i].sh_type != SHT_DYNSYM) continue;
    const char* strings = bytes.data() + sections[sections[i].sh_link].sh_offset;
    const auto* symbols = reinterpret_cast<const Elf64_Sym*>(bytes.data() + sections[i].sh_offset);
    for (size_t k = 0; k < sections[i].sh_size / sizeof(Elf64_Sym); ++k) {
      if (symbols[k].st_shndx != SHN_UNDEF) names.insert(strings + symbols[k].st_name);
    }
  }
  return names;
}

// A small room of one dimension, so that responses are short and renders quick.
void SetSmallRoom(const HostedPlugin& plugin, double size = 5) {
  for (int d = 0; d < kNumDims; ++d) plugin.Set(DimParam(d, kDimEnabled), d == 0);
  plugin.Set(DimParam(0, kDimSize), size);
  plugin.Set(DimParam(0, kDimRefl), -6);
}

// `count` samples of noise on both channels, from a seed.
Stereo Noise(size_t count, unsigned seed) {
  Random random(seed);
  const auto left = random.signal(count), right = random.signal(count);
  return {Signal(left.begin(), left.end()), Signal(right.begin(), right.end())};
}

bool SoundsFinite(const HostedPlugin& plugin) {
  const Signal out = plugin.Process(Noise(300, 1)).left;
  return std::all_of(out.begin(), out.end(), [](float v) { return std::isfinite(v); });
}

// The first 8000 samples that a single 1 on both channels makes of the settings at hand.
Stereo ResponseOf(const HostedPlugin& plugin) {
  Signal impulse(8000);
  impulse[0] = 1.0f;
  plugin.SettleByReset();
  return plugin.Process({impulse, impulse});
}

}  // namespace

TEST(HostLife, TheModuleExportsItsTwoEntryPointsAndNothingElse) {
  EXPECT_EQ(ExportedSymbols(), (std::set<std::string>{"VSTPluginMain", "main"}));
  EXPECT_NE(ModuleEntry("main"), nullptr);
}

TEST(HostLife, TheRecordTellsTheHostWhatItIs) {
  const HostedPlugin plugin;
  const AEffect& effect = *plugin.Effect();
  EXPECT_EQ(effect.numParams, 46);
  EXPECT_EQ(effect.numPrograms, 28);
  EXPECT_EQ(effect.numInputs, 2);
  EXPECT_EQ(effect.numOutputs, 2);
  EXPECT_EQ(effect.flags, effFlagsHasEditor | effFlagsCanMono | effFlagsCanReplacing |
                              effFlagsCanDoubleReplacing);
  EXPECT_EQ(effect.uniqueID, ('z' << 24) | ('T' << 16) | ('o' << 8) | 'l');
  EXPECT_EQ(effect.version, 10000);
  EXPECT_EQ(effect.initialDelay, 0);
  EXPECT_EQ(plugin.Text(effGetEffectName, 0), "Tolmara");
  EXPECT_EQ(plugin.Text(effGetVendorString, 0), "Halden Merrow");
  EXPECT_EQ(plugin.Text(effGetProductString, 0), "");
  EXPECT_EQ(plugin.Dispatch(effGetPlugCategory), kPlugCategEffect);
  EXPECT_EQ(plugin.Text(effGetProgramNameIndexed, 27), "Z-zone-distant");
}

TEST(HostLife, SurvivesCallsRatesAndBlockSizesThatNoHostMakes) {
  const HostedPlugin plugin;
  SetSmallRoom(plugin);
  constexpr int kLowest = std::numeric_limits<int>::min();
  constexpr int kHighest = std::numeric_limits<int>::max();
  const float inf = std::numeric_limits<float>::infinity();
  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (int opcode = -3; opcode < 80; ++opcode) {
    if (opcode == effClose) continue;
    const bool valueIsPointer =
        opcode == effSetSpeakerArrangement || opcode == effGetSpeakerArrangement;
    for (const int index : {kLowest, -1, 0, 7, 8, 46, kHighest}) {
      for (const VstIntPtr value : {kLowest, -1, 0, 45, kHighest}) {
        plugin.Dispatch(opcode, index, valueIsPointer ? 0 : value, nullptr, nan);
      }
    }
  }
  for (const int id : {-1, 46, 1000000, kLowest}) {
    plugin.SetNormalized(id, 0.5f);
    EXPECT_EQ(plugin.GetNormalized(id), 0.0f);
  }
  for (const float rate : {0.0f, -44100.0f, inf, -inf, nan, 1e30f, 1.0f, 8000.0f}) {
    plugin.Dispatch(effSetSampleRate, 0, 0, nullptr, rate);
    EXPECT_TRUE(SoundsFinite(plugin)) << rate;
  }
  for (const VstIntPtr size :
       {VstIntPtr{0}, VstIntPtr{-64}, VstIntPtr{1} << 40, VstIntPtr{kHighest}, VstIntPtr{1}}) {
    plugin.Dispatch(effSetBlockSize, 0, size);
    EXPECT_TRUE(SoundsFinite(plugin)) << size;
  }
}

TEST(HostLife, TheThreeProcessEntriesGiveTheSameSoundAndNoneWithoutFrames) {
  constexpr int B = 64, count = B * 20;
  HostedPlugin plugin(B);
  SetSmallRoom(plugin);
  plugin.SettleByReset();
  AEffect* effect = plugin.Effect();
  Signal in = Noise(count, 5).left, added(count, 0.25f);
  const Signal replaced = plugin.Process({in, in}).left;
  std::vector<double> doubles(in.begin(), in.end());

  for (const bool adds : {true, false}) {
    plugin.SettleByReset();
    for (int at = 0; at < count; at += B) {
      float *ins[] = {in.data() + at, in.data() + at}, *outs[] = {added.data() + at, nullptr};
      double* in_place[] = {doubles.data() + at, doubles.data() + at};
      for (const int frames : {B, 0, -1, std::numeric_limits<int>::min()}) {
        if (adds) effect->process(effect, ins, outs, frames);
        if (!adds) effect->processDoubleReplacing(effect, in_place, in_place, frames);
      }
    }
  }
  for (size_t i = 0; i < count; ++i) {
    ASSERT_EQ(added[i], 0.25f + replaced[i]) << i;
    ASSERT_EQ(static_cast<float>(doubles[i]), replaced[i]) << i;
  }
}

// In a process of its own, in which the kernel ends a thread that calls it for anything but its
// end.
TEST(HostLife, SteadySoundMakesNoSystemCall) {
#ifdef __SANITIZE_THREAD__
  GTEST_SKIP() << "the thread sanitizer makes its own";
#endif
  HostedPlugin plugin;
  SetSmallRoom(plugin);
  plugin.SettleByReset();
  Signal left = Noise(64, 7).left, right = left;
  float* channels[] = {left.data(), right.data()};
  const auto play = [&] {
    for (int block = 0; block < 100; ++block) {
      plugin.SetNormalized(kGain, static_cast<float>(block % 10) * 0.05f);
      plugin.Effect()->processReplacing(plugin.Effect(), channels, channels, 64);
    }
  };
  play();
  const pid_t child = fork();
  if (child == 0) {
    prctl(PR_SET_SECCOMP, SECCOMP_MODE_STRICT);
    play();
    syscall(SYS_exit, 0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
}

TEST(HostLife, AMonoConnectionReverberatesItsOneChannel) {
  HostedPlugin plugin;
  SetSmallRoom(plugin);
  plugin.SettleByReset();
  Signal in = Noise(2000, 6).left, out(in.size());
  const Stereo stereo = plugin.Process({in, Signal(in.size())});
  plugin.SettleByReset();
  VstSpeakerArrangement mono{};
  mono.numChannels = 1;
  plugin.Dispatch(effSetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&mono), &mono);
  for (size_t at = 0; at < in.size(); at += 50) {
    float *ins[] = {in.data() + at}, *outs[] = {out.data() + at};
    plugin.Effect()->processReplacing(plugin.Effect(), ins, outs, 50);
  }
  EXPECT_EQ(out, stereo.left);
}

TEST(HostLife, NumbersThatAreNoneLeaveNoTraceOnceGoodOnesFollow) {
  HostedPlugin plugin;
  SetSmallRoom(plugin);
  const Stereo before = ResponseOf(plugin);
  const float inf = std::numeric_limits<float>::infinity();
  for (const float bad : {std::nanf(""), inf, -inf, -1.0f, 2.0f, -1e30f, 1e30f}) {
    for (int id = 0; id < kNumParams; ++id) {
      const float good = plugin.GetNormalized(id);
      plugin.SetNormalized(id, bad);
      plugin.Text(effGetParamDisplay, id);
      plugin.Process(Noise(128, 8));  // a render with this value begins
      plugin.SetNormalized(id, good);
    }
  }
  EXPECT_EQ(ResponseOf(plugin), before);
}

TEST(HostLife, AfterAStormOfChangesFromManyThreadsTheLastSettingsWin) {
  HostedPlugin plugin;
  SetSmallRoom(plugin);
  plugin.SettleByReset();
  std::atomic<bool> stop{false};
  std::thread audio([&] {
    const Stereo noise = Noise(64, 9);
    while (!stop) plugin.Process(noise);
  });
  std::vector<std::thread> writers;
  for (unsigned w = 0; w < 3; ++w) {
    writers.emplace_back([&plugin, w] {
      Random random(10 + w);
      for (int i = 0; i < 300; ++i) {
        const int id = random.integer(0, kNumParams - 1);
        const bool isSwitch = id > kFirstDim && id < kDummyVar && (id - kFirstDim) % 4 == 0;
        if (!isSwitch) plugin.SetNormalized(id, random.unit());
        plugin.Text(effGetParamDisplay, id);
        plugin.GetNormalized(id);
      }
    });
  }
  for (auto& writer : writers) writer.join();
  stop = true;
  audio.join();

  for (int id = 0; id < kNumParams; ++id) {
    plugin.Set(id, kParamTable[static_cast<size_t>(id)].defaultValue);
  }
  HostedPlugin fresh;
  SetSmallRoom(plugin, 7);
  SetSmallRoom(fresh, 7);
  EXPECT_EQ(ResponseOf(plugin), ResponseOf(fresh));
}

TEST(HostLife, ManyInstancesAreMadeAtOnceAndClosedInTheMiddleOfARender) {
  std::vector<std::thread> hosts;
  for (unsigned h = 0; h < 6; ++h) {
    hosts.emplace_back([h] {
      HostedPlugin plugin(64 << (h % 3), 8000.0f);
      plugin.Set(DimParam(3, kDimEnabled), 1);
      plugin.Process(Noise(64, h));  // a render begins and is still running at the close
    });
  }
  for (auto& host : hosts) host.join();
}
