// A small plug-in and a host made of answers, for tests of the framework.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "graphics/IGraphicsOffscreen.h"
#include "iplug/IPlugVST.h"

struct PlugOptions {
  const char* channelIO = "1-1 2-2";
  int presets = 4;
  int version = 0x00010203;
  int uniqueID = 0x54657374;
  int latency = 0;
  bool midi = false;
  bool chunks = false;
  bool instrument = false;
};

// The parameters of TestPlug, by index.
enum ETestParam {
  kLevel,    // double 0 to 10 by 0.1, "dB"
  kCount,    // int -3 to 3, "pcs"
  kSwitch,   // bool
  kMode,     // enum "red", "green", "blue"
  kTapered,  // double 0 to 100 with shape 2
  kNegated,  // double -6 to -0.5 by 0.01, shown with opposite sign
  kNumTestParams
};

// Notes what it is told; passes sound through unless `process` is set.
class TestPlug : public IPlugVST {
 public:
  explicit TestPlug(audioMasterCallback callback, const PlugOptions& options = {});
  ~TestPlug() override;

  void Reset() override { Note("Reset"); }
  void OnParamChange(int idx) override { Note("Param " + std::to_string(idx)); }
  void ProcessDoubleReplacing(double** inputs, double** outputs, int nFrames) override;
  void OnActivate(bool active) override { Note(active ? "On" : "Off"); }
  void OnPresetsChanged() override { Note("Presets"); }
  void OnHostIdentified() override { Note("Identified"); }
  void OnGUIOpen() override { Note("GUIOpen"); }
  void OnGUIClose() override { Note("GUIClose"); }
  void OnWindowResize() override { Note("Resize"); }
  void ProcessMidiMsg(IMidiMsg* msg) override;
  void ProcessSysEx(ISysEx* msg) override;
  bool MidiNoteName(int note, char* name) override;

  void Note(const std::string& text) {
    if (noting) log.push_back(text);
  }
  // The log so far, joined by blanks; it starts anew.
  std::string TakeLog();

  using IPlugBase::AttachInputBuffers;
  using IPlugBase::AttachOutputBuffers;
  using IPlugBase::mDelay;
  using IPlugBase::PassThroughBuffers;
  using IPlugBase::ZeroScratchBuffers;
  IPreset* Preset(int idx) { return mPresets.Get(idx); }

  bool noting = true;
  bool* deleted = nullptr;  // set when the object goes
  std::vector<std::string> log;
  std::function<void(double**, double**, int)> process;
};

struct HostCall {
  int opcode;
  int index;
  VstIntPtr value;
  float opt;
  bool locked;  // the plug-in's lock was held by the caller
};

// What the host answers, and what it was asked.
struct FakeHost {
  std::string product = "Some Host";
  VstIntPtr vendorVersion = 0;
  VstTimeInfo time{};
  bool answersTime = true;
  VstIntPtr processLevel = 0;
  VstIntPtr eventsAnswer = 1;
  std::vector<char> eventBytes;  // the last event sent
  std::vector<HostCall> calls;
  std::function<void(const HostCall&)> onCall;

  static VstIntPtr Callback(AEffect* effect, std::int32_t opcode, std::int32_t index,
                            VstIntPtr value, void* ptr, float opt);
  VstIntPtr Answer(const HostCall& call, void* ptr);
  int Count(int opcode) const;
};

// A plug-in in a host.
struct Rig {
  explicit Rig(const PlugOptions& options = {});

  VstIntPtr Dispatch(int opcode, int index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                     float opt = 0.0F) {
    return effect->dispatcher(effect, opcode, index, value, ptr, opt);
  }
  VstIntPtr SetChunk(const std::vector<std::uint8_t>& bytes, bool isPreset);
  std::vector<std::uint8_t> GetChunk(bool isPreset);
  std::vector<double> Values() const;
  void SetValues(const std::vector<double>& values);
  testing::AssertionResult InRange() const;  // every parameter

  FakeHost host;
  std::unique_ptr<TestPlug> plug;
  AEffect* effect;
};

// An editor whose window and dialogs are notes in the plug-in's log.
class FakeEditor : public IGraphicsOffscreen {
 public:
  explicit FakeEditor(TestPlug* plug) : IGraphicsOffscreen(plug, 300, 200, 0), mPlug(plug) {}
  void* OpenWindow(void* parent) override;
  void CloseWindow() override { mPlug->Note("CloseWindow"); }
  void PromptForFile(HeapString* file, int action, HeapString* dir,
                     const char* extensions) override;

  std::string answer;  // of the file dialog

 private:
  TestPlug* mPlug;
};

// A path in the test's own directory that nothing exists at.
std::string TempPath(const std::string& name);
