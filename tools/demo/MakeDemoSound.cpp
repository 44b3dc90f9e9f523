// make_demo_sound OUT.flac: writes the dry phrase that the demonstration reverberates. The same
// sound every time.
#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "tools/demo/DemoVoices.h"

namespace {

constexpr double kSeconds = 7.4;
constexpr double kBeat = 60.0 / 88;  // seconds
constexpr double kPeak = 0.7;

struct ScoreLine {
  void (*add)(StereoMix&, const Note&);
  double beat, pitch, velocity, pan;
};

// Two bars in D minor: an arpeggio with off-beat hands, a drum and a block, and a last chord that
// is let ring into the silence.
constexpr ScoreLine kScore[] = {
    {AddKick, 0.00, 0, 0.9, 0},      {AddPluck, 0.00, 50, 0.9, -0.35},
    {AddPluck, 0.50, 57, 0.6, -0.1}, {AddPluck, 1.00, 64, 0.7, 0.15},
    {AddClap, 1.00, 0, 0.8, 0.2},    {AddPluck, 1.50, 65, 0.8, 0.35},
    {AddBlock, 1.75, 0, 0.5, -0.6},  {AddKick, 2.00, 0, 0.7, 0},
    {AddPluck, 2.00, 57, 0.6, -0.1}, {AddPluck, 2.50, 69, 0.9, 0.45},
    {AddBlock, 2.75, 0, 0.7, -0.6},  {AddClap, 3.00, 0, 0.9, 0.2},
    {AddPluck, 3.00, 65, 0.6, 0.3},  {AddPluck, 3.50, 64, 0.7, 0.1},
    {AddKick, 4.00, 0, 0.9, 0},      {AddPluck, 4.00, 46, 0.9, -0.35},
    {AddPluck, 4.50, 58, 0.6, -0.1}, {AddPluck, 4.75, 62, 0.6, 0.05},
    {AddPluck, 5.00, 65, 0.8, 0.25}, {AddClap, 5.00, 0, 0.8, 0.2},
    {AddBlock, 5.50, 0, 0.8, -0.6},  {AddPluck, 5.50, 72, 0.9, 0.5},
    {AddBlock, 5.75, 0, 0.5, -0.6},  {AddKick, 6.00, 0, 0.8, 0},
    {AddPluck, 6.00, 69, 0.7, 0.4},  {AddPluck, 6.50, 65, 0.6, 0.25},
    {AddClap, 7.00, 0, 1.0, 0.2},    {AddKick, 7.00, 0, 0.7, 0},
    {AddPluck, 7.00, 50, 0.8, -0.5}, {AddPluck, 7.04, 57, 0.8, -0.25},
    {AddPluck, 7.08, 62, 0.8, 0.0},  {AddPluck, 7.12, 65, 0.8, 0.25},
    {AddPluck, 7.16, 69, 0.9, 0.5},
};

StereoMix Play() {
  const auto frames = static_cast<std::size_t>(kSeconds * kDemoRate);
  StereoMix mix{std::vector<double>(frames), std::vector<double>(frames)};
  for (const ScoreLine& line : kScore)
    line.add(mix, {line.beat * kBeat, line.pitch, line.velocity, line.pan});
  return mix;
}

// Interleaved, loudest sample at kPeak, in the top 16 bits.
std::vector<std::int32_t> ToIntegers(const StereoMix& mix) {
  double peak = 0;
  for (std::size_t i = 0; i < mix.left.size(); ++i)
    peak = std::max({peak, std::abs(mix.left[i]), std::abs(mix.right[i])});
  std::vector<std::int32_t> samples;
  for (std::size_t i = 0; i < mix.left.size(); ++i) {
    for (const double x : {mix.left[i], mix.right[i]})
      samples.push_back(static_cast<std::int32_t>(std::lround(x / peak * kPeak * 32767)) * 65536);
  }
  return samples;
}

bool Write(const char* path, const std::vector<std::int32_t>& samples) {
  SF_INFO info{};
  info.channels = 2;
  info.samplerate = kDemoRate;
  info.format = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
  SNDFILE* const file = sf_open(path, SFM_WRITE, &info);
  if (file == nullptr) return false;
  const auto frames = static_cast<sf_count_t>(samples.size() / 2);
  const bool written = sf_writef_int(file, samples.data(), frames) == frames;
  return sf_close(file) == 0 && written;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "make_demo_sound OUT.flac\n");
    return 2;
  }
  if (Write(argv[1], ToIntegers(Play()))) return 0;
  std::fprintf(stderr, "make_demo_sound: cannot write %s\n", argv[1]);
  return 1;
}
