// The editor's picture of the current response: waveform above, spectrogram below.
#pragma once

#include <mutex>

#include "display/FIRSpectrogram.h"
#include "graphics/IControl.h"
#include "numeric/AlignedVector.h"

// Two stacked panels on one logarithmic time axis, x = left + width * ln(1 + (e - 1) t / T): the
// rectified waveform with level marks in decibels, and the spectrogram with marks in kilohertz,
// black at -120 dB. A word says whether a new response is being computed. Takes no input.
//
// The update worker calls SetComputing and SetResponse; the editor's thread calls Draw, which never
// waits. Nothing here touches the audio thread.
class ITolmaraWaveformSpectrogram : public IControl {
 public:
  // Shows `fir` at once. All texts take their face and size from `text`.
  ITolmaraWaveformSpectrogram(IPlugBase* plug, IRECT rect, IRECT waveRect, IRECT spectrogramRect,
                              const IText& text, int sampleRate, const AlignedVector<float>& fir);
  ~ITolmaraWaveformSpectrogram() override;

  // Analyses a new response and prepares its coordinates. `sampleRate` is above 0. The change is
  // not marked for drawing: the SetComputing(false) that follows does that.
  void SetResponse(int sampleRate, const AlignedVector<float>& fir);

  // Marks the control for drawing if the value is new, and otherwise takes no lock.
  void SetComputing(bool computing);

  // False, with nothing drawn, while a response is being prepared.
  bool Draw(IGraphics* graphics) override;

 private:
  void PrepareWaveform();
  void PrepareSpectrogram();
  void DrawStatus(IGraphics& graphics);
  void DrawWaveform(IGraphics& graphics);
  void DrawTimeMarks(IGraphics& graphics);
  void DrawLevelMarks(IGraphics& graphics);
  void DrawSpectrogram(IGraphics& graphics);
  void DrawSpectrogramRow(IGraphics& graphics, const AlignedVector<float>& row, float x0, float x1);
  void DrawFrequencyMarks(IGraphics& graphics);

  FIRSpectrogram<float> mSpectrogram;  // the analysis, with its copy of the response
  int mSampleRate = 0;                 // of the displayed response
  std::mutex mMutex;                   // guards all other fields against the worker
  bool mComputing = false;             // the worker runs; compared without the lock

  IRECT mStatusRect;
  IText mTextComputing, mTextReady;  // styles of the status word
  IRECT mWaveRect;                   // upper panel
  IRECT mSpectrogramRect;            // lower panel
  IText mTextTime;                   // time labels; its colour draws the vertical marks
  IText mTextMarks;                  // dB and kHz labels; its colour draws the horizontal marks

  int mWaveCount = 0;             // points of the polyline, one per sample
  float mWaveLeft = 0.0f;         // left end of the axis
  float mWaveBottom = 0.0f;       // zero line of the waveform
  AlignedVector<float> mWaveX;    // per sample
  AlignedVector<float> mWaveY;    // per sample
  float mWaveScaleY = 0.0f;       // pixels per unit of amplitude, infinite for silence
  float mWaveScaleX = 0.0f;       // pixels per sample on a linear axis, for inspection only
  float mWaveLogStep = 0.0f;      // (e - 1) per sample of the response
  float mWaveWidth = 0.0f;        // length of the axis
  IColor mWaveColor;              // of the polyline
  int mColumnCount = 0;           // frames to draw
  int mBinCount = 0;              // rows per frame
  float mSpectrogramLeft = 0.0f;  // left end of the axis
  float mSpectrogramBottom = 0.0f;
  AlignedVector<float> mColumnX;     // left end per frame, whole numbers
  AlignedVector<float> mBinY;        // per bin
  AlignedVector<float> mColumnTime;  // seconds per frame
  float mMaxTime = 0.0f;             // seconds
  float mMinTimestep = 0.0f;         // seconds from frame to frame
  float mMinDB = 0.0f;               // shown black
  float mMaxDB = 0.0f;               // shown in full colour
  float mRangeDB = 0.0f;
  float mSpectrogramWidth = 0.0f;
  float mSpectrogramHeight = 0.0f;
  float mBinStep = 0.0f;      // pixels per bin
  float mTimeLogStep = 0.0f;  // (e - 1) per duration, per second
  IColor mSpectrogramColor;   // of the full level
};
