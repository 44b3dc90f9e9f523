// Program and bank files: their bytes, their damages, and what reading them does.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <bit>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <fstream>

#include "iplug/FileBytes.h"
#include "iplug/PresetFile.h"
#include "tests/iplug/TestPlug.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

// Bytes written by hand, big-endian.
struct Hand {
  Hand& Text(const std::string& text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
    return *this;
  }
  Hand& Int(std::uint32_t v) {
    for (const int shift : {24, 16, 8, 0}) bytes.push_back(static_cast<std::uint8_t>(v >> shift));
    return *this;
  }
  Hand& Float(double v) { return Int(std::bit_cast<std::uint32_t>(static_cast<float>(v))); }
  Hand& Zeros(std::size_t n) {
    bytes.insert(bytes.end(), n, 0);
    return *this;
  }
  Hand& Name(const std::string& name) { return Text(name).Zeros(28 - name.size()); }
  Hand& Add(const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
    return *this;
  }
  Hand& Head(std::uint32_t byteSize, const char* magic, std::uint32_t version) {
    return Text("CcnK").Int(byteSize).Text(magic).Int(version).Text("Test").Int(10203);
  }
  // A regular program of the test plug-in.
  Hand& Program(const std::string& name, const std::vector<double>& normalised) {
    Head(0, "FxCk", 1).Int(6).Name(name);
    for (const double v : normalised) Float(v);
    return *this;
  }
  Hand& BankHead(std::uint32_t programs, std::uint32_t current) {
    return Head(0, "FxBk", 2).Int(programs).Int(current).Zeros(124);
  }
  Bytes bytes;
};

// Values that lie on every parameter's grid, and their normalised form.
const std::vector<double> kValues = {5, 3, 0, 2, 25, -0.5};
const std::vector<double> kNormalised = {0.5, 1, 0, 1, 0.5, 1};

PlugOptions Chunks() {
  PlugOptions options;
  options.chunks = true;
  return options;
}

bool ReadProgram(Rig& rig, const Bytes& bytes) {
  return rig.plug->ReadProgramFile(bytes.data(), bytes.size());
}
bool ReadBank(Rig& rig, const Bytes& bytes) {
  return rig.plug->ReadBankFile(bytes.data(), bytes.size());
}

