// The binary interface between a VST2 host and a plug-in on 64-bit machines: the records, opcodes
// and flags that this plug-in and its command-line host exchange, written from the layout in
// memory.
#pragma once

#include <cstddef>
#include <cstdint>

using VstIntPtr = std::intptr_t;  // a number or a pointer, by opcode

struct AEffect;

// Called by the plug-in; the host answers by opcode (audioMaster...). Any thread.
using audioMasterCallback = VstIntPtr (*)(AEffect* effect, std::int32_t opcode, std::int32_t index,
                                          VstIntPtr value, void* ptr, float opt);

using AEffectDispatcherProc = VstIntPtr (*)(AEffect* effect, std::int32_t opcode,
                                            std::int32_t index, VstIntPtr value, void* ptr,
                                            float opt);
using AEffectProcessProc = void (*)(AEffect* effect, float** inputs, float** outputs,
                                    std::int32_t sampleFrames);
using AEffectProcessDoubleProc = void (*)(AEffect* effect, double** inputs, double** outputs,
                                          std::int32_t sampleFrames);
using AEffectSetParameterProc = void (*)(AEffect* effect, std::int32_t index, float parameter);
using AEffectGetParameterProc = float (*)(AEffect* effect, std::int32_t index);

inline constexpr std::int32_t kEffectMagic = 0x56737450;  // "PtsV" in memory, little-endian

// What the host holds of a plug-in.
struct AEffect {
  std::int32_t magic;  // kEffectMagic
  AEffectDispatcherProc dispatcher;
  AEffectProcessProc process;  // adds to the outputs
  AEffectSetParameterProc setParameter;
  AEffectGetParameterProc getParameter;
  std::int32_t numPrograms;
  std::int32_t numParams;
  std::int32_t numInputs;
  std::int32_t numOutputs;
  std::int32_t flags;         // effFlags...
  VstIntPtr resvd1;           // the host's
  VstIntPtr resvd2;           // the host's
  std::int32_t initialDelay;  // samples
  std::int32_t realQualities;
  std::int32_t offQualities;
  float ioRatio;
  void* object;  // the plug-in's
  void* user;
  std::int32_t uniqueID;
  std::int32_t version;
  AEffectProcessProc processReplacing;
  AEffectProcessDoubleProc processDoubleReplacing;
  char future[56];
};
static_assert(sizeof(void*) == 8, "the layout below is that of 64-bit machines");
static_assert(sizeof(AEffect) == 192);
static_assert(offsetof(AEffect, magic) == 0 && offsetof(AEffect, dispatcher) == 8);
static_assert(offsetof(AEffect, process) == 16 && offsetof(AEffect, setParameter) == 24);
static_assert(offsetof(AEffect, getParameter) == 32 && offsetof(AEffect, numPrograms) == 40);
static_assert(offsetof(AEffect, numParams) == 44 && offsetof(AEffect, numInputs) == 48);
static_assert(offsetof(AEffect, numOutputs) == 52 && offsetof(AEffect, flags) == 56);
static_assert(offsetof(AEffect, initialDelay) == 80 && offsetof(AEffect, ioRatio) == 92);
static_assert(offsetof(AEffect, object) == 96 && offsetof(AEffect, user) == 104);
static_assert(offsetof(AEffect, uniqueID) == 112 && offsetof(AEffect, version) == 116);
static_assert(offsetof(AEffect, processReplacing) == 120);
static_assert(offsetof(AEffect, processDoubleReplacing) == 128);

enum VstAEffectFlags : std::int32_t {
  effFlagsHasEditor = 1 << 0,
  effFlagsCanMono = 1 << 3,
  effFlagsCanReplacing = 1 << 4,
  effFlagsProgramChunks = 1 << 5,
  effFlagsIsSynth = 1 << 8,
  effFlagsNoSoundInStop = 1 << 9,
  effFlagsCanDoubleReplacing = 1 << 12
};

