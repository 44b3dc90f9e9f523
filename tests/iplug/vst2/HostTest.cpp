// What the plug-in asks of the host, and what it does differently for some.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <set>

#include "iplug/vst2/Hosts.h"
#include "tests/iplug/TestPlug.h"

namespace {

TEST(Hosts, TheFirstTextInTheStringDecides) {
  EXPECT_EQ(LookUpHost("REAPER"), 1);
  EXPECT_EQ(LookUpHost("Live Reaper"), 1);
  EXPECT_EQ(LookUpHost("Fruity Live"), 7);
  EXPECT_EQ(LookUpHost("Olive"), 9);
  EXPECT_EQ(LookUpHost("Ardour Live"), 9);
  EXPECT_EQ(LookUpHost("Nothing known"), 0);
  EXPECT_EQ(LookUpHost(nullptr), 0);
}

TEST(Hosts, CodesWithoutATextAreUnknownButOne) {
  std::set<std::string> names;
  for (int code = -2; code < 35; ++code) {
    char name[32];
    GetHostNameStr(code, name);
    names.insert(name);
    const bool nameless =
        code < 1 || code == 10 || code == 11 || code == 12 || code == 19 || code > 28;
    EXPECT_EQ(std::string(name) == "Unknown", nameless) << code;
    EXPECT_EQ(std::string(name) == "Vegas", code == 6);
  }
  EXPECT_EQ(names.size(), 25U) << "each its own name";
}

TEST(HostServices, TheHostIsAskedOnceAndForNoVersionWithoutAName) {
  for (const char* product : {"Ardour", ""}) {
    const bool named = *product != 0;
    Rig rig;
    rig.host.product = product;
    rig.host.answers[audioMasterGetVendorVersion] = 70305;
    EXPECT_EQ(rig.plug->GetHostVersion(true), named ? 70305 : 0);
    EXPECT_EQ(rig.plug->GetHostVersion(false), named ? 0x00070305 : 0);
    EXPECT_EQ(rig.plug->GetHost(), named ? kHostArdour : kHostUnknown);
    char text[32];
    rig.plug->GetHostVersionStr(text);
    EXPECT_STREQ(text, named ? "v7.3.5" : "v0.0.0");
    EXPECT_EQ(rig.host.calls.size(), named ? 2U : 1U);
  }
}

TEST(HostServices, PinsOfHostsThatConnectTooManyAreLeftUnread) {
  for (const char* product : {"Forte", "Audition", "Orion", "SAWStudio", "Reaper"}) {
    Rig rig({.channelIO = "4-4"});
    rig.host.product = product;
    rig.plug->SetOutputChannelConnections(0, 4, false);
    rig.Dispatch(effOpen);
    const bool special = std::strcmp(product, "Reaper") != 0;
    EXPECT_TRUE(rig.plug->IsInChannelConnected(1)) << product;
    EXPECT_EQ(rig.plug->IsInChannelConnected(2), !special) << product;
    EXPECT_EQ(rig.plug->IsOutChannelConnected(3), special) << product;
    EXPECT_FALSE(rig.plug->IsOutChannelConnected(1)) << product;
    EXPECT_EQ(rig.effect->numInputs, 4);
  }
}

TEST(HostServices, ChangesFromTheEditorTellTheHostInTheOrderItCanBear) {
  for (const bool fruity : {false, true}) {
    Rig rig;
    rig.host.product = fruity ? "Fruity Wrapper" : "Reaper";
    rig.plug->GetHost();
    rig.host.calls.clear();
    rig.host.onCall = [&] {
      Note(rig.log, "Automate");
      EXPECT_EQ(rig.plug->Value(kCount), 2.0) << "the value is stored before";
    };
    rig.plug->SetParameterFromGUI(99, 0.5);
    rig.plug->SetParameterFromGUI(kCount, 0.8);
    ASSERT_EQ(rig.host.calls.size(), 1U);
    const HostCall& call = rig.host.calls[0];
    EXPECT_EQ(call.opcode, audioMasterAutomate);
    EXPECT_EQ(call.index, kCount);
    EXPECT_EQ(call.opt, 0.8f) << "as the control gave it, not as it was rounded";
    EXPECT_EQ(call.locked, !fruity);
    EXPECT_EQ(rig.TakeLog(), fruity ? "Param 1 Automate" : "Automate Param 1");
  }
}

TEST(HostServices, NoticesCarryTheirParameter) {
  Rig rig;
  rig.plug->BeginInformHostOfParamChange(3);
  rig.plug->EndInformHostOfParamChange(4);
  rig.plug->DirtyParameters();
  ASSERT_EQ(rig.host.calls.size(), 2U + kNumTestParams);
  const HostCall* call = rig.host.calls.data();
  for (const auto& [opcode, index] : {std::pair{43, 3}, {44, 4}, {0, 0}, {0, 1}}) {
    EXPECT_EQ(call->opcode, opcode);
    EXPECT_EQ(call++->index, index);
  }
  EXPECT_EQ(call->opt, 1.0f) << "kSwitch";
  EXPECT_TRUE(call->locked);
}

// Position, tempo, numerator and denominator, by the calls for each.
std::vector<double> Single(Rig& rig) {
  int num = 9;
  int den = 9;
  rig.plug->GetTimeSig(&num, &den);
  return {double(rig.plug->GetSamplePos()), rig.plug->GetTempo(), double(num), double(den)};
}

TEST(HostServices, PositionTempoAndMeterAreCheckedForSense) {
  using Values = std::vector<double>;
  constexpr int kBoth = kVstTempoValid | kVstTimeSigValid;
  const struct {
    VstTimeInfo time;
    Values told;
  } kCases[] = {
      {{41.6, 0, 0, 0, 120, 0, 0, 0, 3, 4, 0, 0, 0, kBoth}, {42, 120, 3, 4}},
      {{1e18, 0, 0, 0, 120, 0, 0, 0, 3, 4, 0, 0, 0, 0}, {INT_MAX, 0, 0, 0}},
      {{-1, 0, 0, 0, -1, 0, 0, 0, 3, -4, 0, 0, 0, kBoth}, {0, 0, 0, 0}},
  };
  Rig rig;
  for (const auto& c : kCases) {
    rig.host.time = c.time;
    EXPECT_EQ(Single(rig), c.told);
    EXPECT_EQ(rig.plug->GetSamplesPerBeat(), c.told[1] > 0 ? 22050.0 : 0.0);
    EXPECT_EQ(rig.host.calls.back().value, 1024);
  }
  rig.host.time = kCases[0].time;
  rig.host.answers[audioMasterGetTime] = 0;
  EXPECT_EQ(Single(rig), Values(4, 0.0));
  for (const int level : {2, 4}) {
    rig.host.answers[audioMasterGetCurrentProcessLevel] = level;
    EXPECT_EQ(rig.plug->IsRenderingOffline(), level == 4);
  }
}

// All that GetTime told, in the order of the record.
std::vector<double> Told(const VstTimeInfo& time, bool answers = true) {
  Rig rig;
  rig.host.time = time;
  if (!answers) rig.host.answers.clear();
  ITimeInfo t{-9, -9, -9, -9, -9, -9, -9, -9, false, false};
  rig.plug->GetTime(&t);
  EXPECT_EQ(rig.host.calls.back().value, 15872);
  std::vector<double> told = {t.mTempo, t.mSamplePos, t.mPPQPos, t.mLastBar, t.mCycleStart};
  told.insert(told.end(), {t.mCycleEnd, double(t.mNumerator), double(t.mDenominator)});
  told.push_back(t.mTransportIsRunning * 2.0 + t.mTransportLoopEnabled);
  return told;
}

TEST(HostServices, TimeTakesOnlyWhatTheHostTellsAsValid) {
  using Values = std::vector<double>;
  const Values untouched = {-9, -9, -9, -9, -9, -9, -9, -9, 0};
  constexpr int kAll = 15872;
  constexpr int kTransport = kVstTransportPlaying | kVstTransportCycleActive;
  VstTimeInfo time{1000, 0, 0, 8, 90, 4, 1, 2, 7, 8, 0, 0, 0, kAll | kTransport};
  EXPECT_EQ(Told(time), (Values{90, 1000, 8, 4, 1, 2, 7, 8, 3}));
  EXPECT_EQ(Told(time, false), untouched);
  time.flags = kTransport;
  EXPECT_EQ(Told(time), untouched) << "without any of the five nothing changes";
  time.flags = kVstTempoValid | kVstTransportPlaying;
  EXPECT_EQ(Told(time), (Values{90, 1000, -9, -9, -9, -9, -9, -9, 2}));
  const VstTimeInfo senseless{1000, 0, 0, -1, 0, -1, 1, -1, 7, 0, 0, 0, 0, kAll};
  EXPECT_EQ(Told(senseless), (Values{-9, 1000, -9, -9, -9, -9, -9, -9, 0}));
}

// The event that the host got.
template <typename Event>
Event Sent(const FakeHost& host) {
  Event event{};
  EXPECT_EQ(host.eventBytes.size(), sizeof event);
  std::memcpy(&event, host.eventBytes.data(), std::min(sizeof event, host.eventBytes.size()));
  return event;
}

TEST(HostServices, EventsGoOutInTheHostsRecords) {
  Rig rig;
  IMidiMsg msg{5, 0x90, 60, 100};
  EXPECT_FALSE(rig.plug->SendMidiMsg(&msg));
  const auto midi = Sent<VstMidiEvent>(rig.host);
  EXPECT_EQ(midi.type, kVstMidiType);
  EXPECT_EQ(midi.deltaFrames, 5);
  EXPECT_EQ(std::memcmp(midi.midiData, "\x90\x3C\x64\0", 4), 0);
  const std::uint8_t data[] = {0xF0, 1, 0xF7};
  ISysEx msgEx{9, 3, data};
  rig.host.answers[audioMasterProcessEvents] = 1;
  EXPECT_TRUE(rig.plug->SendSysEx(&msgEx));
  const auto sysex = Sent<VstMidiSysexEvent>(rig.host);
  EXPECT_EQ(sysex.type, kVstSysExType);
  EXPECT_EQ(sysex.deltaFrames, 9);
  EXPECT_EQ(sysex.dumpBytes, 3);
  EXPECT_EQ(std::memcmp(sysex.sysexDump, data, 3), 0);
}

}  // namespace
