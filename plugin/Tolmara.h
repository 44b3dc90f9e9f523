// The plug-in: its parameters, the audio path, and the worker that renders a new response.
#pragma once

#include <memory>
#include <thread>

#include "convolution/ConvolutionPartitionedNonuniform.h"
#include "dsp/FIROrtho.h"
#include "dsp/StereoPanner.h"
#include "iplug/vst2/IPlugVST.h"
#include "numeric/AlignedVector.h"
#include "plugin/ChannelRing.h"
#include "plugin/ParamTable.h"
#include "plugin/StereoStages.h"

class IGraphics;
class ITolmaraWaveformSpectrogram;
struct IBitmap;
struct IText;

// One room dimension as its parameters set it.
struct DimSetting {
  bool enabled;
  int size;          // metres
  int depth;         // percent of the size
  float reflection;  // dB
};

// A stereo reverb whose response is computed from the room settings.
//
// The host's threads and the editor meet in the recursive lock of IPlugBase, held for a whole block
// and for every parameter change. A render runs on one worker thread at a time. It takes no lock
// but the display's mutex, which the audio path never takes, and owns mConvNext, mFIR and
// mRenderFailed while mWorkerIdle is false; the audio path keeps the response it has until the new
// one is finished, and exchanges two pointers between two blocks.
class Tolmara : public IPlugVST {
 public:
  // Builds the editor's objects, the presets and the first response: takes as long as one render.
  explicit Tolmara(audioMasterCallback hostCallback);
  // Waits for a running render, which can't be cancelled. Takes no lock.
  ~Tolmara() override;

  // Follows the host's rate and block size, and clears all signal memory. A change of either costs
  // the caller a whole render, under the lock. Any thread but the worker.
  void Reset() override;
  // Copies a parameter into its field and notes whether the response has to be rendered again.
  // Any thread but the worker.
  void OnParamChange(int paramIdx) override;
  // Runs nFrames samples, at most the block size, of two inputs to two outputs, exactly one block
  // later than they came in. Audio thread: allocates nothing and waits for the lock only, apart
  // from starting and joining the worker.
  void ProcessDoubleReplacing(double** inputs, double** outputs, int nFrames) override;

 private:
  friend class TolmaraProbe;  // tests of the hand-over between worker and audio thread

  static constexpr int kFallbackSampleRate = 44100;  // Hz, while the host has told none
  static constexpr int kFallbackBlockSize = 512;     // samples, likewise

  using Convolver = ConvolutionPartitionedNonuniform<float>;
  using ConvolverSet = AlignedVector<std::unique_ptr<Convolver>>;  // empty, or left and right

  // What one render works from, copied under the lock.
  struct RenderSettings {
    bool renderFast;
    bool normalizeRMS;
    int sampleRate;
    int blockSize;
    AlignedVector<DimSetting> dims;
    float timeStretch;
    float timeLinearity;
    float timeAttenuation;
    float lowDecay;
    float highDecay;
    int lowCutFreq;
    int lowCutTaps;
    float timeT0Percent;
    int maxFFTPow;
  };

  // Two flags in one word, so that the worker hands over in a single store.
  struct alignas(2) WorkerState {
    bool mWorkerIdle;   // no render is running
    bool mSwapPending;  // mConvNext holds a finished render
  };

  void DefineParam(int id);
  void MakeFactoryPresets();
  void CopyParams();
  // Copy one parameter into its field; true if the response depends on the change.
  bool StoreParam(int id);
  bool StoreDimParam(int id, int i, float f, bool b);
  void BuildEditor();
  void AttachControls(IGraphics& graphics);
  void AttachKnob(IGraphics& graphics, int param, int x, int y, int radius, const IText& text);
  void AttachDimension(IGraphics& graphics, int d, const IBitmap& onOff, const IBitmap& sizeHandle,
                       const IBitmap& depthHandle);
  void AttachDisplayAndLinks(IGraphics& graphics);

  void ReadHostFormat();
  void AllocateBuffers(int blockSize);
  void DestroyPanner();
  void BuildPanner();
  void SettleStages();
  int LeftDelay() const;    // ms
  int RightDelay() const;   // ms
  float LeftGain() const;   // dB
  float RightGain() const;  // dB
  void ProcessWet();
  void Convolve();

  // Audio thread, with the lock held, at the start of every block: starts a render or swaps a
  // finished one in.
  void ServiceWorker();
  void StartWorker();
  RenderSettings CurrentSettings() const;
  // Builds a new pair and then exchanges it for the target set, or leaves that for want of memory.
  // Worker thread with mConvNext, or synchronously with mConvActive.
  void RenderResponse(const RenderSettings& settings, ConvolverSet& target);
  ConvolverSet BuildConvolvers(const RenderSettings& settings);  // two nulls without a room
  // The whole response, or an empty one if no dimension is enabled.
  AlignedVector<float> Response(const RenderSettings& settings);
  AlignedVector<float> Synthesise(const RenderSettings& settings,
                                  AlignedVector<DimProperties<float>>& room);
  void RenderNow();
  WorkerState LoadWorkerState() const;
  void StoreWorkerState(WorkerState state);

  ChannelRing mRingLeft, mRingRight;
  AlignedVector<float> mBlockDryLeft, mBlockDryRight;  // as they came in
  AlignedVector<float> mBlockWetLeft, mBlockWetRight;  // convolved, then through each stage
  std::unique_ptr<FIROrtho<float>> mFIR;               // kept between renders in "Fast" mode
  int mSampleRate = 0;                                 // Hz; what everything is built for
  int mBlockSize = 0;                                  // samples of one internal block
  int mMaxFFTPow = 0;
  int mTimeDelay = 0;  // ms
  float mTimeT0Percent = 0.0f;
  float mTimeStretch = 0.0f;
  float mReversePercent = 0.0f;  // also read by a running render, see RenderResponse
  float mTimeLinearity = 0.0f;
  float mTimeAttenuation = 0.0f;
  float mPan = 0.0f;            // dB
  int mStereoHaas = 0;          // ms
  float mMix = 0.0f;            // 0 dry to 1 wet
  float mGain = 0.0f;           // dB
  float mStereoMidSide = 0.0f;  // -1 mono to 1 side
  float mStereoLeftRightPhase = 0.0f;
  bool mRenderFast = false;
  bool mNormalizeRMS = false;
  float mHighDecay = 0.0f;  // dB per second
  float mLowDecay = 0.0f;   // dB per second
  int mLowCutFreq = 0;      // Hz
  int mLowCutTaps = 0;
  AlignedVector<DimSetting> mDims;  // always five
  std::unique_ptr<StereoPanner<float>> mPanner;
  // What the four stereo stages keep of the last block. The phase filter has memories as well and
  // so a struct of its own; width, gain and mix need only these settings and coefficients.
  float mPrevMidSide = 0.0f;
  float mPrevMidCoef = 0.5f;
  float mPrevSideCoef = 0.5f;
  PhaseFilterState mPhaseFilter;
  float mPrevGain = 1.0f;  // linear
  float mPrevMix = 1.0f;
  ConvolverSet mConvActive;    // what sounds; two nulls without a room
  ConvolverSet mConvNext;      // the last render, or the pair that the last swap retired
  bool mFirDirty = false;      // settings changed since a worker last began; Reset leaves it set
  bool mRenderFailed = false;  // the last render had no memory; the worker's while it runs
  WorkerState mWorkerState = {true, false};  // stored by the worker, read by the audio thread
  std::thread mWorker;
  ITolmaraWaveformSpectrogram* mDisplay = nullptr;  // owned by the graphics object
};