// Host to plug-in, through AEffect::dispatcher.
enum AEffectOpcodes : std::int32_t {
  effOpen = 0,
  effClose = 1,
  effSetProgram = 2,
  effGetProgram = 3,
  effSetProgramName = 4,
  effGetProgramName = 5,
  effGetParamLabel = 6,
  effGetParamDisplay = 7,
  effGetParamName = 8,
  effGetVu = 9,
  effSetSampleRate = 10,
  effSetBlockSize = 11,
  effMainsChanged = 12,
  effEditGetRect = 13,
  effEditOpen = 14,
  effEditClose = 15,
  effEditDraw = 16,
  effEditMouse = 17,
  effEditKey = 18,
  effEditIdle = 19,
  effEditTop = 20,
  effEditSleep = 21,
  effIdentify = 22,
  effGetChunk = 23,
  effSetChunk = 24,
  effProcessEvents = 25,
  effCanBeAutomated = 26,
  effString2Parameter = 27,
  effGetNumProgramCategories = 28,
  effGetProgramNameIndexed = 29,
  effCopyProgram = 30,
  effConnectInput = 31,
  effConnectOutput = 32,
  effGetInputProperties = 33,
  effGetOutputProperties = 34,
  effGetPlugCategory = 35,
  effGetCurrentPosition = 36,
  effGetDestinationBuffer = 37,
  effOfflineNotify = 38,
  effOfflinePrepare = 39,
  effOfflineRun = 40,
  effProcessVarIo = 41,
  effSetSpeakerArrangement = 42,
  effSetBlockSizeAndSampleRate = 43,
  effSetBypass = 44,
  effGetEffectName = 45,
  effGetErrorText = 46,
  effGetVendorString = 47,
  effGetProductString = 48,
  effGetVendorVersion = 49,
  effVendorSpecific = 50,  // `index` is one of EVendorCode
  effCanDo = 51,
  effGetTailSize = 52,
  effIdle = 53,
  effGetIcon = 54,
  effSetViewPosition = 55,
  effGetParameterProperties = 56,
  effKeysRequired = 57,
  effGetVstVersion = 58,
  effEditKeyDown = 59,
  effEditKeyUp = 60,
  effSetEditKnobMode = 61,
  effGetMidiProgramName = 62,
  effGetCurrentMidiProgram = 63,
  effGetMidiProgramCategory = 64,
  effHasMidiProgramsChanged = 65,
  effGetMidiKeyName = 66,
  effBeginSetProgram = 67,
  effEndSetProgram = 68,
  effGetSpeakerArrangement = 69
};

// Extensions of some hosts under effVendorSpecific; `value` is the parameter's index. The answer to
// a code that is known is kVendorAnswer.
enum EVendorCode : std::int32_t {
  kVendorTextOfValue = 7,  // ptr: char[kVstMaxParamStrLen] for the text of the normalised `opt`
  kVendorIsStepped = 8     // whether the parameter moves in steps
};
inline constexpr VstIntPtr kVendorAnswer = 0xBEEF;

// Plug-in to host, through audioMasterCallback.
enum AudioMasterOpcodes : std::int32_t {
  audioMasterAutomate = 0,
  audioMasterVersion = 1,
  audioMasterCurrentId = 2,
  audioMasterIdle = 3,
  audioMasterPinConnected = 4,
  audioMasterWantMidi = 6,
  audioMasterGetTime = 7,
  audioMasterProcessEvents = 8,
  audioMasterIOChanged = 13,
  audioMasterNeedIdle = 14,
  audioMasterSizeWindow = 15,
  audioMasterGetSampleRate = 16,
  audioMasterGetBlockSize = 17,
  audioMasterGetInputLatency = 18,
  audioMasterGetOutputLatency = 19,
  audioMasterGetCurrentProcessLevel = 23,
  audioMasterGetAutomationState = 24,
  audioMasterGetVendorString = 32,
  audioMasterGetProductString = 33,
  audioMasterGetVendorVersion = 34,
  audioMasterVendorSpecific = 35,
  audioMasterCanDo = 37,
  audioMasterGetLanguage = 38,
  audioMasterGetDirectory = 41,
  audioMasterUpdateDisplay = 42,
  audioMasterBeginEdit = 43,
  audioMasterEndEdit = 44
};

// Sizes of text buffers, end mark included.
enum VstStringConstants : std::int32_t {
  kVstMaxProgNameLen = 24,
  kVstMaxParamStrLen = 8,
  kVstMaxEffectNameLen = 32,
  kVstMaxVendorStrLen = 64,
  kVstMaxProductStrLen = 64,
  kVstMaxNameLen = 64,
  kVstMaxLabelLen = 64,
  kVstMaxShortLabelLen = 8
};

enum VstPlugCategory : std::int32_t {
  kPlugCategUnknown = 0,
  kPlugCategEffect = 1,
  kPlugCategSynth = 2
};

enum VstProcessLevels : std::int32_t {
  kVstProcessLevelUnknown = 0,
  kVstProcessLevelUser = 1,
  kVstProcessLevelRealtime = 2,
  kVstProcessLevelPrefetch = 3,
  kVstProcessLevelOffline = 4
};

