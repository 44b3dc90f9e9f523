// The host's calls: every opcode with good and absurd arguments.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "tests/iplug/TestPlug.h"

namespace {

TEST(Construction, ThePlugInsTraitsStandInItsRecord) {
  const Rig rig({.latency = 11});
  EXPECT_EQ(std::memcmp(&rig.effect->magic, "PtsV", 4), 0);
  EXPECT_EQ(rig.effect->initialDelay, 11);
  EXPECT_EQ(rig.effect->ioRatio, 1.0f);
  EXPECT_EQ(rig.effect->version, 10203);
  char version[32];
  rig.plug->GetEffectVersionStr(version);
  EXPECT_STREQ(version, "v1.2.3");
  EXPECT_EQ(Rig({.chunks = true, .instrument = true}).effect->flags,
            rig.effect->flags | effFlagsProgramChunks | effFlagsIsSynth);
}

TEST(Construction, FillsTheSlotsAndNeverThrows) {
  for (const bool hasPresets : {true, false}) {
    AEffect* effect = ConstructUnderLock(
        hasPresets
        ? [](audioMasterCallback c) -> IPlugVST* { return new TestPlug(c); }
        : [](audioMasterCallback c) -> IPlugVST* { return new TestPlug(c, {.presets = 0}); },
        nullptr);
    ASSERT_NE(effect, nullptr);
    EXPECT_EQ(effect->numPrograms, hasPresets ? 4 : 1);
    char name[64];
    effect->dispatcher(effect, effGetProgramNameIndexed, 3, 0, name, 0.0f);
    EXPECT_STREQ(name, hasPresets ? "Empty" : "") << "no slot stays unfilled";
    effect->dispatcher(effect, effOpen, 0, 0, nullptr, 0.0f);  // without a host to ask
    effect->dispatcher(effect, effClose, 0, 0, nullptr, 0.0f);
  }
  const auto fail = [](audioMasterCallback) -> IPlugVST* { throw 1; };
  EXPECT_EQ(ConstructUnderLock(fail, nullptr), nullptr);
}

TEST(Dispatcher, LifeRunsInTheToldOrder) {
  Rig rig;
  const std::string all = kAllAnnounced;
  rig.Dispatch(effOpen);
  EXPECT_EQ(rig.TakeLog(), "Identified " + all);
  rig.Dispatch(effOpen);
  EXPECT_EQ(rig.TakeLog(), all);
  rig.plug->AttachGraphics(new FakeEditor(rig.plug.get()));
  rig.Dispatch(effMainsChanged, 0, 1);
  rig.Dispatch(effMainsChanged, 0, 0);
  rig.Dispatch(effEditOpen, 0, 0, &rig);
  rig.Close();
  EXPECT_EQ(rig.TakeLog(), "On Off Reset OpenWindow GUIOpen CloseUnlocked Gone EditorGone");
}

TEST(Dispatcher, FormatsAreTakenAsToldButForSizesOfNoSense) {
  Rig rig;
  for (const VstIntPtr size :
       {VstIntPtr{256}, VstIntPtr{0}, VstIntPtr{-1}, INTPTR_MAX, VstIntPtr{1} << 32}) {
    rig.Dispatch(effSetBlockSize, 0, size);
    EXPECT_EQ(rig.plug->GetBlockSize(), 256) << size;
  }
  for (const float rate : {48000.0f, 0.0f, -1.0f}) {
    rig.Dispatch(effSetSampleRate, 0, 0, nullptr, rate);
    EXPECT_EQ(rig.plug->GetSampleRate(), static_cast<double>(rate));
  }
  EXPECT_EQ(rig.TakeLog(), "Reset Reset Reset Reset Reset Reset Reset Reset");
}

TEST(Dispatcher, FixedAnswers) {
  Rig rig;
  EXPECT_EQ(rig.Dispatch(effIdentify), 0x4E764566);
  EXPECT_EQ(rig.Dispatch(effGetVstVersion), 2400);
  EXPECT_EQ(rig.Dispatch(effGetPlugCategory), 1);
  EXPECT_EQ(Rig({.instrument = true}).Dispatch(effGetPlugCategory), 2);
  EXPECT_EQ(rig.Dispatch(effCanBeAutomated, 99), 1);
  for (const int opcode : {effGetTailSize, effGetVendorVersion, effEditIdle, effIdle,
                           effEditKeyDown, effGetParameterProperties, effSetBypass}) {
    char buffer[256] = {};
    EXPECT_EQ(rig.Dispatch(opcode, 0, 1, buffer), 0) << opcode;
  }
  for (const int opcode : {INT_MIN, -1, 70, INT_MAX}) EXPECT_EQ(rig.Dispatch(opcode), 0) << opcode;
  EXPECT_EQ(rig.effect->dispatcher(nullptr, effIdentify, 0, 0, nullptr, 0.0f), 0);
  rig.effect->object = nullptr;
  EXPECT_EQ(rig.Dispatch(effIdentify), 0);
  EXPECT_EQ(rig.effect->getParameter(rig.effect, 0), 0.0f);
  rig.effect->setParameter(rig.effect, 0, 1.0f);
}

TEST(Dispatcher, TextsOfParametersAndOfThePlugIn) {
  Rig rig;
  const struct {
    int opcode, index;
    VstIntPtr value, result;
    const char* text;
  } kCases[] = {{effGetParamName, kTapered, 0, 0, "Tapered"},
                {effGetParamLabel, kLevel, 0, 0, "dB"},
                {effGetParamLabel, kMode, 0, 0, ""},  // a named state has no unit
                {effGetParamDisplay, kMode, 0, 0, "green"},
                {effGetParamDisplay, kNegated, 0, 0, "3.00"},
                {effGetParamName, kNumTestParams, 0, 0, "untouched"},
                {effGetEffectName, 0, 0, 1, "Probe"},
                {effGetProductString, 0, 0, 1, "Product"},
                {effVendorSpecific, 7, kTapered, 0xBEEF, "25"},
                {effVendorSpecific, 7, 99, 0xBEEF, "untouched"},
                {effVendorSpecific, 8, kMode, 0xBEEF, "untouched"},  // it steps
                {effVendorSpecific, 8, kLevel, 0, "untouched"},
                {effVendorSpecific, 9, kMode, 0, "untouched"}};
  for (const auto& c : kCases) {
    char text[256] = "untouched";
    EXPECT_EQ(rig.Dispatch(c.opcode, c.index, c.value, text, 0.5f), c.result) << c.opcode;
    EXPECT_STREQ(text, c.text) << c.opcode;
  }
  EXPECT_EQ(rig.Dispatch(effGetEffectName), 0);
  EXPECT_EQ(rig.Dispatch(effVendorSpecific, 7, kMode), 0) << "without a buffer";
}

TEST(Dispatcher, ProgramNamesAreKeptShortEnoughForTheHost) {
  Rig rig;
  rig.plug->MakeEmptyPresets();
  std::string name(300, 'n');
  rig.Dispatch(effSetProgramName, 0, 0, name.data());
  EXPECT_EQ(rig.TakeLog(), "Presets");
  EXPECT_EQ(rig.plug->GetPresetName(0), std::string(255, 'n'));
  char text[64] = "x";
  rig.Dispatch(effGetProgramName, 0, 0, text);
  EXPECT_EQ(text, std::string(63, 'n'));
  for (const int idx : {1, 4}) {
    EXPECT_EQ(rig.Dispatch(effGetProgramNameIndexed, idx, 0, text), idx == 1);
    EXPECT_STREQ(text, idx == 1 ? "Empty" : "");
  }
  EXPECT_EQ(rig.Dispatch(effGetProgramNameIndexed, 1), 1) << "without a buffer to fill";
}

TEST(Dispatcher, CanDo) {
  Rig plain;
  Rig midi({.midi = true});
  const auto ask = [](Rig& rig, std::string query) {
    return rig.Dispatch(effCanDo, 0, 0, query.data());
  };
  for (const char* query :
       {"sendVstEvents", "sendVstMidiEvent", "receiveVstEvents", "receiveVstMidiEvent"}) {
    EXPECT_EQ(ask(plain, query), 0) << query;
    EXPECT_EQ(ask(midi, query), 1) << query;
  }
  EXPECT_EQ(ask(plain, "receiveVstTimeInfo"), 1);
  EXPECT_EQ(ask(plain, "hasCockosExtensions"), 0xBEEF0000);
  EXPECT_EQ(ask(plain, "hasCockosViewAsConfig"), 0xBEEF0000);
  EXPECT_EQ(ask(midi, "bypass"), 0);
}

TEST(Dispatcher, TextSetsAParameter) {
  Rig rig;
  const struct {
    int index;
    const char* text;
    VstIntPtr result;
    double value;
  } kCases[] = {{kLevel, " 7.5 dB", 1, 7.5}, {kLevel, "1e99", 1, 10}, {kLevel, "nan", 1, 0},
                {kNegated, "2.5", 1, -2.5},  {kMode, "blue", 1, 2},   {kMode, "1", 0, 2}};
  for (const auto& c : kCases) {
    std::string text = c.text;
    EXPECT_EQ(rig.Dispatch(effString2Parameter, c.index, 0, text.data()), c.result) << c.text;
    EXPECT_EQ(rig.plug->Value(c.index), c.value) << c.text;
  }
  EXPECT_EQ(rig.TakeLog(), "Param 0 Param 0 Param 0 Param 5 Param 3");
  char text[] = "1";
  EXPECT_EQ(rig.Dispatch(effString2Parameter, 99, 0, text), 0);
  EXPECT_EQ(rig.Dispatch(effString2Parameter, kLevel), 1) << "asking whether it is possible";
  EXPECT_EQ(rig.TakeLog(), "");
}

TEST(Dispatcher, ParameterCallsCheckTheirIndexAndAnnounceTheValue) {
  Rig rig;
  rig.effect->setParameter(rig.effect, kTapered, 0.5f);
  rig.effect->setParameter(rig.effect, kCount, 0.5f);
  EXPECT_EQ(rig.plug->Value(kTapered), 25.0);
  EXPECT_EQ(rig.effect->getParameter(rig.effect, kTapered), 0.5f);
  EXPECT_EQ(rig.plug->Value(kCount), 0.0);
  EXPECT_EQ(rig.TakeLog(), "Param 4 Param 1");
  for (const int index : {-1, int{kNumTestParams}, INT_MAX, INT_MIN}) {
    rig.effect->setParameter(rig.effect, index, 1.0f);
    EXPECT_EQ(rig.effect->getParameter(rig.effect, index), 0.0f);
  }
  EXPECT_EQ(rig.TakeLog(), "");
}

TEST(Dispatcher, PinsTellPairsAndLabels) {
  Rig rig({.channelIO = "3-2"});
  rig.plug->SetInputLabel(1, "Side");
  std::string told;
  for (const int opcode : {effGetInputProperties, effGetOutputProperties}) {
    for (int index = -1; index < 4; ++index) {
      VstPinProperties pin{};
      if (rig.Dispatch(opcode, index, 0, &pin) == 0) continue;
      told += pin.label + std::string(pin.flags & kVstPinIsActive ? " active" : "") +
              (pin.flags & kVstPinIsStereo ? " pair, " : ", ");
    }
    EXPECT_EQ(rig.Dispatch(opcode, 0), 0) << "without a record to fill";
  }
  EXPECT_EQ(told,
            "Input 1 active pair, Side active, Input 3 active, "
            "Output 1 active pair, Output 2 active, ");
}

TEST(Dispatcher, SpeakerArrangementsConnectTheChannels) {
  Rig rig;
  VstSpeakerArrangement told{};
  const auto address = reinterpret_cast<VstIntPtr>(&told);
  for (const int channels : {1, 0, -5, INT_MAX}) {
    told.numChannels = channels;
    EXPECT_EQ(rig.Dispatch(effSetSpeakerArrangement, 0, address, nullptr), 1);
    EXPECT_TRUE(rig.plug->IsOutChannelConnected(0)) << "nothing said of the outputs";
    EXPECT_EQ(rig.Dispatch(effSetSpeakerArrangement, 0, 0, &told), 1);
    for (const int i : {0, 1}) {
      EXPECT_EQ(rig.plug->IsInChannelConnected(i), channels > i) << channels;
      EXPECT_EQ(rig.plug->IsOutChannelConnected(i), channels > i) << channels;
    }
    told.numChannels = 2;
    rig.Dispatch(effSetSpeakerArrangement, 0, address, &told);
  }
  Rig wide({.channelIO = "0-3"});
  for (const auto& [plug, inType, outType] : {std::tuple{&rig, 1, 1}, {&wide, -1, -2}}) {
    VstSpeakerArrangement* in = nullptr;
    VstSpeakerArrangement* out = nullptr;
    plug->Dispatch(effGetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&in), &out);
    EXPECT_EQ(in->type, inType);
    EXPECT_EQ(out->type, outType);
    EXPECT_EQ(out->numChannels, plug->effect->numOutputs);
  }
}

