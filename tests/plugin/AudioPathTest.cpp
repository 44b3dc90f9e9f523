// The built module beside a plain model of its audio path: one block after the other, every sample
// ever heard kept, each stage as its formula says. Both give the same bits.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>

#include "convolution/ConvolutionPartitionedNonuniform.h"
#include "dsp/FIRFunctions.h"
#include "dsp/FIROrtho.h"
#include "plugin/FlushToZero.h"
#include "plugin/ParamTable.h"
#include "plugin/ResponseShaping.h"
#include "tests/plugin/HostedPlugin.h"
#include "tests/support/Random.h"

namespace {

constexpr int kRate = 8000;
using Samples = AlignedVector<float>;

// The settings that act in the audio path, by the ids of their parameters.
struct PathSettings {
  float value[kStereoLeftRightPhase + 1] = {};
  float operator[](int id) const { return value[id]; }
};

Samples SmallRoomsResponse() {
  const ScopedFlushToZero flushToZero;
  AlignedVector<DimProperties<float>> room = {{5.0f, 0.0f, dB_to_mag(-6.0f) * 100.0f}};
  FIROrtho<float> synthesiser(room, 60.0f, kRate, 1.0f, 0.0f, 0.0f, -12.0f, -120.0f);
  Samples h = synthesiser.FIR;
  NormalizeEnergy(h);
  return h;
}

class PlainPath {
 public:
  PlainPath(int B, const Samples& response) : mB(B) {
    for (Channel& channel : mChannels) {
      channel.convolver = std::make_unique<ConvolutionPartitionedNonuniform<float>>(B, response, 4);
      channel.output.assign(static_cast<size_t>(B), 0.0f);
    }
    float angle = 0.0f;
    for (int i = 0; i <= B; ++i, angle += 1.5707964f / static_cast<float>(B)) {
      mFade.push_back(static_cast<float>(std::cos(static_cast<double>(angle))));
    }
  }

  // All signal becomes silence; the next block begins at the settings.
  void Reset(const PathSettings& settings) {
    for (Channel& channel : mChannels) {
      for (Samples* x : {&channel.input, &channel.wet, &channel.output}) x->assign(x->size(), 0.0f);
      channel.convolver->flush();
      channel.pole = 0.0f;
      // What was told to the placement last stays, so that a change still fades.
    }
    mLast = settings;
  }

  // At most a block of frames.
  void Process(const PathSettings& settings, const Stereo& in, Stereo& out, size_t at, size_t n) {
    for (size_t i = at; i < at + n; ++i) {
      mChannels[0].input.push_back(in.left[i]);
      mChannels[1].input.push_back(in.right[i]);
    }
    if (mChannels[0].input.size() >= mChannels[0].wet.size() + Size()) RunBlock(settings);
    for (size_t i = at; i < at + n; ++i, ++mRead) {
      out.left[i] = mChannels[0].output[mRead];
      out.right[i] = mChannels[1].output[mRead];
    }
  }

 private:
  struct Channel {
    std::unique_ptr<ConvolutionPartitionedNonuniform<float>> convolver;
    Samples input, wet, output;  // since the beginning; wet before the placement
    int delay = 0;               // samples
    float gain_dB = 0.0f;
    float pole = 0.0f;
  };
  // Values that ramp from one block to the next.
  struct Coefs {
    float low[2], mid, side, gain, mix;
  };

  size_t Size() const { return static_cast<size_t>(mB); }

  void RunBlock(const PathSettings& settings) {
    const float haas = settings[kStereoHaas], pan = settings[kPan];
    Samples y[2], dry[2];
    for (const size_t c : {size_t{0}, size_t{1}}) {
      Channel& channel = mChannels[c];
      const auto begin = channel.input.begin() + static_cast<std::ptrdiff_t>(channel.wet.size());
      dry[c].assign(begin, begin + mB);
      Samples wet(Size());
      channel.convolver->process(dry[c], wet);
      channel.wet.insert(channel.wet.end(), wet.begin(), wet.end());
      const float delay_ms = settings[kTimeDelay] + std::max(c == 0 ? haas : -haas, 0.0f);
      y[c] = Placed(channel, static_cast<int>(delay_ms), std::min(c == 0 ? -pan : pan, 0.0f));
    }
    const Coefs from = CoefsOf(mLast), to = CoefsOf(settings);
    for (size_t i = 0; i < Size(); ++i) {
      const float t = static_cast<float>(i) / static_cast<float>(mB);
      const auto ramp = [t](float a, float b) { return a + (b - a) * t; };
      for (const size_t c : {size_t{0}, size_t{1}}) {
        float& z = mChannels[c].pole;
        y[c][i] = z = z + ramp(from.low[c], to.low[c]) * (y[c][i] - z);
      }
      const float mid = ramp(from.mid, to.mid) * (y[0][i] + y[1][i]);
      const float side = ramp(from.side, to.side) * (y[1][i] - y[0][i]);
      const float widened[] = {mid - side, side + mid};
      for (const size_t c : {size_t{0}, size_t{1}}) {
        const float rise = static_cast<float>(i) * (to.gain - from.gain);
        const float wet = widened[c] * (from.gain + rise / static_cast<float>(mB));
        const auto mixed = [&](float m) { return dry[c][i] * (1.0f - m) + wet * m; };
        mChannels[c].output.push_back(from.mix == to.mix
                                          ? (wet - dry[c][i]) * to.mix + dry[c][i]
                                          : mixed(to.mix) * t + mixed(from.mix) * (1.0f - t));
      }
    }
    mLast = settings;
  }

