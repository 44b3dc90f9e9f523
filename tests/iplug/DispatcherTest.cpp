// The host's calls: every opcode with good and absurd arguments.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "tests/iplug/TestPlug.h"

namespace {

std::string Text(Rig& rig, int opcode, int index = 0, VstIntPtr value = 0, float opt = 0.0F) {
  char text[256] = "untouched";
  rig.Dispatch(opcode, index, value, text, opt);
  return text;
}

TEST(AEffectRecord, TellsTheHostWhatThePlugInIs) {
  PlugOptions options;
  options.latency = 11;
  const Rig rig(options);
  const AEffect& e = *rig.effect;
  EXPECT_EQ(std::memcmp(&e.magic, "PtsV", 4), 0);
  EXPECT_EQ(e.numParams, kNumTestParams);
  EXPECT_EQ(e.numPrograms, 4);
  EXPECT_EQ(e.flags, effFlagsCanMono | effFlagsCanReplacing | effFlagsCanDoubleReplacing);
  EXPECT_EQ(e.initialDelay, 11);
  EXPECT_EQ(e.ioRatio, 1.0F);
  EXPECT_EQ(e.version, 10203);
  char version[32];
  rig.plug->GetEffectVersionStr(version);
  EXPECT_STREQ(version, "v1.2.3");
  EXPECT_EQ(e.resvd2, 0);
  EXPECT_EQ(e.user, nullptr);
  options.chunks = options.instrument = true;
  EXPECT_EQ(Rig(options).effect->flags,
            rig.effect->flags | effFlagsProgramChunks | effFlagsIsSynth);
}

TEST(Construction, HappensUnderOneLockAndNeverThrows) {
  static PlugOptions options;
  const auto make = [](audioMasterCallback callback) -> IPlugVST* {
    return new TestPlug(callback, options);
  };
  options.presets = 3;
  AEffect* effect = ConstructUnderLock(make, nullptr);
  ASSERT_NE(effect, nullptr);
  char name[64];
  effect->dispatcher(effect, effGetProgramNameIndexed, 2, 0, name, 0.0F);
  EXPECT_STREQ(name, "Empty") << "no slot stays unfilled";
  effect->dispatcher(effect, effOpen, 0, 0, nullptr, 0.0F);  // without a host to ask
  effect->dispatcher(effect, effClose, 0, 0, nullptr, 0.0F);
  options.presets = 0;
  effect = ConstructUnderLock(make, nullptr);
  EXPECT_EQ(effect->numPrograms, 1);
  effect->dispatcher(effect, effClose, 0, 0, nullptr, 0.0F);
  EXPECT_EQ(ConstructUnderLock([](audioMasterCallback) -> IPlugVST* { throw 1; }, nullptr),
            nullptr);
  EXPECT_EQ(ConstructUnderLock([](audioMasterCallback) -> IPlugVST* { return nullptr; }, nullptr),
            nullptr);
}

TEST(Dispatcher, LifeRunsInTheToldOrder) {
  Rig rig;
  rig.Dispatch(effOpen);
  EXPECT_EQ(rig.plug->TakeLog(), "Identified Param 0 Param 1 Param 2 Param 3 Param 4 Param 5");
  rig.Dispatch(effOpen);
  EXPECT_EQ(rig.plug->TakeLog(), "Param 0 Param 1 Param 2 Param 3 Param 4 Param 5");
  rig.Dispatch(effSetSampleRate, 0, 0, nullptr, 48000.0F);
  EXPECT_EQ(rig.plug->GetSampleRate(), 48000.0);
  rig.Dispatch(effSetBlockSize, 0, 256);
  EXPECT_EQ(rig.plug->GetBlockSize(), 256);
  EXPECT_EQ(rig.plug->TakeLog(), "Reset Reset");
  rig.Dispatch(effMainsChanged, 0, 1);
  EXPECT_EQ(rig.plug->TakeLog(), "On");
  rig.Dispatch(effMainsChanged, 0, 0);
  EXPECT_EQ(rig.plug->TakeLog(), "Off Reset");
  bool deleted = false;
  rig.plug->deleted = &deleted;
  TestPlug* plug = rig.plug.release();
  AEffect* effect = plug->GetAEffect();
  effect->dispatcher(effect, effClose, 0, 0, nullptr, 0.0F);
  EXPECT_TRUE(deleted);
}

TEST(Dispatcher, AbsurdFormatsKeepTheOldOneAndResetAllTheSame) {
  Rig rig;
  for (const VstIntPtr size : {VstIntPtr{0}, VstIntPtr{-1}, INTPTR_MAX, VstIntPtr{1} << 32}) {
    rig.Dispatch(effSetBlockSize, 0, size);
    EXPECT_EQ(rig.plug->GetBlockSize(), 1024) << size;
  }
  for (const float rate : {0.0F, -1.0F, NAN, INFINITY, 1e9F}) {
    rig.Dispatch(effSetSampleRate, 0, 0, nullptr, rate);
    EXPECT_EQ(rig.plug->GetSampleRate(), 44100.0) << rate;
  }
  EXPECT_EQ(rig.plug->log.size(), 9U);
}

TEST(Dispatcher, FixedAnswers) {
  Rig rig;
  EXPECT_EQ(rig.Dispatch(effIdentify), 0x4E764566);
  EXPECT_EQ(rig.Dispatch(effGetVstVersion), 2400);
  EXPECT_EQ(rig.Dispatch(effGetPlugCategory), 1);
  EXPECT_EQ(rig.Dispatch(effCanBeAutomated, 99), 1);
  for (const int opcode :
       {effGetTailSize, effGetVendorVersion, effEditIdle, effIdle, effEditKeyDown,
        effGetParameterProperties, effBeginSetProgram, effSetBypass}) {
    char buffer[256] = {};
    EXPECT_EQ(rig.Dispatch(opcode, 0, 1, buffer), 0) << opcode;
  }
  PlugOptions options;
  options.instrument = true;
  EXPECT_EQ(Rig(options).Dispatch(effGetPlugCategory), 2);
}

TEST(Dispatcher, EveryOpcodeSurvivesAbsurdArguments) {
  for (const bool editor : {false, true}) {
    Rig rig;
    if (editor) rig.plug->AttachGraphics(new FakeEditor(rig.plug.get()));
    for (int opcode = -3; opcode < 80; ++opcode) {
      if (opcode == effClose) continue;
      for (const int index : {-1, 0, 3, 1000, INT_MIN, INT_MAX}) {
        const bool pointer =
            opcode == effSetSpeakerArrangement || opcode == effGetSpeakerArrangement;
        for (const VstIntPtr value : {VstIntPtr{0}, VstIntPtr{-1}, INTPTR_MAX}) {
          rig.Dispatch(opcode, index, pointer ? 0 : value, nullptr, NAN);
        }
      }
    }
    EXPECT_EQ(rig.Dispatch(INT_MIN), 0);
    EXPECT_EQ(rig.plug->GetBlockSize(), 1024);
  }
  Rig rig;
  rig.effect->object = nullptr;
  EXPECT_EQ(rig.Dispatch(effIdentify), 0);
  EXPECT_EQ(rig.effect->getParameter(rig.effect, 0), 0.0F);
  rig.effect->setParameter(rig.effect, 0, 1.0F);
  EXPECT_EQ(rig.effect->dispatcher(nullptr, effOpen, 0, 0, nullptr, 0.0F), 0);
}

TEST(Dispatcher, TextsOfParametersAndOfThePlugIn) {
  Rig rig;
  EXPECT_EQ(Text(rig, effGetParamName, kTapered), "Tapered");
  EXPECT_EQ(Text(rig, effGetParamLabel, kLevel), "dB");
  EXPECT_EQ(Text(rig, effGetParamLabel, kMode), "") << "a named state has no unit";
  EXPECT_EQ(Text(rig, effGetParamDisplay, kMode), "green");
  EXPECT_EQ(Text(rig, effGetParamDisplay, kNegated), "3.00");
  EXPECT_EQ(Text(rig, effGetParamName, kNumTestParams), "untouched");
  EXPECT_EQ(Text(rig, effGetEffectName), "Probe");
  EXPECT_EQ(Text(rig, effGetVendorString), "Maker");
  EXPECT_EQ(Text(rig, effGetProductString), "Product");
  EXPECT_EQ(rig.Dispatch(effGetEffectName), 0);
  EXPECT_EQ(Text(rig, effVendorSpecific, 7, kTapered, 0.5F), "25");
  EXPECT_EQ(Text(rig, effVendorSpecific, 7, 99), "untouched");
  char text[64];
  EXPECT_EQ(rig.Dispatch(effVendorSpecific, 7, 99, text), 0xBEEF);
  EXPECT_EQ(rig.Dispatch(effVendorSpecific, 7, kMode), 0);
  EXPECT_EQ(rig.Dispatch(effVendorSpecific, 8, kMode), 0xBEEF) << "it steps";
  EXPECT_EQ(rig.Dispatch(effVendorSpecific, 8, kLevel), 0);
  EXPECT_EQ(rig.Dispatch(effVendorSpecific, 9, kMode), 0);
}

TEST(Dispatcher, ProgramNamesAreKeptShortEnoughForTheHost) {
  Rig rig;
  rig.plug->MakeEmptyPresets();
  std::string name(300, 'n');
  rig.Dispatch(effSetProgramName, 0, 0, name.data());
  EXPECT_EQ(rig.plug->TakeLog(), "Presets");
  EXPECT_EQ(rig.plug->GetPresetName(0), std::string(255, 'n'));
  EXPECT_EQ(Text(rig, effGetProgramName), std::string(63, 'n'));
  char text[64] = "x";
  EXPECT_EQ(rig.Dispatch(effGetProgramNameIndexed, 1, 0, text), 1);
  EXPECT_STREQ(text, "Empty");
  EXPECT_EQ(rig.Dispatch(effGetProgramNameIndexed, 4, 0, text), 0);
  EXPECT_STREQ(text, "");
  EXPECT_EQ(rig.Dispatch(effGetProgramNameIndexed, 1), 1) << "without a buffer to fill";
}

TEST(Dispatcher, CanDo) {
  PlugOptions options;
  options.midi = true;
  Rig plain;
  Rig midi(options);
  const auto ask = [](Rig& rig, std::string query) {
    return rig.Dispatch(effCanDo, 0, 0, query.data());
  };
  EXPECT_EQ(ask(plain, "receiveVstTimeInfo"), 1);
  for (const char* query :
       {"sendVstEvents", "sendVstMidiEvent", "receiveVstEvents", "receiveVstMidiEvent"}) {
    EXPECT_EQ(ask(plain, query), 0) << query;
    EXPECT_EQ(ask(midi, query), 1) << query;
  }
  EXPECT_EQ(ask(plain, "hasCockosExtensions"), 0xBEEF0000);
  EXPECT_EQ(ask(plain, "hasCockosViewAsConfig"), 0xBEEF0000);
  EXPECT_EQ(ask(plain, "bypass"), 0);
}

TEST(Dispatcher, TextSetsAParameter) {
  Rig rig;
  const auto set = [&](int index, std::string text) {
    return rig.Dispatch(effString2Parameter, index, 0, text.data());
  };
  EXPECT_EQ(set(kLevel, " 7.5 dB"), 1);
  EXPECT_EQ(rig.plug->GetParam(kLevel)->Value(), 7.5);
  EXPECT_EQ(set(kLevel, "1e99"), 1);
  EXPECT_EQ(rig.plug->GetParam(kLevel)->Value(), 10.0);
  EXPECT_EQ(set(kLevel, "nan"), 1);
  EXPECT_EQ(rig.plug->GetParam(kLevel)->Value(), 0.0);
  EXPECT_EQ(set(kNegated, "2.5"), 1);
  EXPECT_EQ(rig.plug->GetParam(kNegated)->Value(), -2.5);
  EXPECT_EQ(set(kMode, "blue"), 1);
  EXPECT_EQ(rig.plug->GetParam(kMode)->Value(), 2.0);
  rig.plug->TakeLog();
  EXPECT_EQ(set(kMode, "2"), 0) << "only its texts name the values of such a parameter";
  EXPECT_EQ(set(99, "1"), 0);
  EXPECT_EQ(rig.Dispatch(effString2Parameter, kLevel), 1) << "asking whether it is possible";
  EXPECT_EQ(rig.plug->TakeLog(), "");
}

TEST(Dispatcher, ParameterCallsCheckTheirIndexAndAnnounceTheValue) {
  Rig rig;
  rig.effect->setParameter(rig.effect, kTapered, 0.5F);
  EXPECT_EQ(rig.plug->GetParam(kTapered)->Value(), 25.0);
  EXPECT_EQ(rig.effect->getParameter(rig.effect, kTapered), 0.5F);
  EXPECT_EQ(rig.plug->TakeLog(), "Param 4");
  for (const int index : {-1, int{kNumTestParams}, INT_MAX, INT_MIN}) {
    rig.effect->setParameter(rig.effect, index, 1.0F);
    EXPECT_EQ(rig.effect->getParameter(rig.effect, index), 0.0F);
  }
  EXPECT_EQ(rig.plug->TakeLog(), "");
  for (const float bad : {NAN, INFINITY, -INFINITY, -2.0F, 2.0F}) {
    for (int i = 0; i < kNumTestParams; ++i) {
      rig.effect->setParameter(rig.effect, i, bad);
      const float told = rig.effect->getParameter(rig.effect, i);
      EXPECT_TRUE(told >= 0.0F && told <= 1.0F) << i << " set to " << bad;
      EXPECT_NE(Text(rig, effGetParamDisplay, i), "untouched");
    }
  }
  rig.effect->setParameter(rig.effect, kCount, 0.5F);
  EXPECT_EQ(rig.plug->GetParam(kCount)->Value(), 0.0);
}

TEST(Dispatcher, PinsTellPairsAndLabels) {
  PlugOptions options;
  options.channelIO = "3-2";
  Rig rig(options);
  rig.plug->SetInputLabel(1, "Side");
  const struct {
    int opcode, index;
    VstIntPtr result;
    const char* label;
    int flags;
  } kCases[] = {{effGetInputProperties, 0, 1, "Input 1", kVstPinIsActive | kVstPinIsStereo},
                {effGetInputProperties, 1, 1, "Side", kVstPinIsActive},
                {effGetInputProperties, 2, 1, "Input 3", kVstPinIsActive},
                {effGetOutputProperties, 0, 1, "Output 1", kVstPinIsActive | kVstPinIsStereo},
                {effGetOutputProperties, 1, 1, "Output 2", kVstPinIsActive},
                {effGetInputProperties, 3, 0, "", 0},
                {effGetOutputProperties, -1, 0, "", 0}};
  for (const auto& c : kCases) {
    VstPinProperties pin{};
    EXPECT_EQ(rig.Dispatch(c.opcode, c.index, 0, &pin), c.result);
    EXPECT_STREQ(pin.label, c.label);
    EXPECT_EQ(pin.flags, c.flags) << c.label;
  }
}

TEST(Dispatcher, SpeakerArrangementsConnectTheChannels) {
  Rig rig;
  VstSpeakerArrangement* in = nullptr;
  VstSpeakerArrangement* out = nullptr;
  EXPECT_EQ(rig.Dispatch(effGetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&in), &out), 1);
  EXPECT_EQ(in->type, 1);
  EXPECT_EQ(out->numChannels, 2);
  VstSpeakerArrangement mono{};
  for (const int channels : {1, 0, -5, INT_MAX}) {
    mono.numChannels = channels;
    EXPECT_EQ(rig.Dispatch(effSetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&mono)), 1);
    EXPECT_EQ(rig.plug->IsInChannelConnected(0), channels > 0) << channels;
    EXPECT_EQ(rig.plug->IsInChannelConnected(1), channels > 1) << channels;
    EXPECT_TRUE(rig.plug->IsOutChannelConnected(1));
  }
  PlugOptions wide;
  wide.channelIO = "0-3";
  Rig other(wide);
  other.Dispatch(effGetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&in), &out);
  EXPECT_EQ(in->type, -1);
  EXPECT_EQ(out->type, -2);
}

