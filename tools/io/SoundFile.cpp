// Reading and writing sound files through libsndfile, block by block.
#include "tools/io/SoundFile.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "tools/io/Failure.h"
#include "tools/io/InputFile.h"

namespace {

// Rates beyond these come from damaged headers only.
constexpr int kLowestRate = 1000;
constexpr int kHighestRate = 768000;
// WAV and AIFF count their bytes in 32 bits; this leaves room for the header.
constexpr std::int64_t kLargestPlainFile = 0xFFFF0000;

struct Container {
  const char* extension;
  int format;
};
constexpr Container kContainers[] = {
    {".wav", SF_FORMAT_WAV},  {".flac", SF_FORMAT_FLAC}, {".aiff", SF_FORMAT_AIFF},
    {".aif", SF_FORMAT_AIFF}, {".aifc", SF_FORMAT_AIFF}, {".ogg", SF_FORMAT_OGG},
    {".oga", SF_FORMAT_OGG},  {".w64", SF_FORMAT_W64},   {".rf64", SF_FORMAT_RF64},
    {".caf", SF_FORMAT_CAF},  {".au", SF_FORMAT_AU},     {".snd", SF_FORMAT_AU},
};

struct Depth {
  const char* name;
  int subtype;
};
constexpr Depth kDepths[] = {
    {"16", SF_FORMAT_PCM_16},   {"24", SF_FORMAT_PCM_24},     {"32", SF_FORMAT_PCM_32},
    {"float", SF_FORMAT_FLOAT}, {"double", SF_FORMAT_DOUBLE},
};

[[noreturn]] void FailInput(const std::string& line) { throw Failure(ExitCode::kInput, line); }

bool AllNumbers(const double* samples, std::int64_t count) {
  return std::all_of(samples, samples + count, [](double x) { return std::isfinite(x); });
}

std::string WithoutDot(std::string text) {
  while (!text.empty() && (text.back() == '.' || text.back() == '\n')) text.pop_back();
  return text;
}

// What a container of another kind can take over: no encoding that belongs to one.
bool IsPlain(int subtype) {
  const auto is = [=](const Depth& depth) { return subtype == depth.subtype; };
  return subtype == SF_FORMAT_PCM_U8 || subtype == SF_FORMAT_PCM_S8 ||
         std::any_of(std::begin(kDepths), std::end(kDepths), is);
}

// Samples of these formats are integers, or are made from integers.
int BitsOf(int format) {
  switch (format & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_FLOAT:
    case SF_FORMAT_DOUBLE:
    case SF_FORMAT_VORBIS:
    case SF_FORMAT_OPUS: return 0;
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8: return 8;
    case SF_FORMAT_ALAC_20: return 20;
    case SF_FORMAT_PCM_24:
    case SF_FORMAT_ALAC_24: return 24;
    case SF_FORMAT_PCM_32:
    case SF_FORMAT_ALAC_32: return 32;
    default: return 16;
  }
}

std::int64_t BytesPerFrame(const SF_INFO& info) {
  const int container = info.format & SF_FORMAT_TYPEMASK;
  const bool counts32Bits =
      container == SF_FORMAT_WAV || container == SF_FORMAT_WAVEX || container == SF_FORMAT_AIFF;
  const int subtype = info.format & SF_FORMAT_SUBMASK;
  if (!counts32Bits || subtype == SF_FORMAT_ULAW || subtype == SF_FORMAT_ALAW) return 0;
  if (subtype == SF_FORMAT_FLOAT) return 4 * info.channels;
  if (subtype == SF_FORMAT_DOUBLE) return 8 * info.channels;
  return BitsOf(info.format) / 8 * info.channels;
}

int ContainerOf(int input, const std::string& output) {
  std::string extension = std::filesystem::path(output).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  for (const Container& known : kContainers)
    if (extension == known.extension) return known.format;
  if (!extension.empty())
    throw Failure(ExitCode::kOutput, "cannot write " + output + ": no format is known for \"" +
                                         extension + "\"; choose .wav, .flac, .aiff or .ogg");
  return input & SF_FORMAT_TYPEMASK;
}

bool CanWrite(int format, int channels, int rate) {
  SF_INFO info{};
  info.format = format;
  info.channels = channels;
  info.samplerate = rate;
  return sf_format_check(&info) != 0;
}

}  // namespace

SoundReader::SoundReader(const std::string& path) : mPath(path) {
  RequireReadable(path);
  mFile.reset(sf_open(path.c_str(), SFM_READ, &mInfo));
  if (!mFile) FailInput(path + " is no sound file: " + WithoutDot(sf_strerror(nullptr)));
  if (mInfo.frames <= 0) FailInput(path + " is empty: it holds no sound");
  if (mInfo.channels > 2)
    FailInput(path + " has " + std::to_string(mInfo.channels) +
              " channels; only mono and stereo can be read");
  if (mInfo.samplerate < kLowestRate || mInfo.samplerate > kHighestRate)
    FailInput(path + " has a sample rate of " + std::to_string(mInfo.samplerate) + " Hz");
}