  // The last block of the channel's wet signal, delayed and softened.
  Samples Placed(Channel& channel, int delay_ms, float gain_dB) {
    const int delay = static_cast<int>(std::floor(static_cast<float>(delay_ms * kRate) / 1000.0f));
    const auto end = static_cast<int>(channel.wet.size());
    const auto wet = [&](int i) { return i < 0 ? 0.0f : channel.wet[static_cast<size_t>(i)]; };
    const float from = dB_to_mag(channel.gain_dB), to = dB_to_mag(gain_dB);
    float gain = from;
    Samples y;
    for (int i = 0; i < mB; ++i, gain += (to - from) / static_cast<float>(mB)) {
      const int now = end - mB + i;
      const size_t k = static_cast<size_t>(i);
      y.push_back(delay == channel.delay ? wet(now - delay) * gain
                                         : (wet(now - channel.delay) * mFade[k] +
                                            wet(now - delay) * mFade[Size() - k]) *
                                               gain);
    }
    channel.delay = delay;
    channel.gain_dB = gain_dB;
    return y;
  }

  static Coefs CoefsOf(const PathSettings& settings) {
    const double x = std::fabs(static_cast<double>(settings[kStereoLeftRightPhase] * 0.5f));
    const double s = settings[kStereoMidSide];
    const auto k = static_cast<float>((1.0 - x) / (1.0 + x));
    const bool right = settings[kStereoLeftRightPhase] < 0.0f;
    return {{right ? 1.0f : k, right ? k : 1.0f},
            static_cast<float>((1.0 - s) / 2.0),
            static_cast<float>((1.0 + s) / 2.0),
            dB_to_mag(settings[kGain]),
            settings[kMix]};
  }

  int mB;
  Channel mChannels[2];
  Samples mFade;
  PathSettings mLast;
  size_t mRead = 0;
};

// A random value of a setting, now and then an end of its range, as a host's text.
std::string RandomText(Random& random, int id) {
  const ParamSpec& row = kParamTable[static_cast<size_t>(id)];
  const int where = random.integer(0, 5);
  if (where == 0) return std::to_string(row.min);
  if (where == 1) return std::to_string(row.max);
  if (where == 2) return std::to_string(row.defaultValue);
  const double value = row.min + random.unit() * (row.max - row.min);
  return std::to_string(row.kind == ParamKind::Int ? std::trunc(value) : value);
}

}  // namespace

TEST(AudioPath, GivesTheBitsOfAPlainModelWhateverTheSettingsFrameCountsAndResets) {
  constexpr int kPathIds[] = {kTimeDelay, kPan,           kStereoHaas,          kMix,
                              kGain,      kStereoMidSide, kStereoLeftRightPhase};
  const Samples response = SmallRoomsResponse();
  for (const int B : {1, 7, 64, 100}) {
    Random random(static_cast<unsigned>(B));
    HostedPlugin plugin(B, kRate);
    PathSettings settings;
    settings.value[kMix] = 1.0f;
    for (int d = 0; d < kNumDims; ++d) plugin.Set(DimParam(d, kDimEnabled), d == 0);
    plugin.Set(DimParam(0, kDimSize), 5);
    plugin.Set(DimParam(0, kDimDepth), 0);
    plugin.Set(DimParam(0, kDimRefl), -6);
    plugin.SettleByReset();
    PlainPath model(B, response);
    model.Reset(settings);

    for (int step = 0; step < 250; ++step) {
      for (const int id : kPathIds) {
        if (random.integer(0, 9) > 0) continue;
        std::string text = RandomText(random, id);
        plugin.Dispatch(effString2Parameter, id, 0, text.data());
        settings.value[id] = static_cast<float>(std::stod(text));
      }
      if (random.integer(0, 39) == 0) {
        plugin.Dispatch(effMainsChanged, 0, 0);
        model.Reset(settings);
      }
      const int n = random.integer(1, 2 * B + 3);
      const auto left = random.signal(static_cast<size_t>(n)), right = random.signal(left.size());
      const Stereo in{{left.begin(), left.end()}, {right.begin(), right.end()}};
      Stereo want = in;
      for (int at = 0; at < n; at += B) {
        model.Process(settings, in, want, static_cast<size_t>(at),
                      static_cast<size_t>(std::min(B, n - at)));
      }
      ASSERT_EQ(plugin.Process(in, n), want) << "blocks of " << B << ", step " << step;
    }
  }
}
