// The half of a plug-in that knows no host interface. Tolmara uses parameters, mono and stereo
// channels, preset slots filled from values, state and the editor; it uses no MIDI, transport,
// latency, bus label, preset file or preset text.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "iplug/ByteChunk.h"
#include "iplug/Containers.h"
#include "iplug/IParam.h"
#include "iplug/IPlugStructs.h"
#include "iplug/IPreset.h"
#include "iplug/NChanDelay.h"
#include "iplug/PlugLock.h"

class IGraphics;

enum EAPI : std::int32_t {
  kAPIVST2 = 0,
  kAPIVST3 = 1,
  kAPIAU = 2,
  kAPIRTAS = 3,
  kAPIAAX = 4,
  kAPISA = 5
};

// Parameters, presets, channel tables, identity and the one recursive lock of a plug-in. Hosts call
// from any thread in any order; each call checks its own index and pointers, and an index out of
// range gives null, false or "". The lock is held for a whole process call, a whole host call and
// each change from the editor; functions below take it themselves only where they say so.
class IPlugBase {
 public:
  // `channelIOStr` lists the legal channel counts, as "1-1 2-2". `version` is packed 0xVVVVRRMM.
  IPlugBase(int nParams, const char* channelIOStr, int nPresets, const char* effectName,
            const char* productName, const char* mfrName, int version, int uniqueID, int mfrID,
            int latency, bool doesMidi, bool stateChunks, bool isInst, int api);
  IPlugBase(const IPlugBase&) = delete;
  IPlugBase& operator=(const IPlugBase&) = delete;

  // Deletes the editor first.
  virtual ~IPlugBase();

  // Sample rate or block size may have changed, or playback restarts. Any host thread.
  virtual void Reset();
  // Parameter `paramIdx` has a new value. Under the lock, on the thread that changed it.
  virtual void OnParamChange(int paramIdx);
  // One array per channel, `nFrames` samples each, at most the block size. Audio thread.
  virtual void ProcessDoubleReplacing(double** inputs, double** outputs, int nFrames);
  // No host path comes here: single precision goes through the double form.
  virtual void ProcessSingleReplacing(float** inputs, float** outputs, int nFrames);
  virtual void OnGUIOpen() {}
  virtual void OnGUIClose() {}
  virtual void OnActivate(bool active);
  virtual void ProcessMidiMsg(IMidiMsg* msg) { SendMidiMsg(msg); }
  virtual void ProcessSysEx(ISysEx*) {}
  // `rName` has room for 64 bytes.
  virtual bool MidiNoteName(int noteNumber, char* rName);
  virtual bool SerializeState(ByteChunk* chunk) { return SerializeParams(chunk); }
  // Returns the position after the state, -1 when the chunk was too short.
  virtual int UnserializeState(ByteChunk* chunk, int startPos) {
    return UnserializeParams(chunk, startPos);
  }
  // Whether the parameters equal the doubles from index `startPos` on to 0.00001 in single
  // precision.
  virtual bool CompareState(const double* incomingState, int startPos);
  virtual void OnWindowResize() {}
  virtual void OnHostIdentified() {}
  // A change by the user: stores it, tells the host, announces it. Takes the lock. Editor's thread.
  virtual void SetParameterFromGUI(int idx, double normalizedValue);

  // What the host does for the plug-in.
  virtual void BeginInformHostOfParamChange(int idx) = 0;
  virtual void InformHostOfParamChange(int idx, double normalizedValue) = 0;
  virtual void EndInformHostOfParamChange(int idx) = 0;
  virtual void InformHostOfProgramChange() = 0;
  virtual bool IsRenderingOffline() = 0;
  virtual int GetSamplePos() = 0;
  virtual double GetTempo() = 0;  // beats per minute, 0 if unknown
  virtual void GetTimeSig(int* numerator, int* denominator) = 0;
  virtual void GetTime(ITimeInfo* info) = 0;
  virtual int GetHost();  // a code of Hosts.h
  virtual int GetAPI() { return mAPI; }
  virtual void ResizeGraphics() = 0;
  virtual void HostSpecificInit() = 0;
  // Takes ownership of the editor and gives its controls their values. Takes the lock.
  virtual void AttachGraphics(IGraphics* graphics);
  virtual void SetLatency(int samples);
  virtual bool SendMidiMsg(IMidiMsg* msg) = 0;
  virtual bool SendSysEx(ISysEx* msg) = 0;
  virtual void RedrawParamControls();
  virtual void OnPresetsChanged() {}
  // Largest block to come. Allocates and silences the scratch buffers if it differs.
  virtual void SetBlockSize(int blockSize);

