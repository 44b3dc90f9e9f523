// tolmara render: a sound file through the effect.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "tools/commands/Commands.h"
#include "tools/commands/Settings.h"
#include "tools/host/BlockRunner.h"
#include "tools/io/Failure.h"
#include "tools/io/Progress.h"
#include "tools/io/SoundFile.h"
#include "tools/io/TailTrimmer.h"

namespace {

constexpr double kTailFloor = 3.16227766e-5;  // -90 dB

struct RenderOptions {
  Settings settings;
  SoundOptions sound;
  std::string input;
  std::string tail = "auto";
  int delay = -1;  // frames, -1 to measure
};

bool HasAutoTail(const RenderOptions& options) { return options.tail == "auto"; }

// CLI11's check of --tail: "" when it can be used.
std::string CheckTail(const std::string& text) {
  double seconds = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
  const bool number = error == std::errc() && end == text.data() + text.size();
  if (text == "auto" || (number && seconds >= 0 && seconds <= 3600)) return "";
  return "wants seconds from 0 to 3600 or \"auto\", not \"" + text + "\"";
}

// Feeds the file and then silence, until the body is complete and the tail has faded.
class Rendering {
 public:
  Rendering(const RenderOptions& options, SoundReader& reader, SoundWriter& writer,
            BlockRunner& runner, int delay)
      : mReader(reader),
        mRunner(runner),
        mAutoTail(HasAutoTail(options)),
        mTail(mAutoTail ? 0 : Frames(std::stod(options.tail))),
        mTrimmer(writer, reader.Channels(), delay, kTailFloor,
                 mAutoTail ? Frames(kPatienceSeconds) : 0),
        mIn(static_cast<std::size_t>(runner.Block() * reader.Channels())),
        mOut(mIn.size()) {}

  void Run(Progress& progress) {
    const auto whole = static_cast<double>(mReader.Frames() + mTail);
    while (!Done()) {
      Step();
      progress.Show(static_cast<double>(mTrimmer.Taken()) / whole);
    }
  }

  bool TailCut() const { return mAutoTail && !mTrimmer.Ended(); }

 private:
  std::int64_t Frames(double seconds) const { return std::llround(seconds * mReader.Rate()); }

  void Step() {
    const int block = mRunner.Block();
    const auto frames = mAtEnd ? 0 : static_cast<int>(mReader.Read(mIn.data(), block));
    mAtEnd = frames < block;
    mRead += frames;
    mRunner.Process(mIn.data(), frames, mOut.data());
    mTrimmer.Take(mOut.data(), block, mRead + mTail);
  }

  bool Done() const {
    if (!mAtEnd || mTrimmer.Taken() < mRead + mTail) return false;
    return !mAutoTail || mTrimmer.Ended() ||
           mTrimmer.Taken() >= mRead + Frames(kLongestTailSeconds);
  }

  SoundReader& mReader;
  BlockRunner& mRunner;
  bool mAutoTail;
  std::int64_t mTail;  // frames, of a fixed tail
  TailTrimmer mTrimmer;
  std::vector<double> mIn, mOut;  // one block, interleaved
  std::int64_t mRead = 0;         // frames
  bool mAtEnd = false;            // of the input
};

void Report(const SoundWriter& writer, Progress& progress, int rate) {
  const double length = static_cast<double>(writer.Frames()) / rate;
  progress.Close("%.2f s of sound in %.2f s, peak %.1f dB", length, progress.Seconds(),
                 writer.Peak_dB());
  WarnOfClipping(writer);
}

void Render(const RenderOptions& options) {
  SoundReader reader(options.input);
  RequireOtherFile(options.input, options.sound.output);
  const int format = ChooseFormat(reader.Format(), options.sound.output, options.sound.depth,
                                  reader.Channels(), reader.Rate());
  SoundWriter writer(options.sound.output, format, reader.Channels(), reader.Rate());
  writer.RequireRoom(reader.Frames());
  const std::unique_ptr<PluginHost> host = OpenPlugin(options.settings);
  BlockRunner runner(*host, reader.Channels(), reader.Rate(), options.sound.block);
  const int delay = options.delay >= 0 ? options.delay : runner.MeasureDelay();
  ApplySettings(*host, options.settings);
  runner.Settle();

  Progress progress(options.sound.output, options.sound.quiet);
  Rendering rendering(options, reader, writer, runner, delay);
  rendering.Run(progress);
  writer.Finish();
  Report(writer, progress, reader.Rate());
  if (rendering.TailCut())
    std::fprintf(stderr, "tolmara: the tail had not faded after %.0f s and was cut there\n",
                 kLongestTailSeconds);
}

constexpr const char* kExamples =
    "IN may be WAV, FLAC, AIFF or Ogg, mono or stereo, at any rate. OUT takes the format of its\n"
    "extension and the depth of IN. The effect's delay is taken out, so that OUT lines up with "
    "IN.\n"
    "\n"
    "Examples:\n"
    "  tolmara render dry.wav wet.wav --preset Hall\n"
    "  tolmara render dry.wav wet.flac --preset Church --set Mix=0.3 --depth 24\n"
    "  tolmara render dry.wav wet.wav --set \"Dimension 3=on\" --set \"Size 3=9\" --tail 4\n"
    "  tolmara render dry.wav wet.wav --load-fxp mine.fxp --depth float\n"
    "  tolmara render dry.wav wet.wav --plugin other.so --set Drive=0.5\n";

}  // namespace

void AddRenderCommand(CLI::App& app) {
  auto options = std::make_shared<RenderOptions>();
  CLI::App* const command = app.add_subcommand("render", "Reverberate a sound file");
  command->add_option("IN", options->input, "the sound file to read")->required();
  AddSoundOptions(*command, options->sound, "that of IN");
  AddSettingsOptions(*command, options->settings);
  command->add_option("--tail", options->tail, "seconds after the end of IN, or until -90 dB: auto")
      ->check(CheckTail)
      ->type_name("SECONDS|auto");
  command->add_option("--delay", options->delay, "frames to take out; else measured")
      ->check(CLI::Range(0, 10000000))
      ->type_name("FRAMES");
  command->footer(kExamples);
  command->callback([options] { Render(*options); });
}
