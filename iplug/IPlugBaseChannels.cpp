// The channel tables: legal counts, connections, scratch buffers and labels.
#include <algorithm>
#include <cassert>
#include <cstdio>
#include <cstring>

#include "iplug/IPlugBase.h"
#include "iplug/Trace.h"

namespace {

double* Scratch(const HeapBuffer& buffer) { return static_cast<double*>(buffer.Get()); }

void Silence(const HeapBuffer& buffer) {
  if (buffer.Get()) std::memset(buffer.Get(), 0, static_cast<std::size_t>(buffer.GetSize()));
}

// The entry of the pointer tables that a channel owns.
double** HostPointer(const InChannel& channel) { return channel.mSrc; }
double** HostPointer(const OutChannel& channel) { return channel.mDest; }

template <typename Channel>
void Connect(const PointerList<Channel>& channels, int idx, int n, bool connected) {
  const int end = static_cast<int>(std::min<long>(long{idx} + n, channels.GetSize()));
  for (int i = std::max(idx, 0); i < end; ++i) {
    Channel* channel = channels.Get(i);
    channel->mConnected = connected;
    if (connected) continue;
    // The plug-in reads silence from here on, not what the last block left.
    Silence(channel->mScratchBuf);
    *HostPointer(*channel) = Scratch(channel->mScratchBuf);
  }
}

template <typename Channel>
void ResizeScratch(const PointerList<Channel>& channels, int blockSize) {
  for (Channel* channel : channels) {
    channel->mScratchBuf.Resize(blockSize * static_cast<int>(sizeof(double)));
    Silence(channel->mScratchBuf);
    // Whatever the table points at may be the old buffer; the next attachment corrects the rest.
    *HostPointer(*channel) = Scratch(channel->mScratchBuf);
  }
}

template <typename Channel>
bool IsConnected(const PointerList<Channel>& channels, int idx) {
  const Channel* channel = channels.Get(idx);
  return channel && channel->mConnected;
}

template <typename Channel>
void SetLabel(const PointerList<Channel>& channels, int idx, const char* label) {
  if (Channel* channel = channels.Get(idx)) channel->mLabel.Set(label);
}

template <typename Channel>
const char* GetLabel(const PointerList<Channel>& channels, int idx) {
  const Channel* channel = channels.Get(idx);
  return channel ? channel->mLabel.Get() : "";
}

void SetBusLabel(PointerList<HeapString>& labels, int idx, const char* label) {
  if (HeapString* present = labels.Get(idx)) {
    present->Set(label);
  } else {
    labels.Insert(std::min(idx, labels.GetSize()), new HeapString(label));
  }
}

const char* BusLabel(const PointerList<HeapString>& labels, int idx) {
  const HeapString* label = labels.Get(idx);
  return label ? label->Get() : "";
}

}  // namespace

void IPlugBase::ParseChannelIO(const char* channelIOStr, int* maxIn, int* maxOut) {
  while (channelIOStr) {
    auto pair = std::make_unique<ChannelIO>();
    std::sscanf(channelIOStr, "%d-%d", &pair->mIn, &pair->mOut);
    *maxIn = std::max(*maxIn, pair->mIn);
    *maxOut = std::max(*maxOut, pair->mOut);
    mChannelIO.AddOwned(std::move(pair));
    channelIOStr = std::strchr(channelIOStr, ' ');
    if (channelIOStr) ++channelIOStr;
  }
}

void IPlugBase::MakeChannels(int nIn, int nOut) {
  mInData.assign(static_cast<std::size_t>(nIn), nullptr);
  mOutData.assign(static_cast<std::size_t>(nOut), nullptr);
  for (double*& entry : mInData) mInChannels.AddOwned(std::make_unique<InChannel>())->mSrc = &entry;
  for (double*& entry : mOutData)
    mOutChannels.AddOwned(std::make_unique<OutChannel>())->mDest = &entry;
}

bool IPlugBase::LegalIO(int nIn, int nOut) const {
  const bool legal = std::any_of(mChannelIO.begin(), mChannelIO.end(), [=](const ChannelIO* io) {
    return (nIn < 0 || io->mIn == nIn) && (nOut < 0 || io->mOut == nOut);
  });
  Trace("LegalIO", __LINE__, "%d:%d:%s", nIn, nOut, legal ? "legal" : "illegal");
  return legal;
}

bool IPlugBase::IsInChannelConnected(int idx) const { return IsConnected(mInChannels, idx); }
bool IPlugBase::IsOutChannelConnected(int idx) const { return IsConnected(mOutChannels, idx); }

void IPlugBase::SetInputChannelConnections(int idx, int n, bool connected) {
  Connect(mInChannels, idx, n, connected);
}

void IPlugBase::SetOutputChannelConnections(int idx, int n, bool connected) {
  Connect(mOutChannels, idx, n, connected);
}

void IPlugBase::SetInputLabel(int idx, const char* label) { SetLabel(mInChannels, idx, label); }
void IPlugBase::SetOutputLabel(int idx, const char* label) { SetLabel(mOutChannels, idx, label); }

const char* IPlugBase::GetInputLabel(int idx) const { return GetLabel(mInChannels, idx); }
const char* IPlugBase::GetOutputLabel(int idx) const { return GetLabel(mOutChannels, idx); }

void IPlugBase::SetInputBusLabel(int idx, const char* label) {
  // kept: only two input buses have labels, the main input and the side chain. Hosts would show a
  // third label as a bus that is not there. Outputs have no limit.
  if (idx == 0 || idx == 1) SetBusLabel(mInputBusLabels, idx, label);
}

void IPlugBase::SetOutputBusLabel(int idx, const char* label) {
  if (idx >= 0) SetBusLabel(mOutputBusLabels, idx, label);
}

const char* IPlugBase::GetInputBusLabel(int idx) const { return BusLabel(mInputBusLabels, idx); }
const char* IPlugBase::GetOutputBusLabel(int idx) const { return BusLabel(mOutputBusLabels, idx); }

void IPlugBase::SetBlockSize(int blockSize) {
  assert(blockSize >= 0);
  if (blockSize == mBlockSize) return;
  ResizeScratch(mInChannels, blockSize);
  ResizeScratch(mOutChannels, blockSize);
  mBlockSize = blockSize;
}

void IPlugBase::ZeroScratchBuffers() {
  for (const InChannel* channel : mInChannels) Silence(channel->mScratchBuf);
  for (const OutChannel* channel : mOutChannels) Silence(channel->mScratchBuf);
}
