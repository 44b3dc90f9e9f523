// A host's life with the built module: scan, open, opcodes, sound, changes from several threads,
// close at any moment.
#include <elf.h>
#include <gtest/gtest.h>

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
  std::ifstream file(ModulePath(), std::ios::binary);
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

Stereo Delayed(const Stereo& x, int samples) {
  Stereo y{Signal(x.left.size()), Signal(x.right.size())};
  std::copy(x.left.begin(), x.left.end() - samples, y.left.begin() + samples);
  std::copy(x.right.begin(), x.right.end() - samples, y.right.begin() + samples);
  return y;
}

bool AllFinite(const Signal& x) {
  return std::all_of(x.begin(), x.end(), [](float v) { return std::isfinite(v); });
}

float LargestDifference(const Stereo& a, const Stereo& b) {
  float largest = 0.0f;
  for (size_t i = 0; i < a.left.size(); ++i) {
    largest =
        std::max({largest, std::fabs(a.left[i] - b.left[i]), std::fabs(a.right[i] - b.right[i])});
  }
  return largest;
}

// The response as it comes out after the module's delay of one block.
Stereo ResponseOf(HostedPlugin& plugin, int count) {
  plugin.SettleByReset();
  return plugin.Process(Impulse(count));
}

}  // namespace

TEST(HostLife, TheModuleExportsItsTwoEntryPointsAndNothingElse) {
  EXPECT_EQ(ExportedSymbols(), (std::set<std::string>{"VSTPluginMain", "main"}));
  EXPECT_NE(ModuleEntry("main"), nullptr);
}

TEST(HostLife, TheRecordTellsTheHostWhatItIs) {
  const HostedPlugin plugin;
  const AEffect& effect = *plugin.Effect();
  EXPECT_EQ(effect.magic, kEffectMagic);
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
  EXPECT_EQ(plugin.Dispatch(effGetVstVersion), 2400);
  EXPECT_EQ(plugin.Dispatch(effGetPlugCategory), kPlugCategEffect);
  EXPECT_EQ(plugin.Text(effGetProgramName, 0), "Default");
  EXPECT_EQ(plugin.Text(effGetProgramNameIndexed, 27), "Z-zone-distant");
}

TEST(HostLife, EveryParameterHasItsNameTextAndUnit) {
  const HostedPlugin plugin;
  EXPECT_EQ(plugin.Text(effGetParamName, 0), "Time Delay");
  EXPECT_EQ(plugin.Text(effGetParamName, DimParam(4, kDimRefl)), "Refl. 4");
  EXPECT_EQ(plugin.Text(effGetParamName, 45), "Future Param 0");
  EXPECT_EQ(plugin.Text(effGetParamDisplay, kTimeStretch), "1.00");
  EXPECT_EQ(plugin.Text(effGetParamLabel, kTimeStretch), "x");
  EXPECT_EQ(plugin.Text(effGetParamDisplay, DimParam(0, kDimEnabled)), "on");
  EXPECT_EQ(plugin.Text(effGetParamLabel, DimParam(0, kDimEnabled)), "");
  for (int id = 0; id < kNumParams; ++id) {
    const ParamSpec& spec = kParamTable[static_cast<size_t>(id)];
    EXPECT_EQ(plugin.Text(effGetParamName, id), spec.name);
    EXPECT_NEAR(plugin.GetNormalized(id), (spec.defaultValue - spec.min) / (spec.max - spec.min),
                1e-6)
        << spec.name;
  }
}

