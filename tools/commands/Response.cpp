// tolmara response: the effect's answer to a single impulse, as a sound file.
#include <cmath>

#include "tools/commands/Commands.h"
#include "tools/commands/Settings.h"
#include "tools/host/BlockRunner.h"
#include "tools/host/Parameters.h"
#include "tools/io/Failure.h"
#include "tools/io/Progress.h"
#include "tools/io/SoundFile.h"
#include "tools/io/TailTrimmer.h"

namespace {

constexpr double kResponseFloor = 1e-7;  // -140 dB, the noise of single-precision transforms

struct ResponseOptions {
  Settings settings;
  SoundOptions sound;
  int rate = 44100;  // Hz
};

// A response is what happens between dry and wet: what an effect does besides, under one of these
// names, is put aside.
constexpr const char* kFullyWet[] = {"Mix", "Dry/Wet", "Wet"};
constexpr const char* kPutToZero[] = {
    "Gain", "Pan", "Stereo Mid/Side", "Stereo Left/Right phase", "Stereo Haas", "Time Delay",
};

bool IsOneOf(const std::string& name, const auto& names) {
  for (const char* const candidate : names)
    if (name == candidate) return true;
  return false;
}

void PutStagesAside(PluginHost& host) {
  for (const Parameter& parameter : LearnParameters(host)) {
    if (IsOneOf(parameter.name, kFullyWet)) host.Set(parameter.id, 1);
    const bool hasZero =
        parameter.min && parameter.max && *parameter.min <= 0 && *parameter.max >= 0;
    if (hasZero && IsOneOf(parameter.name, kPutToZero)) SetParameter(host, parameter.id, "0");
  }
}

void WriteImpulseAnswer(BlockRunner& runner, TailTrimmer& trimmer, int rate) {
  const auto longest = static_cast<std::int64_t>(kLongestTailSeconds * rate);
  std::vector<double> in(static_cast<std::size_t>(runner.Block()), 0.0);
  std::vector<double> out(in.size());
  in[0] = 1;
  while (!trimmer.Ended() && trimmer.Taken() < longest) {
    runner.Process(in.data(), runner.Block(), out.data());
    trimmer.Take(out.data(), runner.Block(), 0);
    in[0] = 0;
  }
}

void WriteResponse(const ResponseOptions& options) {
  const int format = ChooseFormat(SF_FORMAT_WAV | SF_FORMAT_FLOAT, options.sound.output,
                                  options.sound.depth, 1, options.rate);
  SoundWriter writer(options.sound.output, format, 1, options.rate);
  const std::unique_ptr<PluginHost> host = OpenPlugin(options.settings);
  BlockRunner runner(*host, 1, options.rate, options.sound.block);
  const int delay = runner.MeasureDelay();
  ApplySettings(*host, options.settings);
  PutStagesAside(*host);
  runner.Settle();

  Progress progress(options.sound.output, options.sound.quiet);
  const std::int64_t patience = std::llround(kPatienceSeconds * options.rate);
  TailTrimmer trimmer(writer, 1, delay, kResponseFloor, patience);
  WriteImpulseAnswer(runner, trimmer, options.rate);
  if (writer.Frames() == 0)
    throw Failure(ExitCode::kSetting, "the response of these settings is silent");
  writer.Finish();
  progress.Close("a response of %.3f s, %lld frames at %d Hz",
                 static_cast<double>(writer.Frames()) / options.rate,
                 static_cast<long long>(writer.Frames()), options.rate);
  WarnOfClipping(writer);
}

constexpr const char* kExamples =
    "OUT is mono and, unless --depth says otherwise, in 32-bit float where the format has it. "
    "Mix,\n"
    "Gain, Pan, width, phase and delays do not belong to the response: they are put aside. It "
    "ends\n"
    "with the last sample above -140 dB of its peak. Any convolution reverb can use it.\n"
    "\n"
    "Examples:\n"
    "  tolmara response hall.wav --preset Hall\n"
    "  tolmara response plate.flac --preset Plate-long --rate 96000 --depth 24\n"
    "  tolmara response room.wav --set \"Size 0=4\" --set \"High Decay=300\"\n";

}  // namespace

void AddResponseCommand(CLI::App& app) {
  auto options = std::make_shared<ResponseOptions>();
  CLI::App* const command = app.add_subcommand("response", "Write the impulse response");
  AddSoundOptions(*command, options->sound, "float");
  AddSettingsOptions(*command, options->settings);
  command->add_option("--rate", options->rate, "sample rate, in Hz (44100)")
      ->check(CLI::Range(1000, 768000))
      ->type_name("HZ");
  command->footer(kExamples);
  command->callback([options] { WriteResponse(*options); });
}
