// Reading and writing sound files through libsndfile, block by block.
#pragma once
#include <sndfile.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tools/io/AtomicFile.h"

struct SoundFileCloser {
  void operator()(SNDFILE* file) const { sf_close(file); }
};
using SoundHandle = std::unique_ptr<SNDFILE, SoundFileCloser>;

// A mono or stereo sound being read. The constructor throws Failure (ExitCode::kInput) for a file
// that is missing, no sound, empty, or has more than two channels.
class SoundReader {
 public:
  explicit SoundReader(const std::string& path);

  int Channels() const { return mInfo.channels; }
  int Rate() const { return mInfo.samplerate; }         // Hz
  std::int64_t Frames() const { return mInfo.frames; }  // as the file announces
  int Format() const { return mInfo.format; }           // libsndfile's code

  // Reads up to `frames` interleaved frames, full scale being 1; fewer only at the end. Throws
  // Failure (ExitCode::kInput) when the file ends before its announced length or holds NaN or
  // infinity.
  std::int64_t Read(double* interleaved, std::int64_t frames);

 private:
  std::string mPath;
  SF_INFO mInfo{};
  SoundHandle mFile;
  std::int64_t mRead = 0;  // frames so far
};

// libsndfile's code for writing to `output`: the container of its extension, without one that of
// `input`; the depth asked for ("16", "24", "32", "float", "double"), else that of `input` or the
// nearest that the container has. Throws Failure (ExitCode::kOutput) for an extension that is not
// known and where they do not go together.
int ChooseFormat(int input, const std::string& output, const std::string& depth, int channels,
                 int rate);

// A sound being written; it appears under its name with Finish, whole. Integer formats saturate and
// count the samples that did. Throws Failure (ExitCode::kOutput), or with ExitCode::kPlugin for
// samples that are NaN or infinite.
class SoundWriter {
 public:
  SoundWriter(const std::string& path, int format, int channels, int rate);

  // Fails at once where that many frames in all would not fit the format.
  void RequireRoom(std::int64_t frames) const;
  void Write(const double* interleaved, std::int64_t frames);
  void Finish();

  std::int64_t Frames() const { return mFrames; }
  std::int64_t Clipped() const { return mClipped; }  // samples
  double Peak_dB() const;                            // largest magnitude offered; -240 for none

 private:
  void WriteIntegers(const double* interleaved, std::int64_t frames);
  void RequireWritten(std::int64_t written, std::int64_t frames);

  std::string mShown;
  AtomicFile mOutput;
  SF_INFO mInfo{};
  SoundHandle mFile;
  int mBits;                          // of an integer format, 0 for the others
  std::int64_t mBytesPerFrame;        // of plain formats, 0 for compressed ones
  std::vector<std::int32_t> mScaled;  // integers of one Write
  std::int64_t mFrames = 0;
  std::int64_t mClipped = 0;
  double mPeak = 0;
};

// One line on stderr if the file lost something at full scale.
void WarnOfClipping(const SoundWriter& writer);