// `bytes` with one big-endian number replaced.
Bytes With(Bytes bytes, std::size_t at, std::uint32_t value) {
  const Bytes number = Hand().Int(value).bytes;
  std::copy(number.begin(), number.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
  return bytes;
}

TEST(PresetFiles, ARegularProgramIsByteForByteAsPublished) {
  Rig rig;
  rig.plug->MakeDefaultPreset("Init");
  rig.SetValues(kValues);
  EXPECT_EQ(rig.plug->ProgramFileBytes(), Hand().Program("Init", kNormalised).bytes);
}

TEST(PresetFiles, ARegularBankIsByteForByteAsPublished) {
  PlugOptions options;
  options.presets = 2;
  Rig rig(options);
  rig.plug->MakePresetFromValues("A name of more than twenty-seven", kValues.data());
  rig.plug->RestorePreset(1);
  rig.plug->Preset(1)->mChunk.Resize(8);  // ends after the first parameter
  const double afterZero[] = {0.25, 0.5, 0, 0, 0, 1};
  EXPECT_EQ(rig.plug->BankFileBytes(), Hand()
                                           .BankHead(2, 1)
                                           .Program("A name of more than twenty-", kNormalised)
                                           .Program("user preset 1", {afterZero, afterZero + 6})
                                           .bytes);
}

TEST(PresetFiles, ChunkFormsHoldTheHostChunks) {
  Rig rig(Chunks());
  rig.plug->MakeDefaultPreset("Init");
  const Bytes preset = rig.GetChunk(true);
  const Bytes bank = rig.GetChunk(false);
  const auto n = static_cast<std::uint32_t>(preset.size());
  const auto m = static_cast<std::uint32_t>(bank.size());
  Hand fxp = Hand().Head(n + 60, "FPCh", 1).Int(6).Name("Init").Int(n).Add(preset);
  EXPECT_EQ(rig.plug->ProgramFileBytes(), fxp.bytes);
  Hand fxb = Hand().Head(m + 160, "FBCh", 2).Int(4).Int(0).Zeros(124).Int(m).Add(bank);
  EXPECT_EQ(rig.plug->BankFileBytes(), fxb.bytes);
  Rig to(Chunks());
  fxp.bytes.erase(fxp.bytes.begin() + 60, fxp.bytes.begin() + 68);
  to.plug->GetParam(kLevel)->Set(9);
  EXPECT_TRUE(ReadProgram(to, fxp.bytes)) << "also without its header";
  EXPECT_EQ(to.Values(), rig.Values());
}

class BothForms : public testing::TestWithParam<bool> {
 protected:
  PlugOptions Options() const { return GetParam() ? Chunks() : PlugOptions{}; }
};
INSTANTIATE_TEST_SUITE_P(PresetFiles, BothForms, testing::Bool());

TEST_P(BothForms, SavedAndLoadedAgainItSoundsTheSame) {
  const std::string program = TempPath("a.fxp");
  const std::string bank = TempPath("a.fxb");
  Rig from(Options());
  from.plug->MakeEmptyPresets();
  from.plug->GetParam(kTapered)->Set(12.3456789);
  from.Dispatch(effSetProgram, 0, 2);
  from.plug->GetParam(kLevel)->Set(3.3333333);
  from.plug->ModifyCurrentPreset("Third");
  ASSERT_TRUE(from.plug->SaveProgramToFile(program.c_str()));
  ASSERT_TRUE(from.plug->SaveBankToFile(bank.c_str()));

  Rig to(Options());
  to.plug->MakeEmptyPresets();
  ASSERT_TRUE(to.plug->LoadProgramFromFile(program.c_str()));
  EXPECT_STREQ(to.plug->GetPresetName(0), "Third");
  EXPECT_EQ(to.host.Count(audioMasterUpdateDisplay), 1);
  const auto same = [&] {
    for (int i = 0; i < kNumTestParams; ++i) {
      EXPECT_EQ(to.effect->getParameter(to.effect, i), from.effect->getParameter(from.effect, i));
    }
  };
  same();
  ASSERT_TRUE(to.plug->LoadBankFromFile(bank.c_str()));
  // The regular form says which program is current; a chunk leaves the plug-in where it is.
  EXPECT_EQ(to.plug->GetCurrentPresetIdx(), GetParam() ? 0 : 2);
  to.Dispatch(effSetProgram, 0, 2);
  same();
  from.Dispatch(effSetProgram, 0, 0);
  to.Dispatch(effSetProgram, 0, 0);
  same();
}

TEST(PresetFiles, OnlyAPlugInWithChunksReadsTheChunkForm) {
  Rig with(Chunks());
  Rig without;
  with.plug->MakeEmptyPresets();
  without.plug->MakeEmptyPresets();
  EXPECT_FALSE(ReadProgram(without, with.plug->ProgramFileBytes()));
  EXPECT_FALSE(ReadBank(without, with.plug->BankFileBytes()));
  EXPECT_TRUE(ReadProgram(with, without.plug->ProgramFileBytes()));
  EXPECT_TRUE(ReadBank(with, without.plug->BankFileBytes()));
}

TEST(PresetFiles, ADamagedHeaderIsNamedAndChangesNothing) {
  const Bytes good = Hand().Program("x", kNormalised).bytes;
  Bytes cut = good;
  cut.resize(15);
  Bytes beforeCount = good;
  beforeCount.resize(26);
  const struct {
    Bytes bytes;
    PresetFault fault;
  } kCases[] = {{cut, PresetFault::kTooShort},
                {{}, PresetFault::kTooShort},
                {beforeCount, PresetFault::kTooShort},
                {With(good, 0, 0), PresetFault::kWrongMagic},
                {With(good, 8, 0x4678426B), PresetFault::kWrongMagic},
                {With(good, 8, 0x46504368), PresetFault::kStateChunk},
                {With(good, 12, 2), PresetFault::kWrongVersion},
                {With(good, 16, 0x74736554), PresetFault::kOtherPlugin},
                {With(good, 24, 7), PresetFault::kWrongParamCount}};
  for (const auto& c : kCases) {
    Rig rig;
    const std::vector<double> before = rig.Values();
    ProgramFile program;
    EXPECT_EQ(ParseProgramFile(c.bytes.data(), c.bytes.size(), {0x54657374, 6, false}, &program),
              c.fault);
    EXPECT_STRNE(PresetFaultText(c.fault), "");
    EXPECT_FALSE(ReadProgram(rig, c.bytes)) << PresetFaultText(c.fault);
    EXPECT_EQ(rig.Values(), before);
    EXPECT_EQ(rig.plug->TakeLog(), "");
    EXPECT_TRUE(rig.host.calls.empty());
  }
  Rig rig;
  EXPECT_TRUE(ReadProgram(rig, With(With(good, 4, 12345), 20, 99)))
      << "sizes and versions are free";
}

TEST(PresetFiles, AProgramThatEndsInItsValuesRepeatsTheLastOne) {
  const Bytes good = Hand().Program("short", {0.5, 1, 1, 1, 0.5, 0}).bytes;
  for (std::size_t size = 28; size < good.size(); ++size) {
    Rig rig;
    rig.plug->MakeEmptyPresets();
    const Bytes cut(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size));
    ProgramFile program;
    bool complete = true;
    ParseProgramFile(cut.data(), cut.size(), {0x54657374, 6, false}, &program, &complete);
    EXPECT_FALSE(complete) << size;
    EXPECT_TRUE(ReadProgram(rig, cut)) << size;
    EXPECT_STREQ(rig.plug->GetPresetName(0), size < 56 ? "Empty" : "short") << size;
    const std::size_t whole = size < 60 ? 0 : (size - 56) / 4;
    EXPECT_EQ(rig.plug->GetParam(kSwitch)->Value(), whole == 0 ? 0.0 : 1.0) << size;
  }
}

