// The half of a plug-in that speaks the VST2 interface. Tolmara uses all of it but MIDI and the
// transport.
#pragma once

#include <cstdint>

#include "iplug/IPlugBase.h"
#include "iplug/vst2/vst2.h"

// Fills the record that the host holds, answers its calls and offers its services to the plug-in.
// Every host call but the one that closes runs inside the plug-in lock, on whatever thread the host
// likes. Text given to the host is cut to the size of its buffer: 32 bytes for parameter text and
// the effect's name, 64 for all other text.
class IPlugVST : public IPlugBase {
 public:
  IPlugVST(audioMasterCallback hostCallback, int nParams, const char* channelIOStr, int nPresets,
           const char* effectName, const char* productName, const char* mfrName, int vendorVersion,
           int uniqueID, int mfrID, int latency = 0, bool doesMidi = false,
           bool stateChunks = false, bool isInst = false);

  void BeginInformHostOfParamChange(int idx) override;
  void InformHostOfParamChange(int idx, double normalizedValue) override;
  void EndInformHostOfParamChange(int idx) override;
  void InformHostOfProgramChange() override;
  bool IsRenderingOffline() override;
  int GetSamplePos() override;
  double GetTempo() override;
  void GetTimeSig(int* numerator, int* denominator) override;
  // Changes only what the host answers as valid.
  void GetTime(ITimeInfo* info) override;
  // Asks the host on first use.
  int GetHost() override;
  void ResizeGraphics() override;
  void HostSpecificInit() override;
  void AttachGraphics(IGraphics* graphics) override;
  void SetLatency(int samples) override;
  bool SendMidiMsg(IMidiMsg* msg) override;
  bool SendSysEx(ISysEx* msg) override;

  AEffect* GetAEffect() { return &mAEffect; }

 private:
  friend struct VSTDispatch;  // the host's opcodes

  VstIntPtr CallHost(int opcode, int index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                     float opt = 0.0f);
  const VstTimeInfo* AskTime(int mask);
  void FillAEffect();
  void SetEditRect();
  void DisconnectExtraInputs();
  template <typename T, typename Run>
  void RunBlocks(T** inputs, T** outputs, int nFrames, Run run);

  static VstIntPtr Dispatcher(AEffect* effect, std::int32_t opcode, std::int32_t index,
                              VstIntPtr value, void* ptr, float opt);
  static float GetParameter(AEffect* effect, std::int32_t index);
  static void SetParameter(AEffect* effect, std::int32_t index, float value);
  static void Process(AEffect* effect, float** inputs, float** outputs, std::int32_t nFrames);
  static void ProcessReplacing(AEffect* effect, float** inputs, float** outputs,
                               std::int32_t nFrames);
  static void ProcessDouble(AEffect* effect, double** inputs, double** outputs,
                            std::int32_t nFrames);

  ERect mEditRect{};  // editor size, zero without one
  audioMasterCallback mHostCallback;
  VstSpeakerArrangement mInputSpkrArr{};
  VstSpeakerArrangement mOutputSpkrArr{};
  bool mHostSpecificInitDone = false;
  bool mDoesMidi;
  std::uint32_t mHasVSTExtensions = 0;  // which extension queries the host has sent
  ByteChunk mState;                     // one preset; the host reads it until the next chunk call
  ByteChunk mBankState;                 // the bank, likewise
  AEffect mAEffect{};
};

// What the entry point of a bundle does: under one process-wide recursive lock runs `make`, fills
// the preset slots that it left free and returns the record for the host, with at least one
// program. Null when construction throws.
AEffect* ConstructUnderLock(IPlugVST* (*make)(audioMasterCallback),
                            audioMasterCallback hostCallback);
