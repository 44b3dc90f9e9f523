// State and bank chunks, whole, truncated and strange.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "iplug/ByteChunk.h"
#include "tests/iplug/TestPlug.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

const std::vector<double> kValues = {7.125, -2, 0, 2, 33.3, -1.75};
const Bytes kHeader = {'t', 'f', 'f', 'p', 0, 0, 1, 0};

Bytes operator+(Bytes a, const Bytes& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

template <typename T>
Bytes Raw(const std::vector<T>& values) {
  const auto* raw = reinterpret_cast<const std::uint8_t*>(values.data());
  return {raw, raw + values.size() * sizeof(T)};
}

// One preset of a bank, by hand; without state for an empty slot.
Bytes Entry(const std::string& name, const std::vector<double>& state = {}) {
  const Bytes length = Raw(std::vector{static_cast<std::int32_t>(name.size())});
  const Bytes flag = {static_cast<std::uint8_t>(!state.empty())};
  return length + Bytes(name.begin(), name.end()) + flag + Raw(state);
}

struct ChunkOf : ByteChunk {
  explicit ChunkOf(const Bytes& bytes) { PutBytes(bytes.data(), static_cast<int>(bytes.size())); }
};

TEST(ByteChunk, ReadsThatDoNotFitLeaveTheirTarget) {
  ByteChunk chunk;
  double value = 1.5;
  EXPECT_EQ(chunk.Get(&value, 0), -1);
  EXPECT_EQ(chunk.GetBytes(), nullptr);
  chunk.Resize(20);
  for (const int pos : {13, 20, 21, -1, INT_MIN, INT_MAX, INT_MAX - 4}) {
    EXPECT_EQ(chunk.Get(&value, pos), -1) << pos;
    EXPECT_EQ(value, 1.5);
  }
  EXPECT_EQ(chunk.Get(&value, 12), 20);
  EXPECT_EQ(value, 0.0) << "bytes gained are zero";
}

TEST(ByteChunk, StringsTellTheirEndEvenWhenTheyAreDamaged) {
  for (const int length : {3, 2, 0, 4, -3, -9, 1000, INT_MAX - 4, INT_MAX, INT_MIN}) {
    const ChunkOf chunk(Raw(std::vector{length}) + Bytes{'a', 'b', 0});
    HeapString text("kept");
    EXPECT_EQ(chunk.GetStr(&text, 0), std::min(std::int64_t{4} + length, std::int64_t{INT_MAX}));
    EXPECT_STREQ(text.Get(), length == 2 || length == 3 ? "ab" : "kept") << length;
    EXPECT_EQ(chunk.GetStr(&text, 4), -1);
  }
}

TEST(ByteChunk, TheHeaderIsFoundWholeOrNotAtAll) {
  const ChunkOf whole(kHeader);
  const ChunkOf cut({'t', 'f', 'f', 'p', 0, 0});
  const ChunkOf other({'t', 'f', 'f', 'q', 't', 'f', 'f', 'q'});
  for (const auto& [chunk, from, version, to] : {std::tuple{&whole, 0, 0x10000, 8},
                                                 {&whole, 8, 0, 8},
                                                 {&whole, -1, 0, -1},
                                                 {&cut, 0, 0, -1},
                                                 {&other, 0, 0, 0}}) {
    int pos = from;
    EXPECT_EQ(GetIPlugVerFromChunk(chunk, &pos), version);
    EXPECT_EQ(pos, to);
  }
}

TEST(State, ARoundTripKeepsEveryBit) {
  Rig from;
  Rig to;
  const std::vector<double> values = {1.0 / 3.0, -2, 0, 2, std::nextafter(100.0, 0.0), -1.75};
  from.SetValues(values);
  EXPECT_EQ(from.GetChunk(true), kHeader + Raw(values)) << "header and raw values";
  EXPECT_EQ(to.SetChunk(from.GetChunk(true), true), 1);
  EXPECT_EQ(Raw(to.Values()), Raw(values));
}

TEST(State, ValuesOutOfRangeAreClamped) {
  Rig rig;
  EXPECT_EQ(rig.SetChunk(Raw<double>({1e300, -99, NAN, INFINITY, -INFINITY, NAN}), true), 1);
  EXPECT_EQ(rig.Values(), (std::vector<double>{10, -3, 0, 2, 0, -6}));
}

TEST(State, AShortChunkZeroesTheFirstMissingParameterAndAnnouncesAll) {
  const std::vector<double> before = {1, 1, 1, 1, 1, -1};
  const std::vector<double> zeroed = {0, 0, 0, 0, 0, -0.5};  // clamped
  const Bytes whole = Raw(kValues);
  for (std::size_t size = 0; size < whole.size(); ++size) {
    Rig rig;
    rig.SetValues(before);
    EXPECT_EQ(rig.SetChunk({whole.begin(), whole.begin() + long(size)}, true), 0) << size;
    const std::size_t read = size / sizeof(double);
    std::vector<double> expected = before;
    std::copy_n(kValues.begin(), read, expected.begin());
    expected[read] = zeroed[read];
    EXPECT_EQ(rig.Values(), expected) << size;
    EXPECT_EQ(rig.TakeLog(), kAllAnnounced) << size;
  }
}

TEST(State, CompareStateSeesDifferencesOfSinglePrecision) {
  Rig rig;
  for (const auto& [change, same] :
       {std::pair{0.0, true}, {0.000005, true}, {0.000015, false}, {double(NAN), false}}) {
    std::vector<double> state = rig.Values();
    state.insert(state.begin(), 99.0);
    state[1] += change;
    EXPECT_EQ(rig.plug->CompareState(state.data(), 1), same) << change;
  }
}

TEST(Bank, ARoundTripGivesTheSameNamesAndValues) {
  Rig from;
  const std::vector<double> initial = from.Values();
  for (const char* name : {"One", "Two", "Three"}) from.plug->MakeDefaultPreset(name);
  from.Dispatch(effSetProgram, 0, 1);
  from.SetValues(kValues);  // asking for the bank stores what sounds
  const Bytes bank = from.GetChunk(false);
  EXPECT_EQ(bank, kHeader + Entry("One", initial) + Entry("Two", kValues) +
                      Entry("Three", initial) + Entry("empty"));
  Rig to;
  to.plug->MakeEmptyPresets();
  to.Dispatch(effSetProgram, 0, 1);
  EXPECT_EQ(to.SetChunk(bank, false), 1);
  EXPECT_EQ(to.plug->GetCurrentPresetIdx(), 1);
  EXPECT_EQ(to.Values(), kValues) << "the current preset is in force";
  EXPECT_FALSE(to.plug->Preset(3)->mInitialized);
  EXPECT_EQ(to.plug->Preset(3)->mChunk.Size(), 48) << "an empty slot leaves its chunk alone";
  EXPECT_EQ(to.GetChunk(false), bank);
  EXPECT_TRUE(to.plug->RestorePreset(3));
  EXPECT_EQ(to.plug->Preset(3)->mChunk.Size(), 48) << "which the present sound replaces";
}

TEST(Bank, APresetWithoutNameTakesTheNameBeforeAndLongOnesAreCut) {
  Rig rig;
  EXPECT_EQ(rig.SetChunk(kHeader + Entry("", kValues) + Entry("named", kValues) +
                             Entry("", kValues) + Entry(std::string(1000, 'n'), kValues),
                         false),
            1);
  const std::string expected[] = {"", "named", "named", std::string(255, 'n')};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(rig.plug->GetPresetName(i), expected[i]) << i;
}

TEST(Bank, WithoutHeaderItIsReadAsOnePreset) {
  Bytes old = kHeader;
  old[6] = 0;  // a version from before banks
  for (const Bytes& header : {Bytes{}, old}) {
    Rig rig;
    rig.plug->MakeEmptyPresets();
    EXPECT_EQ(rig.SetChunk(header + Raw(kValues), false), 1);
    EXPECT_EQ(rig.Values(), kValues);
    rig.plug->RestorePreset(1);
    rig.plug->RestorePreset(0);
    EXPECT_EQ(rig.Values(), kValues) << "and is stored in the current slot";
  }
}

TEST(Bank, EveryTruncatedLengthIsRefusedWithoutLeavingTheRange) {
  Bytes bank = kHeader;
  for (const char* name : {"a", "b", "c", "d"}) bank = bank + Entry(name, kValues);
  for (std::size_t size = 0; size <= bank.size(); ++size) {
    Rig rig;
    rig.plug->MakeEmptyPresets();
    const VstIntPtr taken = rig.SetChunk({bank.begin(), bank.begin() + long(size)}, false);
    EXPECT_EQ(taken, size == bank.size()) << size;
    EXPECT_TRUE(rig.InRange()) << size;
  }
}

TEST(Bank, SizesThatNoChunkHasChangeNothing) {
  Rig rig;
  rig.SetValues(kValues);
  std::uint8_t byte = 0;
  for (const VstIntPtr size : {VstIntPtr{-1}, INTPTR_MIN, (VstIntPtr{64} << 20) + 1, INTPTR_MAX}) {
    EXPECT_EQ(rig.Dispatch(effSetChunk, 0, size, &byte), 0) << size;
    EXPECT_EQ(rig.Dispatch(effSetChunk, 1, size, &byte), 0) << size;
  }
  EXPECT_EQ(rig.Dispatch(effSetChunk, 1, 8, nullptr), 0);
  EXPECT_EQ(rig.Dispatch(effGetChunk, 1, 0, nullptr), 0);
  EXPECT_EQ(rig.Values(), kValues);
  EXPECT_EQ(rig.TakeLog(), "");
}

TEST(Bank, AHostMayHandBackTheVeryBufferItGot) {
  Rig rig;
  rig.plug->MakeEmptyPresets();
  for (const int part : {1, 2}) {
    void* data = nullptr;
    const VstIntPtr size = rig.Dispatch(effGetChunk, 0, 0, &data);
    EXPECT_EQ(rig.Dispatch(effSetChunk, 0, size / part, data), part == 1);
  }
}

}  // namespace