TEST(PresetFiles, ValuesOutOfRangeInAFileAreClamped) {
  for (const double bad : {-1.0, 2.0, 1e30, -1e30, double(NAN), double(INFINITY)}) {
    PlugOptions options;
    options.presets = 1;
    Rig rig(options);
    rig.plug->MakeEmptyPresets();
    const Hand bank = Hand().BankHead(1, 7).Program("x", std::vector<double>(6, bad));
    EXPECT_TRUE(ReadBank(rig, bank.bytes));
    EXPECT_TRUE(rig.InRange()) << bad;
  }
}

TEST(PresetFiles, ABankStoresProgramByProgram) {
  PlugOptions options;
  options.presets = 2;
  Rig rig(options);
  rig.plug->MakeEmptyPresets();
  Hand bank = Hand().BankHead(3, 0).Program("one", kNormalised).Program("two", {});
  EXPECT_FALSE(ReadBank(rig, bank.bytes)) << "the third is missing";
  EXPECT_STREQ(rig.plug->GetPresetName(0), "one") << "what came before it stays";
  EXPECT_EQ(rig.host.Count(audioMasterUpdateDisplay), 0);
  bank = Hand().BankHead(3, 0).Program("one", kNormalised);
  bank.Program("two", kNormalised).Program("three", std::vector<double>(6, 0.0));
  EXPECT_TRUE(ReadBank(rig, bank.bytes));
  EXPECT_STREQ(rig.plug->GetPresetName(1), "three") << "programs beyond the slots end in the last";
  EXPECT_EQ(rig.plug->GetParam(kLevel)->Value(), 5.0);
  rig.plug->RestorePreset(1);
  EXPECT_EQ(rig.plug->GetParam(kLevel)->Value(), 0.0);
}

