// Sound through an effect in whole blocks, with its settings and its delay settled beforehand.
#include "tools/host/BlockRunner.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr double kProbeSeconds = 0.5;
constexpr double kOnsetLevel = 0.01;  // of the loudest sample
}  // namespace

BlockRunner::BlockRunner(PluginHost& host, int channels, double rate, int block)
    : mHost(host), mChannels(static_cast<std::size_t>(channels)), mRate(rate), mBlock(block) {
  mHost.Connect(channels);
  mBuffers.resize(static_cast<std::size_t>(host.NumInputs() + host.NumOutputs()));
  mPointers.resize(mBuffers.size());
  Announce(block);
}

void BlockRunner::Announce(int block) {
  mHost.Configure(mRate, block);
  for (std::size_t c = 0; c < mBuffers.size(); ++c) {
    mBuffers[c].assign(static_cast<std::size_t>(block), 0.0);
    mPointers[c] = mBuffers[c].data();
  }
}

// The frame at which the answer to an impulse sets in, -1 if nothing comes.
std::int64_t BlockRunner::ImpulseOnset(int block) {
  Announce(block);
  std::vector<double> heard;
  const auto length = static_cast<std::size_t>(kProbeSeconds * mRate) + 4 * mBuffers[0].size();
  std::vector<double> in(mBuffers[0].size() * mChannels, 0.0);
  std::vector<double> out(in.size());
  std::fill_n(in.begin(), mChannels, 1.0);
  while (heard.size() < length) {
    Process(in.data(), block, out.data());
    std::fill_n(in.begin(), mChannels, 0.0);
    for (std::size_t i = 0; i < out.size(); i += mChannels) heard.push_back(std::abs(out[i]));
  }
  const double peak = *std::max_element(heard.begin(), heard.end());
  if (!(peak > 0)) return -1;
  const auto audible = [=](double x) { return x >= peak * kOnsetLevel; };
  return std::find_if(heard.begin(), heard.end(), audible) - heard.begin();
}

int BlockRunner::MeasureDelay() {
  const std::int64_t doubled = ImpulseOnset(2 * mBlock);
  const std::int64_t once = ImpulseOnset(mBlock);
  const std::int64_t hidden = doubled - once;
  const bool wholeBlocks = once >= 0 && doubled >= 0 && hidden > 0 && hidden % mBlock == 0;
  return mHost.ReportedDelay() + (wholeBlocks ? static_cast<int>(hidden) : 0);
}

void BlockRunner::Settle() {
  std::vector<double> silence(mBuffers[0].size() * mChannels, 0.0);
  Process(silence.data(), mBlock, silence.data());
  Announce(2 * mBlock);
  Announce(mBlock);
}

void BlockRunner::Process(const double* in, int frames, double* out) {
  const auto numInputs = static_cast<std::size_t>(mHost.NumInputs());
  const std::size_t block = mBuffers[0].size();
  const auto given = static_cast<std::size_t>(frames);
  for (std::size_t c = 0; c < mChannels; ++c) {
    for (std::size_t i = 0; i < given; ++i) mBuffers[c][i] = in[i * mChannels + c];
    std::fill(mBuffers[c].begin() + frames, mBuffers[c].end(), 0.0);
  }
  mHost.Process(mPointers.data(), mPointers.data() + numInputs, static_cast<int>(block));
  for (std::size_t c = 0; c < mChannels; ++c)
    for (std::size_t i = 0; i < block; ++i) out[i * mChannels + c] = mBuffers[numInputs + c][i];
}
