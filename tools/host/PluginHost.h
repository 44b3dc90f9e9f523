// One VST2 effect, loaded from a shared object and driven through the binary interface alone.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "iplug/vst2/vst2.h"

// Owns the shared object and the effect in it. Nothing about any particular effect is known here.
// Every call comes from one thread. The constructor throws Failure (ExitCode::kPlugin).
class PluginHost {
 public:
  using EntryPoint = AEffect* (*)(audioMasterCallback);

  explicit PluginHost(const std::string& path);
  // An effect whose code is part of this program.
  PluginHost(const std::string& name, EntryPoint entry);
  ~PluginHost();
  PluginHost(const PluginHost&) = delete;
  PluginHost& operator=(const PluginHost&) = delete;

  // Where the plug-in is taken from by default: beside this program, then the usual folders
  // for VST2 plug-ins. Throws Failure when it is in none.
  static std::string FindDefault();

  const std::string& Path() const { return mPath; }
  std::string EffectName();  // the file's name if the effect has none
  std::int32_t UniqueId() const { return mEffect->uniqueID; }
  std::int32_t Version() const { return mEffect->version; }
  int NumParams() const { return mEffect->numParams; }
  int NumPrograms() const { return mEffect->numPrograms; }
  int NumInputs() const { return mEffect->numInputs; }
  int NumOutputs() const { return mEffect->numOutputs; }
  int ReportedDelay() const { return mEffect->initialDelay; }  // samples
  bool KeepsChunks() const { return HasFlag(effFlagsProgramChunks); }

  void* Object() const { return mEffect->object; }  // the effect's own

  VstIntPtr Dispatch(std::int32_t opcode, std::int32_t index = 0, VstIntPtr value = 0,
                     void* ptr = nullptr, float opt = 0.0f);
  // The text that an opcode writes, "" if none; `told`, unless null, takes the opcode's result.
  std::string Text(std::int32_t opcode, std::int32_t index = 0, VstIntPtr value = 0,
                   float opt = 0.0f, VstIntPtr* told = nullptr);

  // Normalised values, 0 to 1.
  float Get(int id) const { return mEffect->getParameter(mEffect, id); }
  void Set(int id, float value) { mEffect->setParameter(mEffect, id, value); }

  std::vector<std::string> ProgramNames();
  int Program() { return static_cast<int>(Dispatch(effGetProgram)); }
  void SelectProgram(int index);

  // The state as the effect packs it; empty if it gives none. `program`: only the current one.
  std::vector<std::uint8_t> Chunk(bool program);
  bool SetChunk(bool program, std::vector<std::uint8_t> chunk);

  // Announces the sample rate in Hz and the longest block, as between two plays of a workstation.
  void Configure(double rate, int block);
  // Connects the first `channels` inputs and outputs only, if the effect agrees.
  void Connect(int channels);
  // One block of at most the announced number of frames; NumInputs and NumOutputs buffers.
  void Process(double** inputs, double** outputs, int frames);

 private:
  struct SharedObject {
    void operator()(void* handle) const;
  };

  static VstIntPtr Answer(AEffect* effect, std::int32_t opcode, std::int32_t index, VstIntPtr value,
                          void* ptr, float opt);
  void Open(EntryPoint entry);
  bool HasFlag(std::int32_t flag) const { return (mEffect->flags & flag) != 0; }
  void Require(bool condition, const std::string& lack) const;
  void ProcessAsFloat(double** inputs, double** outputs, int frames);

  std::string mPath;
  std::unique_ptr<void, SharedObject> mObject;
  AEffect* mEffect = nullptr;  // the effect's own, gone with effClose
  double mRate = 44100;        // announced, Hz
  int mBlock = 1024;           // announced, frames
  bool mRunning = false;       // between effMainsChanged 1 and 0
  std::vector<float> mSingle;  // blocks of a single-precision effect, inputs then outputs
};