TEST(PresetFiles, ABankOfAlmostNothingRestoresTheCurrentPreset) {
  Rig rig;
  rig.plug->MakeEmptyPresets();
  rig.Dispatch(effSetProgram, 0, 1);
  rig.plug->GetParam(kLevel)->Set(9);
  EXPECT_TRUE(ReadBank(rig, {'C', 'c', 'n'}));
  EXPECT_EQ(rig.plug->GetCurrentPresetIdx(), 1);
  EXPECT_EQ(rig.plug->GetParam(kLevel)->Value(), 2.5);
  EXPECT_FALSE(ReadBank(rig, {'C', 'c', 'n', 'K'}));
  EXPECT_FALSE(ReadBank(rig, {'x', 'x', 'x', 'x', 'x'}));
}

TEST(Files, AFileThatCannotBeCreatedLeavesNothingBehind) {
  Rig rig;
  EXPECT_FALSE(rig.plug->SaveProgramToFile(""));
  EXPECT_FALSE(rig.plug->SaveProgramToFile("/nowhere/at/all.fxp"));
  EXPECT_FALSE(rig.plug->SaveBankToFile("/dev/null")) << "not a regular file";
  const std::string dir = TempPath("directory.fxp");
  std::filesystem::create_directory(dir);
  EXPECT_FALSE(rig.plug->SaveProgramToFile(dir.c_str()));
  EXPECT_FALSE(std::filesystem::exists(dir + ".part"));
  EXPECT_FALSE(rig.plug->LoadProgramFromFile(dir.c_str()));
  EXPECT_FALSE(rig.plug->LoadBankFromFile("/nowhere/at/all.fxb"));
}

TEST(Files, SavingReplacesAndLoadingRefusesTheHuge) {
  const std::string path = TempPath("a.bin");
  const std::string longer(50000, 'x');
  ASSERT_TRUE(WriteFileBytes(path.c_str(), longer.data(), longer.size()));
  Bytes bytes;
  ASSERT_TRUE(ReadFileBytes(path.c_str(), &bytes));
  EXPECT_EQ(bytes.size(), longer.size());
  ASSERT_TRUE(WriteFileBytes(path.c_str(), "abc", 3));
  ASSERT_TRUE(ReadFileBytes(path.c_str(), &bytes));
  EXPECT_EQ(bytes, (Bytes{'a', 'b', 'c'}));
  rlimit old{};
  getrlimit(RLIMIT_FSIZE, &old);
  const rlimit small{1000, old.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  EXPECT_FALSE(WriteFileBytes(path.c_str(), longer.data(), longer.size())) << "no room";
  std::signal(SIGXFSZ, handler);
  setrlimit(RLIMIT_FSIZE, &old);
  EXPECT_EQ(std::filesystem::file_size(path), 3U) << "the old file stays";
  EXPECT_FALSE(std::filesystem::exists(path + ".part"));
  std::filesystem::resize_file(path, (std::uintmax_t{64} << 20) + 1);
  EXPECT_FALSE(ReadFileBytes(path.c_str(), &bytes));
  std::filesystem::remove(path);
}

TEST(Files, TheFourOperationsAskTheEditorForThePath) {
  Rig rig;
  rig.plug->MakeEmptyPresets();
  EXPECT_FALSE(rig.plug->SaveProgramAsFXP("mine")) << "no editor to ask";
  EXPECT_FALSE(rig.plug->LoadBankFromFXB());
  auto* editor = new FakeEditor(rig.plug.get());
  rig.plug->AttachGraphics(editor);
  rig.plug->TakeLog();
  EXPECT_FALSE(rig.plug->SaveBankAsFXB("mine")) << "the user declined";
  EXPECT_EQ(rig.plug->TakeLog(), "Prompt mine 1 fxb");
  editor->answer = TempPath("asked.fxp");
  EXPECT_TRUE(rig.plug->SaveProgramAsFXP("mine"));
  EXPECT_TRUE(rig.plug->LoadProgramFromFXP());
  EXPECT_FALSE(rig.plug->LoadBankFromFXB()) << "a program is no bank";
  EXPECT_TRUE(rig.plug->SaveBankAsFXB("mine"));
  EXPECT_TRUE(rig.plug->LoadBankFromFXB());
}

}  // namespace