TEST(HostLife, SurvivesEveryOpcodeWithAbsurdArguments) {
  const HostedPlugin plugin;
  const AEffect& effect = *plugin.Effect();
  for (int opcode = -3; opcode < 80; ++opcode) {
    if (opcode == effClose) continue;
    for (const int index : {-2147483647 - 1, -1, 0, 7, 8, 46, 2147483647}) {
      for (const VstIntPtr value : {-2147483647 - 1, -1, 0, 45, 2147483647}) {
        const bool valueIsPointer =
            opcode == effSetSpeakerArrangement || opcode == effGetSpeakerArrangement;
        plugin.Dispatch(opcode, index, valueIsPointer ? 0 : value, nullptr,
                        std::numeric_limits<float>::quiet_NaN());
      }
    }
  }
  for (const int id : {-1, 46, 1000000, -2147483647 - 1}) {
    effect.setParameter(plugin.Effect(), id, 0.5f);
    EXPECT_EQ(effect.getParameter(plugin.Effect(), id), 0.0f);
  }
  plugin.Dispatch(effSetSampleRate, 0, 0, nullptr, 44100.0f);
  plugin.Dispatch(effSetBlockSize, 0, 64);
  EXPECT_TRUE(AllFinite(plugin.Process(Noise(2000, 1)).left));
}

TEST(HostLife, SurvivesRatesAndBlockSizesThatNoHostHas) {
  HostedPlugin plugin;
  SetSmallRoom(plugin);
  plugin.SettleByReset();
  const float inf = std::numeric_limits<float>::infinity();
  for (const float rate : {0.0f, -44100.0f, inf, -inf, std::nanf(""), 1e30f, 1.0f, 8000.0f}) {
    plugin.Dispatch(effSetSampleRate, 0, 0, nullptr, rate);
    EXPECT_TRUE(AllFinite(plugin.Process(Noise(300, 2)).left)) << rate;
  }
  plugin.Dispatch(effSetSampleRate, 0, 0, nullptr, 44100.0f);
  for (const VstIntPtr size : {VstIntPtr{0}, VstIntPtr{-64}, VstIntPtr{1} << 40,
                               VstIntPtr{2147483647}, VstIntPtr{1}, VstIntPtr{7}}) {
    plugin.Dispatch(effSetBlockSize, 0, size);
    EXPECT_TRUE(AllFinite(plugin.Process(Noise(300, 3)).left)) << size;
  }
}

TEST(HostLife, WithMixAtZeroTheInputComesOutOneBlockLaterBitForBit) {
  constexpr int B = 96;
  HostedPlugin plugin(B);
  SetSmallRoom(plugin);
  plugin.Set(kMix, 0);
  plugin.SettleByReset();
  const Stereo noise = Noise(B * 40, 4);
  const Stereo want = Delayed(noise, B);
  for (const int frames : {B, B / 4, 1, 37, 5 * B + 3}) {
    plugin.Dispatch(effMainsChanged, 0, 0);  // clears the signal memory
    const Stereo got = plugin.Process(noise, frames);
    EXPECT_EQ(got.left, want.left) << "frames " << frames;
    EXPECT_EQ(got.right, want.right) << "frames " << frames;
  }
}

TEST(HostLife, CallsWithoutFramesDoNothing) {
  const HostedPlugin plugin;
  AEffect* effect = plugin.Effect();
  float* floats[] = {nullptr, nullptr};
  double* doubles[] = {nullptr, nullptr};
  for (const int frames : {0, -1, -2147483647 - 1}) {
    effect->process(effect, floats, floats, frames);
    effect->processReplacing(effect, floats, floats, frames);
    effect->processDoubleReplacing(effect, doubles, doubles, frames);
  }
}

TEST(HostLife, TheThreeProcessEntriesGiveTheSameSound) {
  constexpr int B = 64;
  constexpr int count = B * 20;
  HostedPlugin plugin(B);
  SetSmallRoom(plugin);
  plugin.SettleByReset();
  const Stereo noise = Noise(count, 5);
  const Stereo replaced = plugin.Process(noise);
  AEffect* effect = plugin.Effect();

  plugin.SettleByReset();
  Stereo in = noise, added{Signal(count, 0.25f), Signal(count, -0.5f)};
  for (int at = 0; at < count; at += B) {
    float* ins[] = {in.left.data() + at, in.right.data() + at};
    float* outs[] = {added.left.data() + at, added.right.data() + at};
    effect->process(effect, ins, outs, B);
  }
  plugin.SettleByReset();
  std::vector<double> left(noise.left.begin(), noise.left.end());
  std::vector<double> right(noise.right.begin(), noise.right.end());
  std::vector<double> outLeft(count), outRight(count);
  for (int at = 0; at < count; at += B) {
    double* ins[] = {left.data() + at, right.data() + at};
    double* outs[] = {outLeft.data() + at, outRight.data() + at};
    effect->processDoubleReplacing(effect, ins, outs, B);
  }
  for (size_t i = 0; i < count; ++i) {
    ASSERT_EQ(added.left[i], 0.25f + replaced.left[i]) << i;
    ASSERT_EQ(added.right[i], -0.5f + replaced.right[i]) << i;
    ASSERT_EQ(static_cast<float>(outLeft[i]), replaced.left[i]) << i;
    ASSERT_EQ(static_cast<float>(outRight[i]), replaced.right[i]) << i;
  }
}

