// Preset slots, and the dumps that write them as source text.
#include <gtest/gtest.h>

#include <cstring>

#include "iplug/Base64.h"
#include "iplug/FileBytes.h"
#include "tests/iplug/TestPlug.h"

namespace {

std::vector<double> Stored(Rig& rig, int idx) {
  const ByteChunk& chunk = rig.plug->Preset(idx)->mChunk;
  std::vector<double> values(static_cast<std::size_t>(chunk.Size()) / sizeof(double));
  chunk.GetBytes(values.data(), chunk.Size(), 0);
  return values;
}

std::string ReadText(const std::string& path) {
  std::vector<std::uint8_t> bytes;
  EXPECT_TRUE(ReadFileBytes(path.c_str(), &bytes));
  return {bytes.begin(), bytes.end()};
}

TEST(Presets, MakingFillsTheFirstFreeSlotWithRawValues) {
  Rig rig;
  rig.plug->MakePreset("raw", 99.5, -7, 1, 2, 50.0, -3.0);
  EXPECT_STREQ(rig.plug->GetPresetName(0), "raw");
  EXPECT_EQ(Stored(rig, 0), (std::vector<double>{99.5, -7, 1, 2, 50, -3}));
  rig.plug->MakePresetFromNamedParams("named", 2, int{kTapered}, 12.5, int{kCount}, -1);
  EXPECT_EQ(Stored(rig, 1), (std::vector<double>{2.5, -1, 1, 1, 12.5, -3}));
  rig.plug->PruneUninitializedPresets();
  EXPECT_EQ(rig.plug->NPresets(), 2);
  rig.plug->MakePreset("one too many", 1.0, 1, 1, 1, 1.0, -1.0);
  rig.plug->MakeDefaultPreset("and more", 3);
  EXPECT_STREQ(rig.plug->GetPresetName(1), "named");
}

TEST(Presets, SlotsNeverFilledCaptureTheSoundUnderAFreshName) {
  Rig rig;
  EXPECT_STREQ(rig.plug->GetPresetName(2), "empty");
  EXPECT_TRUE(rig.plug->RestorePreset(2));
  EXPECT_STREQ(rig.plug->GetPresetName(2), "user preset 1");
  rig.plug->GetParam(kLevel)->Set(8);
  EXPECT_TRUE(rig.plug->RestorePreset(1));
  EXPECT_STREQ(rig.plug->GetPresetName(1), "user preset 2");
  EXPECT_EQ(Stored(rig, 1)[kLevel], 8.0);
  rig.plug->ModifyCurrentPreset("my user preset");
  EXPECT_TRUE(rig.plug->RestorePreset(0));
  EXPECT_STREQ(rig.plug->GetPresetName(0), "user preset 3") << "names that contain it count";
  EXPECT_TRUE(rig.plug->RestorePreset(2));
  EXPECT_EQ(rig.plug->Value(kLevel), 2.5);
  rig.plug->MakeDefaultPreset(nullptr, 1);
  EXPECT_STREQ(rig.plug->GetPresetName(3), "Empty");
}

TEST(Presets, RestoringTakesTheFirstOfTheNameAndChangesNothingWhereThereIsNone) {
  Rig rig;
  for (const auto& [name, level] : {std::pair{"a", 1.0}, {"b", 2.0}, {"b", 3.0}})
    rig.plug->MakePreset(name, level, 1, 0, 0, 0.0, -1.0);
  for (const int idx : {-1, 4, INT_MAX, INT_MIN}) EXPECT_FALSE(rig.plug->RestorePreset(idx)) << idx;
  for (const char* name : {"", "nobody", static_cast<const char*>(nullptr)})
    EXPECT_FALSE(rig.plug->RestorePreset(name));
  EXPECT_STREQ(rig.plug->GetPresetName(4), "");
  EXPECT_EQ(rig.plug->GetCurrentPresetIdx(), 0);
  EXPECT_EQ(rig.TakeLog(), "");
  EXPECT_TRUE(rig.plug->RestorePreset("b"));
  EXPECT_EQ(rig.plug->GetCurrentPresetIdx(), 1);
  EXPECT_EQ(rig.plug->Value(kLevel), 2.0);
  EXPECT_EQ(rig.TakeLog(), kAllAnnounced + std::string(" Presets"));
}

TEST(Presets, ChangingProgramsKeepsTheEditsOfTheOneLeft) {
  for (const bool chunks : {false, true}) {
    Rig rig({.chunks = chunks});
    rig.plug->MakeEmptyPresets();
    const auto levelAfter = [&](int program) {
      rig.Dispatch(effSetProgram, 0, program);
      return rig.plug->Value(kLevel);
    };
    rig.plug->GetParam(kLevel)->Set(9);
    EXPECT_EQ(levelAfter(1), 2.5);
    EXPECT_EQ(levelAfter(0), chunks ? 2.5 : 9.0) << "hosts that keep chunks save by themselves";
    rig.plug->GetParam(kLevel)->Set(4);
    EXPECT_EQ(levelAfter(0), chunks ? 2.5 : 4.0) << "also of the present one";
    levelAfter(77);
    EXPECT_EQ(rig.Dispatch(effGetProgram), 0);
  }
}

TEST(Base64, FollowsTheAlphabetAndItsPadding) {
  for (const auto& [bytes, text] : {std::pair<std::string, std::string>{"", ""},
                                    {"f", "Zg=="},
                                    {"fo", "Zm8="},
                                    {"foo", "Zm9v"},
                                    {"foob", "Zm9vYg=="},
                                    {"\xFB\xFF", "+/8="}}) {
    EXPECT_EQ(Base64Encode(bytes.data(), bytes.size()), text);
    std::uint8_t back[8];
    EXPECT_EQ(Base64Decode(text.c_str(), back, sizeof back), bytes.size());
    EXPECT_EQ(std::memcmp(back, bytes.data(), bytes.size()), 0) << text;
  }
  std::uint8_t out[3] = {9, 9, 9};
  EXPECT_EQ(Base64Decode("Zm9vYmFy", out, 2), 2U) << "no more than there is room for";
  EXPECT_EQ(out[2], 9);
  EXPECT_EQ(Base64Decode("Zm\n9v", out, 3), 1U) << "up to the first stranger";
  EXPECT_EQ(Base64Decode("Zm9v", out, 0), 0U);
}

TEST(Dumps, ABlobGivesBackTheSameBytes) {
  Rig rig;
  rig.plug->MakePreset("p", 1.0 / 3, 2, 1, 0, 77.7, -1.25);
  const std::string path = TempPath("blob.txt");
  ASSERT_TRUE(rig.plug->DumpPresetBlob(path.c_str()));
  const std::string text = ReadText(path);
  const std::string head = "MakePresetFromBlob(\"name\", \"";
  ASSERT_EQ(text.substr(0, head.size()), head);
  const std::size_t end = text.find('"', head.size());
  EXPECT_EQ(text.substr(end), "\", 48);\n");
  rig.plug->MakePresetFromBlob("q", text.substr(head.size(), end - head.size()).c_str(), 48);
  EXPECT_STREQ(rig.plug->GetPresetName(1), "q");
  EXPECT_EQ(Stored(rig, 1), Stored(rig, 0));
  rig.plug->MakePresetFromBlob("r", "//8=", 8);
  EXPECT_EQ(rig.plug->Preset(2)->mChunk.Size(), 8) << "what the text does not fill is zero";
}

TEST(Dumps, SourceCodeShowsEveryKindOfParameter) {
  Rig rig;
  rig.SetValues({1.0 / 3, -2, 0, 2, 50, -1.5});
  const char* names[] = {"kLevel", "kCount", "kSwitch", "kMode", "kTapered", "kNegated"};
  const std::string path = TempPath("code.txt");
  ASSERT_TRUE(rig.plug->DumpPresetSrcCode(path.c_str(), names));
  EXPECT_EQ(ReadText(path),
            "  MakePresetFromNamedParams(\"name\", 6,\n    kLevel, 0.333333,\n    kCount, -2,\n"
            "    kSwitch, false,\n    kMode, 2,\n    kTapered, 50.000000,\n"
            "    kNegated, -1.500000);\n");
}

}  // namespace
