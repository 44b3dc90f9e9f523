// The drawing side of the display.
#include <cmath>
#include <string>

#include "display/AdditivePolyline.h"
#include "display/ITolmaraWaveformSpectrogram.h"
#include "display/LogAxis.h"
#include "dsp/FIRFunctions.h"
#include "graphics/IGraphics.h"
#include "iplug/Numbers.h"
#include "numeric/Convert.h"

namespace {

// Rows of the spectrogram add up where they meet.
constexpr IChannelBlend kAdd(IChannelBlend::kBlendAdd, 1.0f);

std::string Fixed2(float value) {
  char text[64];
  FixedText(text, sizeof text, static_cast<double>(value), 2);
  return text;
}

// A label of 16 x 8 pixels with its top left corner at (x, y).
void DrawLabel(IGraphics& graphics, IText& style, const std::string& text, double x, double y) {
  IRECT rect(TruncateToPixel(x), TruncateToPixel(y), TruncateToPixel(x + 16.0),
             TruncateToPixel(y + 8.0));
  graphics.DrawIText(&style, text.c_str(), &rect);
}

}  // namespace

bool ITolmaraWaveformSpectrogram::Draw(IGraphics* graphics) {
  const std::unique_lock lock(mMutex, std::try_to_lock);
  if (!lock.owns_lock()) return false;
  DrawStatus(*graphics);
  DrawWaveform(*graphics);
  DrawTimeMarks(*graphics);
  DrawLevelMarks(*graphics);
  DrawSpectrogram(*graphics);
  DrawFrequencyMarks(*graphics);
  return true;
}

void ITolmaraWaveformSpectrogram::DrawStatus(IGraphics& graphics) {
  IRECT rect = mStatusRect;
  if (Load(mComputing)) {
    graphics.DrawIText(&mTextComputing, "Computing", &rect);
  } else {
    graphics.DrawIText(&mTextReady, "Ready", &rect);
  }
}

void ITolmaraWaveformSpectrogram::DrawWaveform(IGraphics& graphics) {
  AdditivePolyline line(graphics, mWaveColor, mWaveLeft, mWaveBottom, mWaveRect.T, mWaveRect.B);
  for (std::size_t i = 0; i < mWaveX.size(); ++i) line.LineTo(mWaveX[i], mWaveY[i]);
}

// At the end of the response and each time half as far in.
void ITolmaraWaveformSpectrogram::DrawTimeMarks(IGraphics& graphics) {
  const double labelTop = static_cast<double>(mWaveBottom) + 1.0;
  int count = mWaveCount;
  for (int mark = 0; mark < 4; ++mark) {
    const double x =
        PositionOnLogAxis(static_cast<float>(count), mWaveLogStep, mWaveWidth, mWaveLeft);
    if (!std::isfinite(x)) break;  // an empty response has no time axis
    const float seconds = static_cast<float>(count) / static_cast<float>(mSampleRate);
    DrawLabel(graphics, mTextTime, Fixed2(seconds), x - 24.0, labelTop);
    if (mark > 0) {
      graphics.DrawVerticalLine(&mTextTime.mColor, TruncateToPixel(x), mWaveRect.T,
                                TruncateToPixel(static_cast<double>(mWaveBottom)));
    }
    count /= 2;
  }
  DrawLabel(graphics, mTextTime, "Sec", static_cast<double>(mWaveLeft), labelTop);
}

// At the peak and twice 6 dB below.
void ITolmaraWaveformSpectrogram::DrawLevelMarks(IGraphics& graphics) {
  float magnitude = mSpectrogram.get_fir_peak();
  for (int mark = 0; mark < 3; ++mark) {
    const double y = static_cast<double>(mWaveBottom - mWaveScaleY * magnitude);
    if (!std::isfinite(y)) break;  // a silent response has no scale of levels
    DrawLabel(graphics, mTextMarks, Fixed2(mag_to_dB(magnitude)) + " dB", mWaveRect.R - 40.0, y);
    if (mark > 0) {
      graphics.DrawHorizontalLine(&mTextMarks.mColor, TruncateToPixel(y),
                                  TruncateToPixel(static_cast<double>(mWaveLeft)), mWaveRect.R);
    }
    magnitude *= 0.5f;
  }
}

// Late frames share a pixel on the logarithmic axis; the last of them is the one that is drawn.
void ITolmaraWaveformSpectrogram::DrawSpectrogram(IGraphics& graphics) {
  for (std::size_t j = 0; j < mColumnX.size(); ++j) {
    const float x0 = mColumnX[j];
    const float x1 = j + 1 < mColumnX.size() ? mColumnX[j + 1] : x0 + 1.0f;
    if (x1 <= x0) continue;
    DrawSpectrogramRow(graphics, mSpectrogram.get_half_density_dB(mColumnTime[j]), x0, x1);
  }
}

void ITolmaraWaveformSpectrogram::DrawSpectrogramRow(IGraphics& graphics,
                                                     const AlignedVector<float>& row, float x0,
                                                     float x1) {
  for (std::size_t k = 0; k < row.size(); ++k) {
    const float v = (row[k] - mMinDB) / mRangeDB;
    const auto channel = [v](int full) { return saturate_to_int(static_cast<float>(full) * v); };
    // kept: channels above 255 are not clamped and wrap around in the pixel. Users know overloaded
    // bins by that colour.
    const IColor color(255, channel(mSpectrogramColor.R), channel(mSpectrogramColor.G),
                       channel(mSpectrogramColor.B));
    graphics.DrawLine(&color, x0, mBinY[k], x1 - 1.0f, mBinY[k], &kAdd, false);
  }
}

// At the Nyquist frequency, half and a quarter of it.
void ITolmaraWaveformSpectrogram::DrawFrequencyMarks(IGraphics& graphics) {
  // kept: this label has a fixed place, so that the editor's picture stays the same pixel by pixel.
  DrawLabel(graphics, mTextTime, "-120 to 0 dB", 290.0, 178.0);
  int rate = mSampleRate;
  for (int mark = 0; mark < 3; ++mark) {
    const int frequency = rate / 2;
    const double y = frequency / (mSampleRate * -0.5) * static_cast<double>(mSpectrogramHeight) +
                     static_cast<double>(mSpectrogramBottom);
    if (!std::isfinite(y)) break;  // no sample rate
    DrawLabel(graphics, mTextMarks, std::to_string(rate / 2000) + " kHz", mSpectrogramRect.R - 40.0,
              y);
    if (mark > 0) {
      graphics.DrawHorizontalLine(&mTextMarks.mColor, TruncateToPixel(y),
                                  TruncateToPixel(static_cast<double>(mSpectrogramLeft)),
                                  mSpectrogramRect.R);
    }
    rate = frequency;
  }
}