TEST(HostLife, AMonoConnectionReverberatesItsOneChannel) {
  HostedPlugin plugin;
  SetSmallRoom(plugin);
  plugin.SettleByReset();
  Stereo noise = Noise(2000, 6);
  std::fill(noise.right.begin(), noise.right.end(), 0.0f);
  const Stereo stereo = plugin.Process(noise);
  plugin.SettleByReset();
  VstSpeakerArrangement mono{};
  mono.numChannels = 1;
  plugin.Dispatch(effSetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&mono), &mono);
  Signal in = noise.left, out(in.size());
  for (size_t at = 0; at < in.size(); at += 50) {
    float* ins[] = {in.data() + at};
    float* outs[] = {out.data() + at};
    plugin.Effect()->processReplacing(plugin.Effect(), ins, outs, 50);
  }
  EXPECT_EQ(out, stereo.left);
}

TEST(HostLife, TheSoundIsTheInputConvolvedWithTheResponse) {
  HostedPlugin plugin;
  SetSmallRoom(plugin);
  const int count = 12000;
  const Stereo h = ResponseOf(plugin, count);
  plugin.SettleByReset();
  const Stereo x = Noise(count, 7);
  const Stereo y = plugin.Process(x);
  double worst = 0, peak = 0;
  for (int n = 64; n < count; n += 97) {
    double want = 0;
    for (int k = 64; k <= n; ++k) {
      want += static_cast<double>(h.left[static_cast<size_t>(k)]) *
              static_cast<double>(x.left[static_cast<size_t>(n - k)]);
    }
    peak = std::max(peak, std::fabs(want));
    worst = std::max(worst, std::fabs(want - static_cast<double>(y.left[static_cast<size_t>(n)])));
  }
  EXPECT_GT(peak, 0.1);
  EXPECT_LT(worst, peak * 1e-5);  // -100 dB
}

TEST(HostLife, NumbersThatAreNoneLeaveNoTraceOnceGoodOnesFollow) {
  HostedPlugin plugin;
  SetSmallRoom(plugin);
  std::vector<float> good;
  for (int id = 0; id < kNumParams; ++id) good.push_back(plugin.GetNormalized(id));
  const Stereo before = ResponseOf(plugin, 8000);
  const float inf = std::numeric_limits<float>::infinity();
  for (const float bad : {std::nanf(""), inf, -inf, -1.0f, 2.0f, -1e30f, 1e30f}) {
    for (int id = 0; id < kNumParams; ++id) {
      plugin.SetNormalized(id, bad);
      plugin.Text(effGetParamDisplay, id);
      plugin.Process(Noise(128, 8));  // a render with this value begins
      plugin.SetNormalized(id, good[static_cast<size_t>(id)]);
    }
  }
  EXPECT_EQ(LargestDifference(ResponseOf(plugin, 8000), before), 0.0f);
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
    const ParamSpec& spec = kParamTable[static_cast<size_t>(id)];
    plugin.Set(id, spec.defaultValue);
  }
  SetSmallRoom(plugin, 7);
  HostedPlugin fresh;
  SetSmallRoom(fresh, 7);
  EXPECT_EQ(LargestDifference(ResponseOf(plugin, 8000), ResponseOf(fresh, 8000)), 0.0f);
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
