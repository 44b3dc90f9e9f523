// Construction, destruction and identity of the plug-in base.
#include "iplug/IPlugBase.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "iplug/Numbers.h"
#include "iplug/Trace.h"
#include "iplug/vst2/Hosts.h"

namespace {

struct TimeStamp {
  char mText[64] = {};
};

// Local time with its distance from UTC.
TimeStamp Now() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  TimeStamp stamp;
  const std::size_t length =
      std::strftime(stamp.mText, sizeof stamp.mText, "%Y%m%d %H:%M ", &local);
  const long minutes = std::labs(local.tm_gmtoff) / 60;
  std::snprintf(stamp.mText + length, sizeof stamp.mText - length, "%c%02ld%02ld",
                local.tm_gmtoff < 0 ? '-' : '+', minutes / 60, minutes % 60);
  return stamp;
}

struct Version {
  explicit Version(std::uint32_t packed)
      : mMajor(static_cast<int>(packed >> 16)),
        mMinor(static_cast<int>(packed >> 8 & 0xFF)),
        mPatch(static_cast<int>(packed & 0xFF)) {}

  int Decimal() const { return mMajor * 10000 + mMinor * 100 + mPatch; }
  void Text(char* rVersion) const {
    std::snprintf(rVersion, 32, "v%d.%d.%d", mMajor, mMinor, mPatch);
  }

  int mMajor;
  int mMinor;
  int mPatch;
};

}  // namespace

IPlugBase::IPlugBase(int nParams, const char* channelIOStr, int nPresets, const char* effectName,
                     const char* productName, const char* mfrName, int version, int uniqueID,
                     int mfrID, int latency, bool /*doesMidi*/, bool stateChunks, bool isInst,
                     int api)
    : mUniqueID(uniqueID),
      mMfrID(mfrID),
      mVersion(version),
      mAPI(api),
      mStateChunks(stateChunks),
      mIsInst(isInst),
      mLatency(latency) {
  Trace("IPlugBase", __LINE__, "%s:%s", effectName, Now().mText);
  for (int i = 0; i < nParams; ++i) mParams.AddOwned(std::make_unique<IParam>());
  for (int i = 0; i < nPresets; ++i) mPresets.AddOwned(std::make_unique<IPreset>("empty"));
  CopyText(mEffectName, effectName);
  CopyText(mProductName, productName);
  CopyText(mMfrName, mfrName);
  int nIn = 0;
  int nOut = 0;
  ParseChannelIO(channelIOStr, &nIn, &nOut);
  MakeChannels(nIn, nOut);
}

IPlugBase::~IPlugBase() {
  DeleteEditor();  // before the parameters that its controls point at
  mParams.Empty(true);
  mPresets.Empty(true);
  mInChannels.Empty(true);
  mOutChannels.Empty(true);
  mInputBusLabels.Empty(true);
  mOutputBusLabels.Empty(true);
}

void IPlugBase::Reset() { const PlugLock::Guard lock(mLock); }

void IPlugBase::OnParamChange(int) { const PlugLock::Guard lock(mLock); }

void IPlugBase::OnActivate(bool) { const PlugLock::Guard lock(mLock); }

bool IPlugBase::MidiNoteName(int, char* rName) {
  *rName = 0;
  return false;
}

int IPlugBase::GetEffectVersion(bool decimal) const {
  return decimal ? Version(static_cast<std::uint32_t>(mVersion)).Decimal() : mVersion;
}

void IPlugBase::GetEffectVersionStr(char* rVersion) const {
  Version(static_cast<std::uint32_t>(mVersion)).Text(rVersion);
}

int IPlugBase::GetHostVersion(bool decimal) {
  GetHost();
  return decimal ? Version(mHostVersion).Decimal() : static_cast<int>(mHostVersion);
}

void IPlugBase::GetHostVersionStr(char* rVersion) {
  GetHost();
  Version(mHostVersion).Text(rVersion);
}

const char* IPlugBase::GetAPIStr() {
  static constexpr const char* kNames[] = {"VST2", "VST3", "AU", "RTAS", "AAX", "Standalone"};
  const int api = GetAPI();
  return api >= 0 && api < static_cast<int>(std::size(kNames)) ? kNames[api] : "";
}

int IPlugBase::GetHost() { return std::atomic_ref(mHost).load(std::memory_order_acquire); }

void IPlugBase::SetHost(const char* productString, std::uint32_t version) {
  const int host = LookUpHost(productString);
  mHostVersion = version;
  std::atomic_ref(mHost).store(host, std::memory_order_release);
  char text[32];
  Version(version).Text(text);
  Trace("SetHost", __LINE__, "host_%sknown:%s:%s", host == kHostUnknown ? "un" : "", productString,
        text);
}

double IPlugBase::GetSamplesPerBeat() {
  const double tempo = GetTempo();
  return tempo > 0.0 ? mSampleRate * 60.0 / tempo : 0.0;
}

void IPlugBase::SetLatency(int samples) {
  mLatency = samples;
  if (mDelay) mDelay->SetDelayTime(samples);
}