TEST(Dispatcher, EventsReachThePlugIn) {
  Rig rig;
  VstMidiEvent midi{kVstMidiType, 32, 17, 0, 0, 0, {'\x90', 60, 127}, 0, 0, 0, 0};
  char dump[] = {7, 8};
  VstMidiSysexEvent sysex{kVstSysExType, 48, 0, 0, 2, 0, dump, 0};
  VstEvents events{2, 0, {nullptr, reinterpret_cast<VstEvent*>(&sysex)}};
  EXPECT_EQ(rig.Dispatch(effProcessEvents, 0, 0, &events), 1);
  events.events[0] = reinterpret_cast<VstEvent*>(&midi);
  sysex.type = 5;
  EXPECT_EQ(rig.Dispatch(effProcessEvents, 0, 0, &events), 1);
  events.numEvents = -1;
  EXPECT_EQ(rig.Dispatch(effProcessEvents, 0, 0, &events), 1);
  EXPECT_EQ(rig.TakeLog(), "SysEx 0 2 7 Midi 17 144 60 127");
  for (const int note : {60, 61}) {
    MidiKeyName key{0, note, "untouched", 0, 0};
    EXPECT_EQ(rig.Dispatch(effGetMidiKeyName, 0, 0, &key), note == 60);
    EXPECT_STREQ(key.keyName, note == 60 ? "Middle C" : "");
  }
}

