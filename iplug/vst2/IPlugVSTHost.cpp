// What the adapter asks of the host.
#include <algorithm>
#include <cstring>

#include "iplug/Numbers.h"
#include "iplug/vst2/Hosts.h"
#include "iplug/vst2/IPlugVST.h"

namespace {

constexpr int kTimeMask =
    kVstPpqPosValid | kVstTempoValid | kVstBarsValid | kVstCyclePosValid | kVstTimeSigValid;

// The host's decimal version as 0xVVVVRRMM.
std::uint32_t PackVersion(VstIntPtr decimal) {
  const auto d = static_cast<std::uint32_t>(std::max(0, SaturateToInt(std::int64_t{decimal})));
  return (d / 10000 & 0xFFFF) << 16 | d % 10000 / 100 << 8 | d % 100;
}

// An event list of one.
VstEvents ListOf(VstEvent* event) {
  VstEvents events{};
  events.numEvents = 1;
  events.events[0] = event;
  return events;
}

}  // namespace

VstIntPtr IPlugVST::CallHost(int opcode, int index, VstIntPtr value, void* ptr, float opt) {
  return mHostCallback ? mHostCallback(&mAEffect, opcode, index, value, ptr, opt) : 0;
}

void IPlugVST::BeginInformHostOfParamChange(int idx) { CallHost(audioMasterBeginEdit, idx); }

void IPlugVST::InformHostOfParamChange(int idx, double normalizedValue) {
  CallHost(audioMasterAutomate, idx, 0, nullptr, static_cast<float>(normalizedValue));
}

void IPlugVST::EndInformHostOfParamChange(int idx) { CallHost(audioMasterEndEdit, idx); }

void IPlugVST::InformHostOfProgramChange() { CallHost(audioMasterUpdateDisplay); }

bool IPlugVST::IsRenderingOffline() {
  return CallHost(audioMasterGetCurrentProcessLevel) == kVstProcessLevelOffline;
}

const VstTimeInfo* IPlugVST::AskTime(int mask) {
  return reinterpret_cast<const VstTimeInfo*>(CallHost(audioMasterGetTime, 0, mask));
}

int IPlugVST::GetSamplePos() {
  const VstTimeInfo* time = AskTime(0);
  return time && time->samplePos >= 0.0 ? SaturateToInt(time->samplePos + 0.5) : 0;
}

double IPlugVST::GetTempo() {
  const VstTimeInfo* time = AskTime(kVstTempoValid);
  return time && (time->flags & kVstTempoValid) && time->tempo >= 0.0 ? time->tempo : 0.0;
}

void IPlugVST::GetTimeSig(int* numerator, int* denominator) {
  *numerator = *denominator = 0;
  const VstTimeInfo* time = AskTime(kVstTimeSigValid);
  if (!time || !(time->flags & kVstTimeSigValid)) return;
  if (time->timeSigNumerator < 0 || time->timeSigDenominator < 0) return;
  *numerator = time->timeSigNumerator;
  *denominator = time->timeSigDenominator;
}

void IPlugVST::GetTime(ITimeInfo* info) {
  const VstTimeInfo* time = AskTime(kTimeMask);
  if (!time || !(time->flags & kTimeMask)) return;
  const auto valid = [time](int flag) { return (time->flags & flag) != 0; };
  info->mSamplePos = time->samplePos;
  if (valid(kVstPpqPosValid) && time->ppqPos >= 0.0) info->mPPQPos = time->ppqPos;
  if (valid(kVstTempoValid) && time->tempo > 0.0) info->mTempo = time->tempo;
  if (valid(kVstBarsValid) && time->barStartPos >= 0.0) info->mLastBar = time->barStartPos;
  if (valid(kVstCyclePosValid) && time->cycleStartPos >= 0.0 && time->cycleEndPos >= 0.0) {
    info->mCycleStart = time->cycleStartPos;
    info->mCycleEnd = time->cycleEndPos;
  }
  if (valid(kVstTimeSigValid) && time->timeSigNumerator > 0 && time->timeSigDenominator > 0) {
    info->mNumerator = time->timeSigNumerator;
    info->mDenominator = time->timeSigDenominator;
  }
  info->mTransportIsRunning = valid(kVstTransportPlaying);
  info->mTransportLoopEnabled = valid(kVstTransportCycleActive);
}

int IPlugVST::GetHost() {
  if (IPlugBase::GetHost() != kHostUninit) return IPlugBase::GetHost();
  char product[256] = {};
  CallHost(audioMasterGetProductString, 0, 0, product);
  product[sizeof product - 1] = 0;
  SetHost(product, *product ? PackVersion(CallHost(audioMasterGetVendorVersion)) : 0);
  return IPlugBase::GetHost();
}

bool IPlugVST::SendMidiMsg(IMidiMsg* msg) {
  VstMidiEvent event{};
  event.type = kVstMidiType;
  event.byteSize = static_cast<std::int32_t>(sizeof event);
  event.deltaFrames = msg->mOffset;
  event.midiData[0] = static_cast<char>(msg->mStatus);
  event.midiData[1] = static_cast<char>(msg->mData1);
  event.midiData[2] = static_cast<char>(msg->mData2);
  VstEvents events = ListOf(reinterpret_cast<VstEvent*>(&event));
  return CallHost(audioMasterProcessEvents, 0, 0, &events) == 1;
}

bool IPlugVST::SendSysEx(ISysEx* msg) {
  VstMidiSysexEvent event{};
  event.type = kVstSysExType;
  event.byteSize = static_cast<std::int32_t>(sizeof event);
  event.deltaFrames = msg->mOffset;
  event.dumpBytes = msg->mSize;
  // The interface has no const; hosts only read.
  event.sysexDump = reinterpret_cast<char*>(const_cast<std::uint8_t*>(msg->mData));
  VstEvents events = ListOf(reinterpret_cast<VstEvent*>(&event));
  return CallHost(audioMasterProcessEvents, 0, 0, &events) == 1;
}
