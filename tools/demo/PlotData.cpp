// plot_data envelope|level|decay|spectrogram FILE: what a plot shows of a sound file, as columns of
// text on stdout. Both channels of a stereo file are averaged.
#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdio>
#include <cstring>
#include <numbers>
#include <vector>

namespace {

struct Sound {
  double rate = 0;  // Hz
  std::vector<double> samples;
};

Sound Read(const char* path) {
  SF_INFO info{};
  SNDFILE* const file = sf_open(path, SFM_READ, &info);
  if (file == nullptr) return {};
  const auto channels = static_cast<std::size_t>(info.channels);
  std::vector<double> frame(channels);
  Sound sound{static_cast<double>(info.samplerate), {}};
  while (sf_readf_double(file, frame.data(), 1) == 1) {
    double sum = 0;
    for (const double x : frame) sum += x;
    sound.samples.push_back(sum / static_cast<double>(channels));
  }
  sf_close(file);
  return sound;
}

double dB(double power) { return 10 * std::log10(std::max(power, 1e-14)); }

// Time, lowest and highest sample of each of a thousand slices.
void PrintEnvelope(const Sound& sound) {
  constexpr std::size_t kSlices = 1000;
  const std::size_t count = sound.samples.size();
  for (std::size_t s = 0; s < kSlices && count >= kSlices; ++s) {
    const auto first = sound.samples.begin() + static_cast<std::ptrdiff_t>(s * count / kSlices);
    const auto last =
        sound.samples.begin() + static_cast<std::ptrdiff_t>((s + 1) * count / kSlices);
    const auto [low, high] = std::minmax_element(first, last);
    std::printf("%.6f %.6f %.6f\n", static_cast<double>(s * count / kSlices) / sound.rate, *low,
                *high);
  }
}

// Time and mean power in dB of each 20 ms.
void PrintLevel(const Sound& sound) {
  const auto window = static_cast<std::size_t>(sound.rate * 0.02);
  for (std::size_t i = 0; i + window <= sound.samples.size(); i += window) {
    double power = 0;
    for (std::size_t k = 0; k < window; ++k) power += sound.samples[i + k] * sound.samples[i + k];
    std::printf("%.6f %.3f\n", static_cast<double>(i) / sound.rate,
                dB(power / static_cast<double>(window)));
  }
}

// Time and the energy still to come, in dB of all energy: the decay curve of a response
// (Schroeder 1965).
void PrintDecay(const Sound& sound) {
  std::vector<double> energy(sound.samples.size() + 1, 0.0);
  for (std::size_t i = sound.samples.size(); i-- > 0;)
    energy[i] = energy[i + 1] + sound.samples[i] * sound.samples[i];
  const std::size_t step = std::max<std::size_t>(1, sound.samples.size() / 1000);
  for (std::size_t i = 0; i < sound.samples.size(); i += step)
    std::printf("%.6f %.3f\n", static_cast<double>(i) / sound.rate,
                dB(energy[i] / std::max(energy[0], 1e-30)));
}

// Transform of a power of two, in place, by halves (Cooley and Tukey 1965).
void Transform(std::vector<std::complex<double>>& x) {
  const std::size_t n = x.size();
  if (n == 1) return;
  std::vector<std::complex<double>> even(n / 2), odd(n / 2);
  for (std::size_t i = 0; i < n / 2; ++i) {
    even[i] = x[2 * i];
    odd[i] = x[2 * i + 1];
  }
  Transform(even);
  Transform(odd);
  for (std::size_t i = 0; i < n / 2; ++i) {
    const double angle = -2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(n);
    const std::complex<double> turned = std::polar(1.0, angle) * odd[i];
    x[i] = even[i] + turned;
    x[i + n / 2] = even[i] - turned;
  }
}

// Time, frequency and level in dB on a grid of 300 by 96, frequencies rising by equal steps of
// pitch from 60 Hz to 18 kHz; a blank line after each time.
void PrintSpectrogram(const Sound& sound) {
  constexpr std::size_t kColumns = 300, kRows = 96, kWindow = 2048;
  std::vector<std::complex<double>> x(kWindow);
  const std::size_t count = sound.samples.size();
  for (std::size_t column = 0; column < kColumns; ++column) {
    const std::size_t first = column * count / kColumns;
    for (std::size_t i = 0; i < kWindow; ++i) {
      const double phase = 2 * std::numbers::pi * static_cast<double>(i) / kWindow;
      const double sample = first + i < count ? sound.samples[first + i] : 0;
      x[i] = sample * (0.5 - 0.5 * std::cos(phase));
    }
    Transform(x);
    for (std::size_t row = 0; row < kRows; ++row) {
      const double part = static_cast<double>(row) / (kRows - 1);
      const double frequency = 60 * std::pow(18000.0 / 60, part);
      const auto bin = static_cast<std::size_t>(frequency / sound.rate * kWindow + 0.5);
      const double level = bin <= kWindow / 2 ? dB(std::norm(x[bin] / (kWindow / 4.0))) : -140;
      std::printf("%.6f %.1f %.2f\n", static_cast<double>(first) / sound.rate, frequency, level);
    }
    std::printf("\n");
  }
}

struct Kind {
  const char* name;
  void (*print)(const Sound&);
};
constexpr Kind kKinds[] = {{"envelope", PrintEnvelope},
                           {"level", PrintLevel},
                           {"decay", PrintDecay},
                           {"spectrogram", PrintSpectrogram}};

}  // namespace

int main(int argc, char** argv) {
  for (const Kind& kind : kKinds) {
    if (argc != 3 || std::strcmp(argv[1], kind.name) != 0) continue;
    const Sound sound = Read(argv[2]);
    if (!sound.samples.empty()) return kind.print(sound), 0;
    std::fprintf(stderr, "plot_data: cannot read %s\n", argv[2]);
    return 1;
  }
  std::fprintf(stderr, "plot_data envelope|level|decay|spectrogram FILE\n");
  return 2;
}