// The editor's size, in pixels.
struct ERect {
  std::int16_t top;
  std::int16_t left;
  std::int16_t bottom;
  std::int16_t right;
};
static_assert(sizeof(ERect) == 8);

enum VstTimeInfoFlags : std::int32_t {
  kVstTransportChanged = 1 << 0,
  kVstTransportPlaying = 1 << 1,
  kVstTransportCycleActive = 1 << 2,
  kVstTransportRecording = 1 << 3,
  kVstNanosValid = 1 << 8,
  kVstPpqPosValid = 1 << 9,
  kVstTempoValid = 1 << 10,
  kVstBarsValid = 1 << 11,
  kVstCyclePosValid = 1 << 12,
  kVstTimeSigValid = 1 << 13,
  kVstSmpteValid = 1 << 14,
  kVstClockValid = 1 << 15
};

// The host's answer to audioMasterGetTime; a field holds only under its flag.
struct VstTimeInfo {
  double samplePos;
  double sampleRate;  // Hz
  double nanoSeconds;
  double ppqPos;       // quarter notes
  double tempo;        // beats per minute
  double barStartPos;  // quarter notes
  double cycleStartPos;
  double cycleEndPos;
  std::int32_t timeSigNumerator;
  std::int32_t timeSigDenominator;
  std::int32_t smpteOffset;
  std::int32_t smpteFrameRate;
  std::int32_t samplesToNextClock;
  std::int32_t flags;  // kVst...Valid, kVstTransport...
};
static_assert(sizeof(VstTimeInfo) == 88 && offsetof(VstTimeInfo, timeSigNumerator) == 64);
static_assert(offsetof(VstTimeInfo, tempo) == 32 && offsetof(VstTimeInfo, flags) == 84);

enum VstEventTypes : std::int32_t { kVstMidiType = 1, kVstSysExType = 6 };

// Common head of every event; `type` says which record it is.
struct VstEvent {
  std::int32_t type;
  std::int32_t byteSize;
  std::int32_t deltaFrames;
  std::int32_t flags;
  char data[16];
};
static_assert(sizeof(VstEvent) == 32);

struct VstMidiEvent {
  std::int32_t type;      // kVstMidiType
  std::int32_t byteSize;  // 32
  std::int32_t deltaFrames;
  std::int32_t flags;
  std::int32_t noteLength;
  std::int32_t noteOffset;
  char midiData[4];  // three bytes and a zero
  char detune;
  char noteOffVelocity;
  char reserved1;
  char reserved2;
};
static_assert(sizeof(VstMidiEvent) == 32 && offsetof(VstMidiEvent, midiData) == 24);

struct VstMidiSysexEvent {
  std::int32_t type;      // kVstSysExType
  std::int32_t byteSize;  // 48
  std::int32_t deltaFrames;
  std::int32_t flags;
  std::int32_t dumpBytes;
  VstIntPtr resvd1;
  char* sysexDump;
  VstIntPtr resvd2;
};
static_assert(sizeof(VstMidiSysexEvent) == 48 && offsetof(VstMidiSysexEvent, sysexDump) == 32);

// `events` really has `numEvents` entries.
struct VstEvents {
  std::int32_t numEvents;
  VstIntPtr reserved;
  VstEvent* events[2];
};
static_assert(sizeof(VstEvents) == 32 && offsetof(VstEvents, events) == 16);

struct VstSpeakerProperties {
  float azimuth;
  float elevation;
  float radius;
  float reserved;
  char name[kVstMaxNameLen];
  std::int32_t type;
  char future[28];
};
static_assert(sizeof(VstSpeakerProperties) == 112);

struct VstSpeakerArrangement {
  std::int32_t type;
  std::int32_t numChannels;
  VstSpeakerProperties speakers[8];
};
static_assert(sizeof(VstSpeakerArrangement) == 904);

enum VstPinPropertiesFlags : std::int32_t { kVstPinIsActive = 1 << 0, kVstPinIsStereo = 1 << 1 };

struct VstPinProperties {
  char label[kVstMaxLabelLen];
  std::int32_t flags;
  std::int32_t arrangementType;
  char shortLabel[kVstMaxShortLabelLen];
  char future[48];
};
static_assert(sizeof(VstPinProperties) == 128 && offsetof(VstPinProperties, flags) == 64);

struct MidiKeyName {
  std::int32_t thisProgramIndex;
  std::int32_t thisKeyNumber;  // 0 to 127
  char keyName[kVstMaxNameLen];
  std::int32_t reserved;
  std::int32_t flags;
};
static_assert(sizeof(MidiKeyName) == 80);
