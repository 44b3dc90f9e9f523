#include <algorithm>
#include <cmath>

#include "checks/sweep/Invariants.h"

namespace {

using Channel = std::vector<double>;

double Gain(double dB) { return std::pow(10.0, dB / 20); }

// The response after the delay and the gain of one side.
Channel Placed(const AlignedVector<float>& response, double delay_ms, double dB, int rate,
               size_t count) {
  Channel wet(count);
  const auto delay = static_cast<size_t>(delay_ms * rate / 1000);
  for (size_t i = 0; i < response.size() && i + delay < count; ++i) {
    wet[i + delay] = Gain(dB) * double{response[i]};
  }
  return wet;
}

void LowPass(Channel& x, double coefficient) {
  double state = 0;
  for (double& sample : x) sample = state += coefficient * (sample - state);
}

double Difference(const Channel& a, const Channel& b) {
  double largest = 0;
  for (size_t i = 0; i < a.size(); ++i) {
    const double difference = std::abs(a[i] - b[i]);
    largest = difference <= largest ? largest : difference;  // takes NaN
  }
  return largest;
}

TolmaraProbe::Sound ExpectedSound(const Case& settings, const AlignedVector<float>& response,
                                  size_t count) {
  const auto value = [&settings](int id) { return settings.values.at(static_cast<size_t>(id)); };
  const double haas = value(kStereoHaas), pan = value(kPan);
  Channel left = Placed(response, value(kTimeDelay) + std::max(haas, 0.0), std::min(-pan, 0.0),
                        settings.rate, count);
  Channel right = Placed(response, value(kTimeDelay) + std::max(-haas, 0.0), std::min(pan, 0.0),
                         settings.rate, count);
  const double offset = value(kStereoLeftRightPhase) / 2;
  LowPass(offset < 0 ? right : left, (1 - std::abs(offset)) / (1 + std::abs(offset)));
  const double width = value(kStereoMidSide), mix = value(kMix), gain = Gain(value(kGain));
  for (size_t i = 0; i < count; ++i) {
    const double l = left[i], r = right[i], dry = i == 0 ? 1 - mix : 0;
    left[i] = (l - width * r) * gain * mix + dry;
    right[i] = (r - width * l) * gain * mix + dry;
  }
  return {left, right};
}

}  // namespace

void CheckSound(const Case& settings, const AlignedVector<float>& response, Findings& findings) {
  const AlignedVector<float> unit{1.0f};
  const AlignedVector<float>& h = response.empty() ? unit : response;
  const size_t count = h.size() + static_cast<size_t>(1.1 * settings.rate);
  const TolmaraProbe::Sound sound = SoundOfImpulse(settings, count);
  const TolmaraProbe::Sound expected = ExpectedSound(settings, h, count);
  double peak = 1;
  for (const double x : expected.left) peak = std::max(peak, std::abs(x));
  for (const double x : expected.right) peak = std::max(peak, std::abs(x));
  const double difference =
      std::max(Difference(sound.left, expected.left), Difference(sound.right, expected.right));
  if (difference <= 1e-5 * peak) return;
  findings.push_back(
      {"sound", std::to_string(difference) + " beside a peak of " + std::to_string(peak)});
}