  // Identity.
  const char* GetEffectName() const { return mEffectName; }
  const char* GetProductName() const { return mProductName; }
  const char* GetMfrName() const { return mMfrName; }
  int GetUniqueID() const { return mUniqueID; }
  int GetMfrID() const { return mMfrID; }
  int GetEffectVersion(bool decimal) const;
  void GetEffectVersionStr(char* rVersion) const;  // 32 bytes
  int GetHostVersion(bool decimal);
  void GetHostVersionStr(char* rVersion);  // 32 bytes
  const char* GetAPIStr();
  const char* GetArchStr() const { return "x64"; }
  void SetHost(const char* productString, std::uint32_t version);

  // Timing.
  // As the host gave it, unchecked: 0 and implausible values mean unknown.
  void SetSampleRate(double sampleRate) { mSampleRate = sampleRate; }
  double GetSampleRate() const { return mSampleRate; }
  int GetBlockSize() const { return mBlockSize; }
  int GetLatency() const { return mLatency; }
  double GetSamplesPerBeat();

  // Parameters.
  IParam* GetParam(int idx) const { return mParams.Get(idx); }
  int NParams() const { return mParams.GetSize(); }
  void OnParamReset();     // announces every parameter; no lock of its own
  void DirtyParameters();  // tells the host every value; takes the lock

  // Channels.
  bool LegalIO(int nIn, int nOut) const;  // a negative count matches any
  int NInChannels() const { return mInChannels.GetSize(); }
  int NOutChannels() const { return mOutChannels.GetSize(); }
  bool IsInChannelConnected(int idx) const;
  bool IsOutChannelConnected(int idx) const;
  void SetInputChannelConnections(int idx, int n, bool connected);
  void SetOutputChannelConnections(int idx, int n, bool connected);
  void SetInputLabel(int idx, const char* label);
  void SetOutputLabel(int idx, const char* label);
  const char* GetInputLabel(int idx) const;  // "" if none was set
  const char* GetOutputLabel(int idx) const;
  void SetInputBusLabel(int idx, const char* label);
  void SetOutputBusLabel(int idx, const char* label);
  const char* GetInputBusLabel(int idx) const;
  const char* GetOutputBusLabel(int idx) const;

  // State. Both take the lock. A chunk that ends early stores 0, clamped, in the first parameter it
  // has no data for, leaves the rest, announces all and returns -1.
  bool SerializeParams(ByteChunk* chunk);
  int UnserializeParams(ByteChunk* chunk, int startPos);
  // All presets; the caller holds the lock. Reading passes each preset through the parameters and
  // ends by restoring the current one.
  bool SerializePresets(ByteChunk* chunk);
  int UnserializePresets(ByteChunk* chunk, int startPos);

  // Filling the slots, from the product's constructor: each takes the first free slot, and none
  // free means nothing happens.
  void MakeDefaultPreset(const char* name = nullptr, int nPresets = 1);
  void MakeEmptyPresets();
  // One value per parameter: int for bool, int and enum kinds, double for the others.
  void MakePreset(const char* name, ...);
  // The same from an array of NParams() values.
  void MakePresetFromValues(const char* name, const double* values);
  // Pairs of index (int) and value (as above); parameters not named keep their present value.
  void MakePresetFromNamedParams(const char* name, int nParamsNamed, ...);
  void MakePresetFromChunk(const char* name, ByteChunk* chunk);
  void MakePresetFromBlob(const char* name, const char* blob, int sizeOfChunk);
  void PruneUninitializedPresets();

  // Using them.
  int NPresets() const { return mPresets.GetSize(); }
  int GetCurrentPresetIdx() const { return mCurrentPresetIdx; }
  bool RestorePreset(int idx);
  bool RestorePreset(const char* name);
  const char* GetPresetName(int idx) const;
  // Stores the present values in the current slot; a name neither null nor empty renames it.
  void ModifyCurrentPreset(const char* name = nullptr);

  // Text for a product's constructor. False if the file cannot be written.
  bool DumpPresetSrcCode(const char* path, const char** paramEnumNames) const;
  bool DumpPresetBlob(const char* path) const;