TEST(Dispatcher, EventsReachThePlugIn) {
  Rig rig;
  VstMidiEvent midi{};
  midi.type = kVstMidiType;
  midi.deltaFrames = 17;
  midi.midiData[0] = static_cast<char>(0x90);
  midi.midiData[1] = 60;
  midi.midiData[2] = 127;
  VstMidiSysexEvent sysex{};
  sysex.type = kVstSysExType;
  sysex.dumpBytes = 2;
  char dump[] = {7, 8};
  sysex.sysexDump = dump;
  VstEvents events{};
  events.numEvents = 2;
  events.events[0] = reinterpret_cast<VstEvent*>(&midi);
  events.events[1] = reinterpret_cast<VstEvent*>(&sysex);
  EXPECT_EQ(rig.Dispatch(effProcessEvents, 0, 0, &events), 1);
  EXPECT_EQ(rig.plug->TakeLog(), "Midi 17 144 60 127 SysEx 0 2 7");
  events.events[0] = nullptr;
  sysex.type = 5;
  EXPECT_EQ(rig.Dispatch(effProcessEvents, 0, 0, &events), 1);
  events.numEvents = -1;
  EXPECT_EQ(rig.Dispatch(effProcessEvents, 0, 0, &events), 1);
  EXPECT_EQ(rig.plug->TakeLog(), "");
  MidiKeyName key{};
  key.thisKeyNumber = 60;
  EXPECT_EQ(rig.Dispatch(effGetMidiKeyName, 0, 0, &key), 1);
  EXPECT_STREQ(key.keyName, "Middle C");
  key.thisKeyNumber = 61;
  EXPECT_EQ(rig.Dispatch(effGetMidiKeyName, 0, 0, &key), 0);
  EXPECT_STREQ(key.keyName, "");
}