TEST(Editor, OpensAndClosesWithItsSizeTold) {
  Rig rig;
  ERect* rect = nullptr;
  rig.plug->AttachGraphics(nullptr);
  EXPECT_EQ(rig.effect->flags & effFlagsHasEditor, 0);
  EXPECT_EQ(rig.Dispatch(effEditGetRect, 0, 0, &rect), 0);
  EXPECT_EQ(rig.Dispatch(effEditOpen, 0, 0, &rig), 0);
  EXPECT_EQ(rig.Dispatch(effEditClose), 0);
  rig.plug->AttachGraphics(new FakeEditor(rig.plug.get()));
  EXPECT_NE(rig.effect->flags & effFlagsHasEditor, 0);
  EXPECT_EQ(rig.Dispatch(effEditGetRect, 0, 0, &rect), 1);
  EXPECT_EQ(rig.Dispatch(effEditGetRect), 1) << "there is an editor, wherever the answer goes";
  EXPECT_EQ(rect->right - rect->left, 300);
  EXPECT_EQ(rect->bottom - rect->top, 200);
  rig.plug->ResizeGraphics();
  EXPECT_EQ(rig.Dispatch(effEditOpen, 0, 0, &rig), 1);
  EXPECT_EQ(rig.Dispatch(effEditOpen, 0, 0, nullptr), 0) << "no window came of it";
  EXPECT_EQ(rig.Dispatch(effEditClose), 1);
  EXPECT_EQ(rig.TakeLog(), "Resize OpenWindow GUIOpen OpenWindow GUIClose CloseWindow");
}

// Keeps the values that reach it.
class ListeningControl : public IControl {
 public:
  ListeningControl(IPlugBase* plug, std::vector<double>* values)
      : IControl(plug, IRECT(0, 0, 9, 9), kTapered), mValues(values) {}
  bool Draw(IGraphics*) override { return true; }
  void SetValueFromPlug(double value) override { mValues->push_back(value); }

 private:
  std::vector<double>* mValues;
};

TEST(Editor, ControlsFollowTheHostWithNumbersOnly) {
  Rig rig;
  std::vector<double> values;
  auto* editor = new FakeEditor(rig.plug.get());
  editor->AttachControl(new ListeningControl(rig.plug.get(), &values));
  rig.plug->AttachGraphics(editor);
  rig.effect->setParameter(rig.effect, kTapered, 0.75f);
  rig.effect->setParameter(rig.effect, kTapered, NAN);
  char text[] = "25";
  rig.Dispatch(effString2Parameter, kTapered, 0, text);
  rig.plug->GetParam(kTapered)->Set(100);
  EXPECT_EQ(rig.SetChunk(rig.GetChunk(true), true), 1);
  EXPECT_EQ(values, (std::vector<double>{0.5, 0.75, 0.0, 0.5, 1.0}));
}

}  // namespace
