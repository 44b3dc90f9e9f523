// A small plug-in and a host made of answers, for tests of the framework.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "graphics/IGraphicsOffscreen.h"
#include "iplug/vst2/IPlugVST.h"

struct PlugOptions {
  const char* channelIO = "1-1 2-2";
  int presets = 4;
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
inline constexpr char kAllAnnounced[] = "Param 0 Param 1 Param 2 Param 3 Param 4 Param 5";

// What happened, as words with blanks between; it outlives those who write it.
using Log = std::shared_ptr<std::string>;
void Note(const Log& log, const std::string& text);  // nothing where there is no log

// Notes what it is told; passes sound through unless `process` is set.
class TestPlug : public IPlugVST {
 public:
  explicit TestPlug(audioMasterCallback callback, const PlugOptions& options = {});
  ~TestPlug() override { Note(log, "Gone"); }

  void Reset() override { Note(log, "Reset"); }
  void OnParamChange(int idx) override { Note(log, "Param " + std::to_string(idx)); }
  void ProcessDoubleReplacing(double** inputs, double** outputs, int nFrames) override;
  void OnActivate(bool active) override { Note(log, active ? "On" : "Off"); }
  void OnPresetsChanged() override { Note(log, "Presets"); }
  void OnHostIdentified() override { Note(log, "Identified"); }
  void OnGUIOpen() override { Note(log, "GUIOpen"); }
  void OnGUIClose() override { Note(log, "GUIClose"); }
  void OnWindowResize() override { Note(log, "Resize"); }
  void ProcessMidiMsg(IMidiMsg* msg) override;
  void ProcessSysEx(ISysEx* msg) override;
  bool MidiNoteName(int note, char* name) override;

  using IPlugBase::AttachInputBuffers;
  using IPlugBase::AttachOutputBuffers;
  using IPlugBase::mDelay;
  using IPlugBase::PassThroughBuffers;
  IPreset* Preset(int idx) { return mPresets.Get(idx); }
  double Value(int idx) const { return GetParam(idx)->Value(); }

  Log log = std::make_shared<std::string>();
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
  static VstIntPtr Callback(AEffect* effect, std::int32_t opcode, std::int32_t index,
                            VstIntPtr value, void* ptr, float opt);

  std::string product = "Some Host";
  VstTimeInfo time{};
  std::map<int, VstIntPtr> answers = {{audioMasterGetTime, reinterpret_cast<VstIntPtr>(&time)}};
  std::vector<char> eventBytes;  // the last event sent
  std::vector<HostCall> calls;
  std::function<void()> onCall = [] {};
};

// A plug-in in a host.
struct Rig {
  explicit Rig(const PlugOptions& options = {});

  VstIntPtr Dispatch(int opcode, int index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                     float opt = 0.0f) {
    return effect->dispatcher(effect, opcode, index, value, ptr, opt);
  }
  void Close();           // the host's last call
  std::string TakeLog();  // the log so far; it starts anew
  VstIntPtr SetChunk(std::vector<std::uint8_t> bytes, bool isPreset);
  std::vector<std::uint8_t> GetChunk(bool isPreset);
  std::vector<double> Values() const;
  void SetValues(const std::vector<double>& values);
  bool InRange() const;  // every parameter

  FakeHost host;
  std::unique_ptr<TestPlug> plug;
  AEffect* effect;
  Log log;
};

// An editor whose window and dialogs are notes in the plug-in's log.
class FakeEditor : public IGraphicsOffscreen {
 public:
  explicit FakeEditor(TestPlug* plug) : IGraphicsOffscreen(plug, 300, 200, 0), mLog(plug->log) {}
  ~FakeEditor() override { Note(mLog, "EditorGone"); }
  void* OpenWindow(void* parent) override;
  void CloseWindow() override;
  void PromptForFile(HeapString* file, int action, HeapString* dir,
                     const char* extensions) override;

  std::string answer;  // of the file dialog

 private:
  Log mLog;
};

// A path in the test's own directory that nothing exists at.
std::string TempPath(const std::string& name);
