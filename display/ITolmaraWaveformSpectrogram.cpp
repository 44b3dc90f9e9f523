// The data side of the display: from a new response to prepared coordinates.
#include "display/ITolmaraWaveformSpectrogram.h"

#include <cmath>

#include "display/LogAxis.h"
#include "dsp/FIRFunctions.h"
#include "numeric/Convert.h"

namespace {

constexpr double kEulerLessOne = 1.718281828459045;

IText Coloured(const IText& text, const IColor& color) {
  IText coloured = text;
  coloured.mColor = color;
  return coloured;
}

}  // namespace

ITolmaraWaveformSpectrogram::ITolmaraWaveformSpectrogram(IPlugBase* plug, IRECT rect,
                                                         IRECT waveRect, IRECT spectrogramRect,
                                                         const IText& text, int sampleRate,
                                                         const AlignedVector<float>& fir)
    : IControl(plug, rect),
      mStatusRect((rect.L + rect.R) / 2, rect.T, (rect.L + rect.R) / 2 + 40, rect.T + 16),
      mTextComputing(Coloured(text, kColorRed)),
      mTextReady(Coloured(text, kColorGreen)),
      mWaveRect(waveRect),
      mSpectrogramRect(spectrogramRect),
      mTextTime(Coloured(text, IColor(178, 0, 255, 0))),
      mTextMarks(Coloured(text, IColor(178, 255, 255, 0))) {
  mMaySkipFrames = true;
  SetResponse(sampleRate, fir);
}

ITolmaraWaveformSpectrogram::~ITolmaraWaveformSpectrogram() = default;

void ITolmaraWaveformSpectrogram::SetComputing(bool computing) {
  if (Load(mComputing) == computing) return;
  const std::lock_guard lock(mMutex);
  Store(mComputing, computing);
  // A frame that has drawn the old status and is about to clean the control has to come again.
  if (IsInFrame()) MarkRedraw();
  SetDirty(true);
}

void ITolmaraWaveformSpectrogram::SetResponse(int sampleRate, const AlignedVector<float>& fir) {
  const std::lock_guard lock(mMutex);
  mSampleRate = sampleRate;
  mSpectrogram.update(sampleRate, fir, FIRSpectrogram<float>::Blackman, 256, 128, 256, 1e-6f);
  PrepareWaveform();
  PrepareSpectrogram();
}

// Needs the mutex held.
void ITolmaraWaveformSpectrogram::PrepareWaveform() {
  const AlignedVector<float>& fir = mSpectrogram.get_fir();
  const auto right = static_cast<float>(mWaveRect.R);
  const auto top = static_cast<float>(mWaveRect.T);
  mWaveCount = static_cast<int>(fir.size());
  mWaveX = AlignedVector<float>(fir.size());
  mWaveY = AlignedVector<float>(fir.size());
  mWaveLeft = static_cast<float>(mWaveRect.L + 4);
  mWaveBottom = static_cast<float>(mWaveRect.B - 16);
  mWaveWidth = right - mWaveLeft;
  mWaveScaleY = (mWaveBottom - top) / mSpectrogram.get_fir_peak();
  mWaveScaleX = mWaveWidth / static_cast<float>(mWaveCount);
  mWaveLogStep = static_cast<float>(kEulerLessOne / mWaveCount);
  for (std::size_t i = 0; i < fir.size(); ++i) {
    mWaveX[i] = static_cast<float>(
        PositionOnLogAxis(static_cast<float>(i), mWaveLogStep, mWaveWidth, mWaveLeft));
    mWaveY[i] = mWaveBottom - mWaveScaleY * std::abs(fir[i]);
  }
  mWaveColor = IColor(178, 255, 0, 0);
}

// Needs the mutex held.
void ITolmaraWaveformSpectrogram::PrepareSpectrogram() {
  mMaxTime = mSpectrogram.get_max_time();
  mMinTimestep = mSpectrogram.get_min_timestep();
  mMinDB = mag_to_dB(1e-6f);
  mMaxDB = mag_to_dB(1.000001f);
  mRangeDB = mMaxDB - mMinDB;
  mColumnCount = saturate_to_int(std::ceil(mMaxTime / mMinTimestep));
  mBinCount = mSpectrogram.get_num_half_bins();
  mSpectrogramLeft = mWaveLeft;
  mSpectrogramBottom = static_cast<float>(mSpectrogramRect.B);
  mSpectrogramWidth = mWaveWidth;
  mSpectrogramHeight = static_cast<float>(mSpectrogramRect.B - mSpectrogramRect.T);
  mTimeLogStep = static_cast<float>(kEulerLessOne / static_cast<double>(mMaxTime));
  mBinStep = mSpectrogramHeight / static_cast<float>(mBinCount);
  mSpectrogramColor = IColor(255, 255, 187, 0);

  mColumnTime = AlignedVector<float>(static_cast<std::size_t>(mColumnCount));
  mColumnX = AlignedVector<float>(static_cast<std::size_t>(mColumnCount));
  mBinY = AlignedVector<float>(static_cast<std::size_t>(mBinCount));
  for (std::size_t j = 0; j < mColumnX.size(); ++j) {
    mColumnTime[j] = static_cast<float>(j) * mMinTimestep;
    mColumnX[j] = static_cast<float>(std::floor(
        PositionOnLogAxis(mColumnTime[j], mTimeLogStep, mSpectrogramWidth, mSpectrogramLeft)));
  }
  for (std::size_t k = 0; k < mBinY.size(); ++k) {
    mBinY[k] = mSpectrogramBottom - static_cast<float>(k) * mBinStep;
  }
}
