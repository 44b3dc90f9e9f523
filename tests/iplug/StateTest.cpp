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

constexpr std::size_t kStateSize = kNumTestParams * sizeof(double);
const std::vector<double> kValues = {7.125, -2, 0, 2, 33.3, -1.75};

const Bytes kHeader = {'t', 'f', 'f', 'p', 0, 0, 1, 0};

template <typename T>
void Append(Bytes* bytes, const T& value) {
  const auto* raw = reinterpret_cast<const std::uint8_t*>(&value);
  bytes->insert(bytes->end(), raw, raw + sizeof value);
}

Bytes State(const std::vector<double>& values) {
  Bytes bytes;
  for (const double value : values) Append(&bytes, value);
  return bytes;
}

Bytes operator+(Bytes a, const Bytes& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// One preset of a bank, by hand.
Bytes BankEntry(const std::string& name, bool initialised, const Bytes& state) {
  Bytes bytes;
  Append(&bytes, static_cast<std::int32_t>(name.size()));
  bytes.insert(bytes.end(), name.begin(), name.end());
  bytes.push_back(initialised);
  return initialised ? bytes + state : bytes;
}

TEST(ByteChunk, ReadsThatDoNotFitLeaveTheirTarget) {
  ByteChunk chunk;
  chunk.Resize(20);
  double value = 1.5;
  for (const int pos : {13, 20, 21, -1, INT_MIN, INT_MAX, INT_MAX - 4}) {
    EXPECT_EQ(chunk.Get(&value, pos), -1) << pos;
    EXPECT_EQ(value, 1.5);
  }
  EXPECT_EQ(chunk.Get(&value, 12), 20);
  EXPECT_EQ(value, 0.0) << "bytes gained are zero";
  ByteChunk empty;
  EXPECT_EQ(empty.Get(&value, 0), -1);
  EXPECT_EQ(empty.GetBytes(), nullptr);
}

TEST(ByteChunk, StringsTellTheirEndEvenWhenTheyAreDamaged) {
  ByteChunk chunk;
  chunk.PutStr("hello");
  HeapString text("kept");
  EXPECT_EQ(chunk.GetStr(&text, 0), 9);
  EXPECT_STREQ(text.Get(), "hello");
  struct Case {
    std::int32_t length;
    int end;
  };
  for (const Case& c : {Case{0, 4}, Case{-3, 1}, Case{-9, -5}, Case{1000, 1004},
                        Case{INT_MAX, INT_MAX}, Case{INT_MIN, INT_MIN + 4}}) {
    ByteChunk damaged;
    damaged.Put(&c.length);
    damaged.PutBytes("abc", 3);
    EXPECT_EQ(damaged.GetStr(&text, 0), c.end) << c.length;
    EXPECT_STREQ(text.Get(), "hello") << c.length;
  }
  EXPECT_EQ(chunk.GetStr(&text, 6), -1);
  ByteChunk withZero;
  const std::int32_t five = 5;
  withZero.Put(&five);
  withZero.PutBytes("ab\0cd", 5);
  EXPECT_EQ(withZero.GetStr(&text, 0), 9);
  EXPECT_STREQ(text.Get(), "ab");
}

TEST(ByteChunk, TheHeaderIsFoundWholeOrNotAtAll) {
  ByteChunk chunk;
  InitChunkWithIPlugVer(&chunk);
  ASSERT_EQ(chunk.Size(), 8);
  EXPECT_EQ(std::memcmp(chunk.GetBytes(), kHeader.data(), 8), 0);
  int pos = 0;
  EXPECT_EQ(GetIPlugVerFromChunk(&chunk, &pos), 0x10000);
  EXPECT_EQ(pos, 8);
  EXPECT_EQ(GetIPlugVerFromChunk(&chunk, &pos), 0);
  EXPECT_EQ(pos, 8) << "nothing there";
  ByteChunk cut;
  cut.PutBytes("tffp\0\0", 6);
  pos = 0;
  EXPECT_EQ(GetIPlugVerFromChunk(&cut, &pos), 0);
  EXPECT_EQ(pos, -1);
  ByteChunk other;
  other.PutBytes("tffqtffq", 8);
  pos = 0;
  EXPECT_EQ(GetIPlugVerFromChunk(&other, &pos), 0);
  EXPECT_EQ(pos, 0);
}

TEST(State, TheHostChunkOfAPresetIsHeaderAndRawValues) {
  Rig rig;
  rig.SetValues(kValues);
  EXPECT_EQ(rig.GetChunk(true), kHeader + State(kValues));
}

TEST(State, ARoundTripKeepsEveryBit) {
  Rig from;
  Rig to;
  std::vector<double> values = kValues;
  values[kLevel] = 1.0 / 3.0;
  values[kTapered] = std::nextafter(100.0, 0.0);
  from.SetValues(values);
  EXPECT_EQ(to.SetChunk(from.GetChunk(true), true), 1);
  EXPECT_EQ(State(to.Values()), State(values));
}

TEST(State, ValuesOutOfRangeAreClamped) {
  Rig rig;
  const double nan = std::nan("");
  EXPECT_EQ(rig.SetChunk(State({1e300, -99, nan, INFINITY, -INFINITY, nan}), true), 1);
  EXPECT_EQ(rig.Values(), (std::vector<double>{10, -3, 0, 2, 0, -6}));
}

TEST(State, AShortChunkZeroesTheFirstMissingParameterAndAnnouncesAll) {
  const std::vector<double> before = {1, 1, 1, 1, 1, -1};
  const std::vector<double> zeroed = {0, 0, 0, 0, 0, -0.5};  // clamped
  for (std::size_t size = 0; size < kStateSize; ++size) {
    Rig rig;
    rig.SetValues(before);
    Bytes bytes = State(kValues);
    bytes.resize(size);
    EXPECT_EQ(rig.SetChunk(bytes, true), 0) << size;
    const std::size_t whole = size / sizeof(double);
    std::vector<double> expected = before;
    std::copy_n(kValues.begin(), whole, expected.begin());
    expected[whole] = zeroed[whole];
    EXPECT_EQ(rig.Values(), expected) << size;
    EXPECT_EQ(rig.plug->TakeLog(), "Param 0 Param 1 Param 2 Param 3 Param 4 Param 5") << size;
  }
}

TEST(State, CompareStateSeesDifferencesOfSinglePrecision) {
  Rig rig;
  std::vector<double> state = rig.Values();
  state.insert(state.begin(), 99.0);
  EXPECT_TRUE(rig.plug->CompareState(state.data(), 1));
  state[1] += 0.000005;
  EXPECT_TRUE(rig.plug->CompareState(state.data(), 1));
  state[1] += 0.00001;
  EXPECT_FALSE(rig.plug->CompareState(state.data(), 1));
  state[1] = std::nan("");
  EXPECT_FALSE(rig.plug->CompareState(state.data(), 1));
}

TEST(Bank, TheChunkIsNamesFlagsAndStates) {
  Rig rig;
  rig.plug->MakeDefaultPreset("One");
  rig.SetValues(kValues);
  const Bytes first = State(kValues);  // asking for the bank stores what sounds
  EXPECT_EQ(rig.GetChunk(false), kHeader + BankEntry("One", true, first) +
                                     BankEntry("empty", false, {}) + BankEntry("empty", false, {}) +
                                     BankEntry("empty", false, {}));
}

TEST(Bank, ARoundTripGivesTheSameNamesAndValues) {
  Rig from;
  for (int i = 0; i < 3; ++i) {
    from.plug->GetParam(kLevel)->Set(i / 3.0);
    from.plug->MakeDefaultPreset(("Preset " + std::to_string(i)).c_str());
  }
  from.Dispatch(effSetProgram, 0, 2);
  const Bytes bank = from.GetChunk(false);
  Rig to;
  to.plug->MakeEmptyPresets();
  to.Dispatch(effSetProgram, 0, 1);
  EXPECT_EQ(to.SetChunk(bank, false), 1);
  EXPECT_EQ(to.plug->GetCurrentPresetIdx(), 1);
  EXPECT_EQ(to.plug->GetParam(kLevel)->Value(), 1 / 3.0) << "the current preset is in force";
  EXPECT_EQ(to.GetChunk(false), bank);
}

TEST(Bank, APresetWithoutNameTakesTheNameBefore) {
  Rig rig;
  const Bytes state = State(kValues);
  EXPECT_EQ(rig.SetChunk(kHeader + BankEntry("", true, state) + BankEntry("named", true, state) +
                             BankEntry("", true, state) + BankEntry("last", true, state),
                         false),
            1);
  const char* expected[] = {"", "named", "named", "last"};
  for (int i = 0; i < 4; ++i) EXPECT_STREQ(rig.plug->GetPresetName(i), expected[i]) << i;
}

TEST(Bank, AnEmptySlotLeavesItsChunkAlone) {
  Rig rig;
  rig.plug->MakeEmptyPresets();
  const Bytes state = State(kValues);
  EXPECT_EQ(rig.SetChunk(kHeader + BankEntry("a", true, state) + BankEntry("b", false, {}) +
                             BankEntry("c", true, state) + BankEntry("d", true, state),
                         false),
            1);
  EXPECT_FALSE(rig.plug->Preset(1)->mInitialized);
  EXPECT_EQ(rig.plug->Preset(1)->mChunk.Size(), static_cast<int>(kStateSize));
}

TEST(Bank, WithoutHeaderItIsReadAsOnePreset) {
  Rig rig;
  rig.plug->MakeDefaultPreset("One");
  EXPECT_EQ(rig.SetChunk(State(kValues), false), 1);
  EXPECT_EQ(rig.Values(), kValues);
  rig.Dispatch(effSetProgram, 0, 1);
  rig.Dispatch(effSetProgram, 0, 0);
  EXPECT_EQ(rig.Values(), kValues) << "and is stored in the current slot";
  Bytes old = kHeader + State({1, 1, 1, 1, 1, -1});
  old[6] = 0;  // a version from before banks
  EXPECT_EQ(rig.SetChunk(old, false), 1);
  EXPECT_EQ(rig.Values(), (std::vector<double>{1, 1, 1, 1, 1, -1}));
}

TEST(Bank, EveryTruncatedLengthIsRefusedWithoutLeavingTheRange) {
  Bytes bank = kHeader;
  for (int i = 0; i < 4; ++i)
    bank = bank + BankEntry("name" + std::to_string(i), true, State(kValues));
  for (std::size_t size = 0; size < bank.size(); ++size) {
    Rig rig;
    rig.plug->MakeEmptyPresets();
    const Bytes cut(bank.begin(), bank.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_EQ(rig.SetChunk(cut, false), 0) << size;
    EXPECT_TRUE(rig.InRange()) << size;
  }
  Rig rig;
  EXPECT_EQ(rig.SetChunk(bank, false), 1);
}

TEST(Bank, LongNamesAreCutToTheSlot) {
  Rig rig;
  const Bytes state = State(kValues);
  Bytes bank = kHeader;
  for (int i = 0; i < 4; ++i) bank = bank + BankEntry(std::string(1000, 'n'), true, state);
  EXPECT_EQ(rig.SetChunk(bank, false), 1);
  EXPECT_EQ(rig.plug->GetPresetName(0), std::string(255, 'n'));
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
  EXPECT_EQ(rig.plug->TakeLog(), "");
}

TEST(Bank, AHostMayHandBackTheVeryBufferItGot) {
  Rig rig;
  rig.plug->MakeEmptyPresets();
  void* data = nullptr;
  const VstIntPtr size = rig.Dispatch(effGetChunk, 0, 0, &data);
  EXPECT_EQ(rig.Dispatch(effSetChunk, 0, size, data), 1);
  const VstIntPtr again = rig.Dispatch(effGetChunk, 0, 0, &data);
  EXPECT_EQ(rig.Dispatch(effSetChunk, 0, again / 2, data), 0);
}

}  // namespace
