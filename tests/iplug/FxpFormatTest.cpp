// Program and bank files: their bytes, their damages, and what reading them does.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <csignal>
#include <filesystem>

#include "iplug/FileBytes.h"
#include "iplug/FxpFormat.h"
#include "tests/iplug/TestPlug.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

// Bytes written by hand, big-endian.
struct Hand {
  Hand& Text(const std::string& text) { return Add({text.begin(), text.end()}); }
  Hand& Int(std::uint32_t v) {
    for (const int shift : {24, 16, 8, 0}) bytes.push_back(static_cast<std::uint8_t>(v >> shift));
    return *this;
  }
  Hand& Zeros(std::size_t n) { return Add(Bytes(n, 0)); }
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
    for (const double v : normalised) Int(std::bit_cast<std::uint32_t>(static_cast<float>(v)));
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

bool ReadProgram(Rig& rig, const Bytes& bytes) {
  return rig.plug->ReadProgramFile(bytes.data(), bytes.size());
}
bool ReadBank(Rig& rig, const Bytes& bytes) {
  return rig.plug->ReadBankFile(bytes.data(), bytes.size());
}

FxpFault Parse(const Bytes& bytes, bool* complete = nullptr) {
  ProgramFile program;
  return ParseProgramFile(bytes.data(), bytes.size(), {0x54657374, 6, false}, &program, complete);
}

// The beginning of `bytes`.
Bytes Cut(Bytes bytes, std::size_t size) {
  bytes.resize(size);
  return bytes;
}

// `bytes` with one big-endian number replaced.
Bytes With(Bytes bytes, std::size_t at, std::uint32_t value) {
  const Bytes number = Hand().Int(value).bytes;
  std::copy(number.begin(), number.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
  return bytes;
}

TEST(PresetFiles, RegularFormsAreByteForByteAsPublished) {
  Rig rig({.presets = 2});
  rig.plug->MakePresetFromValues("A name of more than twenty-seven", kValues.data());
  rig.plug->RestorePreset(0);
  const Hand first = Hand().Program("A name of more than twenty-", kNormalised);
  EXPECT_EQ(rig.plug->ProgramFileBytes(), first.bytes);
  rig.plug->RestorePreset(1);
  rig.plug->Preset(1)->mChunk.Resize(8);  // ends after the first parameter
  Hand bank = Hand().BankHead(2, 1).Add(first.bytes);
  bank.Program("user preset 1", {0.5, 0.5, 0, 0, 0, 1});
  EXPECT_EQ(rig.plug->BankFileBytes(), bank.bytes);
}

TEST(PresetFiles, ChunkFormsHoldTheHostChunks) {
  Rig rig({.chunks = true});
  rig.plug->MakeDefaultPreset("Init");
  const Bytes preset = rig.GetChunk(true);
  const Bytes bank = rig.GetChunk(false);
  const auto n = static_cast<std::uint32_t>(preset.size());
  const auto m = static_cast<std::uint32_t>(bank.size());
  Hand fxp = Hand().Head(n + 60, "FPCh", 1).Int(6).Name("Init").Int(n).Add(preset);
  EXPECT_EQ(rig.plug->ProgramFileBytes(), fxp.bytes);
  const Hand fxb = Hand().Head(m + 160, "FBCh", 2).Int(4).Int(0).Zeros(124).Int(m).Add(bank);
  EXPECT_EQ(rig.plug->BankFileBytes(), fxb.bytes);
  Rig to({.chunks = true});
  fxp.bytes.erase(fxp.bytes.begin() + 60, fxp.bytes.begin() + 68);
  to.plug->GetParam(kLevel)->Set(9);
  EXPECT_TRUE(ReadProgram(to, fxp.bytes)) << "also without its header";
  EXPECT_EQ(to.Values(), rig.Values());
}

TEST(PresetFiles, SavedAndLoadedAgainTheySoundTheSameInBothForms) {
  const std::string program = TempPath("a.fxp");
  const std::string bank = TempPath("a.fxb");
  for (const bool chunks : {false, true}) {
    Rig from({.chunks = chunks});
    Rig to({.chunks = chunks});
    from.plug->MakeEmptyPresets();
    to.plug->MakeEmptyPresets();
    from.plug->GetParam(kTapered)->Set(12.3456789);
    from.Dispatch(effSetProgram, 0, 2);
    from.plug->GetParam(kLevel)->Set(3.3333333);
    from.plug->ModifyCurrentPreset("Third");
    const auto same = [&] {
      for (int i = 0; i < kNumTestParams; ++i) {
        EXPECT_EQ(to.effect->getParameter(to.effect, i), from.effect->getParameter(from.effect, i));
      }
    };
    ASSERT_TRUE(from.plug->SaveProgramToFile(program.c_str()));
    ASSERT_TRUE(from.plug->SaveBankToFile(bank.c_str()));
    ASSERT_TRUE(to.plug->LoadProgramFromFile(program.c_str()));
    EXPECT_EQ(to.TakeLog().find(kAllAnnounced), 0U);
    EXPECT_STREQ(to.plug->GetPresetName(0), "Third");
    EXPECT_EQ(to.host.calls.size(), 1U) << "told that the program is another";
    same();
    ASSERT_TRUE(to.plug->LoadBankFromFile(bank.c_str()));
    // The regular form says which program is current; a chunk leaves the plug-in where it is.
    EXPECT_EQ(to.plug->GetCurrentPresetIdx(), chunks ? 0 : 2);
    for (const int slot : {2, 0}) {
      from.Dispatch(effSetProgram, 0, slot);
      to.Dispatch(effSetProgram, 0, slot);
      same();
    }
    Rig other({.chunks = !chunks});
    other.plug->MakeEmptyPresets();
    EXPECT_EQ(other.plug->LoadProgramFromFile(program.c_str()), !chunks);
    EXPECT_EQ(other.plug->LoadBankFromFile(bank.c_str()), !chunks) << "only one reads chunks";
  }
}

TEST(PresetFiles, ADamagedHeaderIsNamedAndChangesNothing) {
  const Bytes good = Hand().Program("x", kNormalised).bytes;
  for (const auto& [bytes, fault] : {std::pair{Cut(good, 15), FxpFault::kTooShort},
                                     {Cut(good, 0), FxpFault::kTooShort},
                                     {Cut(good, 26), FxpFault::kTooShort},
                                     {With(good, 0, 0), FxpFault::kWrongMagic},
                                     {With(good, 8, 0x4678426B), FxpFault::kWrongMagic},
                                     {With(good, 8, 0x46504368), FxpFault::kStateChunk},
                                     {With(good, 12, 2), FxpFault::kWrongVersion},
                                     {With(good, 16, 0x74736554), FxpFault::kOtherPlugin},
                                     {With(good, 24, 7), FxpFault::kWrongParamCount}}) {
    Rig rig;
    const std::vector<double> before = rig.Values();
    EXPECT_EQ(Parse(bytes), fault);
    EXPECT_STRNE(FxpFaultText(fault), "");
    EXPECT_FALSE(ReadProgram(rig, bytes)) << FxpFaultText(fault);
    EXPECT_EQ(rig.Values(), before);
    EXPECT_EQ(rig.TakeLog(), "");
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
    bool complete = true;
    Parse(Cut(good, size), &complete);
    EXPECT_FALSE(complete) << size;
    EXPECT_TRUE(ReadProgram(rig, Cut(good, size))) << size;
    EXPECT_STREQ(rig.plug->GetPresetName(0), size < 56 ? "Empty" : "short") << size;
    EXPECT_EQ(rig.plug->Value(kSwitch), size < 60 ? 0.0 : 1.0) << size;
  }
}

TEST(PresetFiles, ValuesOutOfRangeInAFileAreClamped) {
  for (const double bad : {-1.0, 2.0, 1e30, -1e30, double(NAN), double(INFINITY)}) {
    Rig rig({.presets = 1});
    rig.plug->MakeEmptyPresets();
    const Hand bank = Hand().BankHead(1, 7).Program("x", std::vector<double>(6, bad));
    EXPECT_TRUE(ReadBank(rig, bank.bytes));
    EXPECT_TRUE(rig.InRange()) << bad;
  }
}

TEST(PresetFiles, ABankStoresProgramByProgram) {
  Rig rig({.presets = 2});
  rig.plug->MakeEmptyPresets();
  Hand bank = Hand().BankHead(3, 0).Program("one", kNormalised).Program("two", {});
  EXPECT_FALSE(ReadBank(rig, bank.bytes)) << "the third is missing";
  EXPECT_STREQ(rig.plug->GetPresetName(0), "one") << "what came before it stays";
  EXPECT_TRUE(rig.host.calls.empty());
  bank = Hand().BankHead(3, 0).Program("one", kNormalised);
  bank.Program("two", kNormalised).Program("three", std::vector<double>(6, 0.0));
  EXPECT_TRUE(ReadBank(rig, bank.bytes));
  EXPECT_STREQ(rig.plug->GetPresetName(1), "three") << "programs beyond the slots end in the last";
  EXPECT_EQ(rig.plug->Value(kLevel), 5.0);
  rig.plug->RestorePreset(1);
  EXPECT_EQ(rig.plug->Value(kLevel), 0.0);
  rig.plug->GetParam(kLevel)->Set(9);
  EXPECT_TRUE(ReadBank(rig, {'C', 'c', 'n'}));
  EXPECT_EQ(rig.plug->GetCurrentPresetIdx(), 1);
  EXPECT_EQ(rig.plug->Value(kLevel), 0.0) << "almost nothing restores the current one";
  EXPECT_FALSE(ReadBank(rig, With(bank.bytes, 164, 0x46504368))) << "no program by its mark";
  EXPECT_FALSE(ReadBank(rig, {'C', 'c', 'n', 'K'}));
  EXPECT_FALSE(ReadBank(rig, {'x', 'x', 'x', 'x', 'x'}));
}

// How many files begin with that path.
long FilesLike(const std::string& path) {
  const std::filesystem::directory_iterator all(std::filesystem::path(path).parent_path());
  return std::count_if(begin(all), end(all),
                       [&](const auto& entry) { return entry.path().string().starts_with(path); });
}

TEST(Files, AFileThatCannotBeCreatedLeavesNothingBehind) {
  Rig rig;
  const std::string dir = TempPath("directory.fxp");
  std::filesystem::create_directory(dir);
  for (const char* path : {"", "/nowhere/at/all.fxp", "/dev/null", dir.c_str()}) {
    EXPECT_FALSE(rig.plug->SaveProgramToFile(path)) << path;
    EXPECT_FALSE(rig.plug->SaveBankToFile(path)) << path;
    EXPECT_FALSE(rig.plug->DumpPresetBlob(path)) << path;
    EXPECT_FALSE(rig.plug->LoadProgramFromFile(path)) << path;
  }
  EXPECT_EQ(FilesLike(dir), 1);
}

TEST(Files, SavingReplacesAndLoadingRefusesTheHuge) {
  const std::string path = TempPath("a.bin");
  const Bytes longer(50000, 'x');
  Bytes bytes;
  ASSERT_TRUE(WriteFileBytes(path.c_str(), longer.data(), longer.size()));
  ASSERT_TRUE(ReadFileBytes(path.c_str(), &bytes));
  EXPECT_EQ(bytes, longer);
  ASSERT_TRUE(WriteFileBytes(path.c_str(), "abc", 3));
  rlimit old{};
  getrlimit(RLIMIT_FSIZE, &old);
  const rlimit small{1000, old.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  EXPECT_FALSE(WriteFileBytes(path.c_str(), longer.data(), longer.size())) << "no room";
  std::signal(SIGXFSZ, handler);
  setrlimit(RLIMIT_FSIZE, &old);
  ASSERT_TRUE(ReadFileBytes(path.c_str(), &bytes));
  EXPECT_EQ(bytes, (Bytes{'a', 'b', 'c'})) << "the old file stays";
  EXPECT_EQ(FilesLike(path), 1);
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
  EXPECT_FALSE(rig.plug->SaveBankAsFXB("mine")) << "the user declined";
  EXPECT_EQ(rig.TakeLog(), "Prompt 1 fxb mine");
  editor->answer = TempPath("asked.fxp");
  EXPECT_TRUE(rig.plug->SaveProgramAsFXP("mine"));
  EXPECT_TRUE(rig.plug->LoadProgramFromFXP());
  EXPECT_FALSE(rig.plug->LoadBankFromFXB()) << "a program is no bank";
  EXPECT_TRUE(rig.plug->SaveBankAsFXB("mine"));
  EXPECT_TRUE(rig.plug->LoadBankFromFXB());
}

}  // namespace