std::int64_t SoundReader::Read(double* interleaved, std::int64_t frames) {
  const std::int64_t count = sf_readf_double(mFile.get(), interleaved, frames);
  mRead += count;
  if (count < frames && mRead < mInfo.frames)
    FailInput(mPath + " is damaged: it ends after " + std::to_string(mRead) + " of " +
              std::to_string(mInfo.frames) + " frames");
  if (!AllNumbers(interleaved, count * mInfo.channels))
    FailInput(mPath + " is damaged: it holds samples that are no numbers");
  return count;
}

int ChooseFormat(int input, const std::string& output, const std::string& depth, int channels,
                 int rate) {
  const int container = ContainerOf(input, output);
  const bool sameContainer = container == (input & SF_FORMAT_TYPEMASK);
  if (sameContainer && depth.empty() && CanWrite(input, channels, rate)) return input;

  std::vector<int> subtypes = {SF_FORMAT_PCM_24, SF_FORMAT_VORBIS};
  const int subtype = input & SF_FORMAT_SUBMASK;
  if (IsPlain(subtype)) subtypes.insert(subtypes.begin(), subtype);
  for (const Depth& known : kDepths)
    if (depth == known.name) subtypes = {known.subtype};
  for (const int known : subtypes)
    if (CanWrite(container | known, channels, rate)) return container | known;
  const std::string of = depth.empty() ? "" : " with depth " + depth;
  throw Failure(ExitCode::kOutput,
                "cannot write " + output + of + ": the format has no such depth");
}

SoundWriter::SoundWriter(const std::string& path, int format, int channels, int rate)
    : mShown(path), mOutput(path) {
  mInfo.format = format;
  mInfo.channels = channels;
  mInfo.samplerate = rate;
  mBits = BitsOf(format);
  mBytesPerFrame = BytesPerFrame(mInfo);
  mFile.reset(sf_open(mOutput.Path().c_str(), SFM_WRITE, &mInfo));
  if (!mFile)
    throw Failure(ExitCode::kOutput,
                  "cannot write " + path + ": " + WithoutDot(sf_strerror(nullptr)));
  // The chunk holds the time of day, and repeats shall be identical.
  sf_command(mFile.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
}

void SoundWriter::RequireRoom(std::int64_t frames) const {
  if (mBytesPerFrame > 0 && frames > kLargestPlainFile / mBytesPerFrame)
    throw Failure(ExitCode::kOutput,
                  "cannot write " + mShown + ": it would pass 4 GB; choose .w64, .rf64 or .flac");
}

void SoundWriter::Write(const double* interleaved, std::int64_t frames) {
  if (frames == 0) return;
  if (!AllNumbers(interleaved, frames * mInfo.channels))
    throw Failure(ExitCode::kPlugin, "the plug-in puts out samples that are no numbers");
  mFrames += frames;
  RequireRoom(mFrames);
  for (std::int64_t i = 0; i < frames * mInfo.channels; ++i)
    mPeak = std::max(mPeak, std::abs(interleaved[i]));
  if (mBits > 0)
    WriteIntegers(interleaved, frames);
  else
    RequireWritten(sf_writef_double(mFile.get(), interleaved, frames), frames);
}

// libsndfile's own scaling would not give back the integers that it read; this one does.
void SoundWriter::WriteIntegers(const double* interleaved, std::int64_t frames) {
  const double scale = std::ldexp(1.0, mBits - 1);
  const auto shift = static_cast<unsigned>(32 - mBits);
  mScaled.resize(static_cast<std::size_t>(frames * mInfo.channels));
  for (std::size_t i = 0; i < mScaled.size(); ++i) {
    const double rounded = std::nearbyint(interleaved[i] * scale);
    const double held = std::fmax(std::fmin(rounded, scale - 1), -scale);
    if (held != rounded) ++mClipped;
    mScaled[i] = static_cast<std::int32_t>(static_cast<std::uint32_t>(std::llrint(held)) << shift);
  }
  RequireWritten(sf_writef_int(mFile.get(), mScaled.data(), frames), frames);
}

void SoundWriter::RequireWritten(std::int64_t written, std::int64_t frames) {
  if (written != frames)
    throw Failure(ExitCode::kOutput,
                  "cannot write " + mShown + ": " + WithoutDot(sf_strerror(mFile.get())));
}

double SoundWriter::Peak_dB() const { return 20 * std::log10(std::max(mPeak, 1e-12)); }

void SoundWriter::Finish() {
  const bool closed = sf_close(mFile.release()) == 0;
  // Not every encoder reports that its last bytes found no room. An Ogg stream without them reports
  // no length.
  SF_INFO stored{};
  const SoundHandle again(closed ? sf_open(mOutput.Path().c_str(), SFM_READ, &stored) : nullptr);
  if (!again || stored.frames < mFrames || stored.frames == SF_COUNT_MAX)
    throw Failure(ExitCode::kOutput, "cannot write " + mShown + ": not all of it could be stored");
  mOutput.Commit();
}

void WarnOfClipping(const SoundWriter& writer) {
  if (writer.Clipped() == 0) return;
  std::fprintf(stderr,
               "tolmara: %lld samples were clipped; make it %.1f dB softer or use --depth float\n",
               static_cast<long long>(writer.Clipped()), writer.Peak_dB());
}