  // Preset files. The first four ask the editor for the path and are false without editor or
  // answer; the others take it. A file that cannot be created gives false and leaves nothing
  // behind.
  bool SaveProgramAsFXP(const char* defaultFileName);
  bool SaveBankAsFXB(const char* defaultFileName);
  bool LoadProgramFromFXP();
  bool LoadBankFromFXB();
  bool SaveProgramToFile(const char* path);
  bool SaveBankToFile(const char* path);
  bool LoadProgramFromFile(const char* path);
  bool LoadBankFromFile(const char* path);
  std::vector<std::uint8_t> ProgramFileBytes();
  std::vector<std::uint8_t> BankFileBytes();
  bool ReadProgramFile(const std::uint8_t* data, std::size_t size);
  bool ReadBankFile(const std::uint8_t* data, std::size_t size);

  // For the window layer, which gives the lock up while it waits for its own thread.
  PlugLock& GetLock() { return mLock; }
  IGraphics* GetGraphics() const { return mGraphics; }

 protected:
  // Process entries of the adapter, under the lock. `n` host pointers, of which one is taken for
  // each connected channel, advanced by `offset` samples; a null pointer means silence or
  // nowhere.
  void AttachInputBuffers(int idx, int n, double** ppData, int nFrames, int offset = 0);
  void AttachInputBuffers(int idx, int n, float** ppData, int nFrames, int offset = 0);
  void AttachOutputBuffers(int idx, int n, double** ppData, int offset = 0);
  void AttachOutputBuffers(int idx, int n, float** ppData, int offset = 0);
  // The unnamed argument only selects the precision.
  void ProcessBuffers(double, int nFrames);
  void ProcessBuffers(float, int nFrames);
  void ProcessBuffersAccumulating(float, int nFrames);
  void ZeroScratchBuffers();
  void PassThroughBuffers(double, int nFrames);
  void PassThroughBuffers(float, int nFrames);

  // The editor through functions that do nothing without one.
  bool HasEditor() const { return mGraphics != nullptr; }
  void ShowParameter(int idx, double value, bool normalized);
  void GetEditorSize(int* width, int* height) const;
  bool OpenEditorWindow(void* parent);
  void CloseEditorWindow();

 private:
  void ParseChannelIO(const char* channelIOStr, int* maxIn, int* maxOut);
  void MakeChannels(int nIn, int nOut);
  void DeleteEditor();
  void OutputsToFloat(int nFrames, bool accumulate);
  IPreset* FirstFreePreset();
  IPreset* ClaimPreset(const char* name);
  void MakeDefaultUserPresetName(IPreset* preset) const;
  void StoreValues(const std::vector<float>& normalized);
  bool PromptForPresetFile(const char* defaultFileName, int action, const char* extension,
                           HeapString* path);

  OwnedPointerList<ChannelIO> mChannelIO;  // every legal configuration, in order of the string

 protected:
  PlugLock mLock;  // guards everything below

 private:
  char mEffectName[128] = {};
  char mProductName[128] = {};
  char mMfrName[128] = {};
  std::int32_t mUniqueID;
  std::int32_t mMfrID;
  std::int32_t mVersion;  // 0xVVVVRRMM
  std::int32_t mAPI;

 protected:
  std::int32_t mHost = -1;         // a code of Hosts.h; -1 not asked yet
  std::uint32_t mHostVersion = 0;  // 0xVVVVRRMM
  bool mStateChunks;               // saves opaque chunks
  bool mIsInst;
  std::int32_t mCurrentPresetIdx = 0;
  double mSampleRate = 44100.0;        // Hz
  std::int32_t mBlockSize = 0;         // largest block announced, samples
  std::int32_t mLatency;               // reported, samples
  HeapString mPreviousPath;            // directory of the last file dialog
  std::unique_ptr<NChanDelay> mDelay;  // for a by-pass path; none here makes one

 private:
  IGraphics* mGraphics = nullptr;  // owned
  OwnedPointerList<IParam> mParams;

 protected:
  OwnedPointerList<IPreset> mPresets;

 private:
  std::vector<double*> mInData;  // handed to ProcessDoubleReplacing
  std::vector<double*> mOutData;
  OwnedPointerList<InChannel> mInChannels;
  OwnedPointerList<OutChannel> mOutChannels;
  OwnedPointerList<HeapString> mInputBusLabels;
  OwnedPointerList<HeapString> mOutputBusLabels;
};