TEST(Editor, OpensClosesAndGoesWithThePlugIn) {
  Rig rig;
  ERect* rect = nullptr;
  EXPECT_EQ(rig.Dispatch(effEditGetRect, 0, 0, &rect), 0);
  EXPECT_EQ(rig.Dispatch(effEditOpen, 0, 0, &rig), 0);
  EXPECT_EQ(rig.Dispatch(effEditClose), 0);
  rig.plug->AttachGraphics(nullptr);
  EXPECT_EQ(rig.effect->flags & effFlagsHasEditor, 0);
  rig.plug->AttachGraphics(new FakeEditor(rig.plug.get()));
  EXPECT_NE(rig.effect->flags & effFlagsHasEditor, 0);
  ASSERT_EQ(rig.Dispatch(effEditGetRect, 0, 0, &rect), 1);
  EXPECT_EQ(rect->right - rect->left, 300);
  EXPECT_EQ(rect->bottom - rect->top, 200);
  EXPECT_EQ(rig.Dispatch(effEditGetRect), 0);
  rig.plug->ResizeGraphics();
  rig.plug->TakeLog();
  EXPECT_EQ(rig.Dispatch(effEditOpen, 0, 0, &rig), 1);
  EXPECT_EQ(rig.Dispatch(effEditOpen, 0, 0, nullptr), 0) << "no window came of it";
  EXPECT_EQ(rig.Dispatch(effEditClose), 1);
  EXPECT_EQ(rig.Dispatch(effEditClose), 1);
  EXPECT_EQ(rig.plug->TakeLog(),
            "OpenWindow GUIOpen OpenWindow GUIClose CloseWindow GUIClose CloseWindow");
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
  rig.effect->setParameter(rig.effect, kTapered, 0.75F);
  rig.effect->setParameter(rig.effect, kTapered, NAN);
  char text[] = "25";
  rig.Dispatch(effString2Parameter, kTapered, 0, text);
  rig.plug->GetParam(kTapered)->Set(100);
  rig.plug->RedrawParamControls();
  EXPECT_EQ(values, (std::vector<double>{0.5, 0.75, 0.0, 0.5, 1.0}));
}

// Follows what happens at the end of an object whose log goes with it.
class LastEditor : public FakeEditor {
 public:
  LastEditor(TestPlug* plug, std::string* order) : FakeEditor(plug), mOrder(order) {}
  ~LastEditor() override { *mOrder += "gone "; }
  void CloseWindow() override {
    *mOrder += GetPlug()->GetLock().IsMine() ? "closed under the lock " : "closed ";
  }

 private:
  std::string* mOrder;
};

TEST(Editor, AnOpenOneIsClosedBeforeThePlugInGoes) {
  Rig rig;
  std::string order;
  bool deleted = false;
  rig.plug->deleted = &deleted;
  auto* editor = new LastEditor(rig.plug.get(), &order);
  rig.plug->AttachGraphics(editor);
  TestPlug* plug = rig.plug.release();
  AEffect* effect = plug->GetAEffect();
  effect->dispatcher(effect, effEditOpen, 0, 0, &rig, 0.0F);
  effect->dispatcher(effect, effClose, 0, 0, nullptr, 0.0F);
  EXPECT_TRUE(deleted);
  EXPECT_EQ(order, "closed gone ");
}

}  // namespace
