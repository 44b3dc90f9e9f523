// The editor's layout: which control stands where, for which parameter, in drawing order.
#include <memory>

#include "display/ITolmaraWaveformSpectrogram.h"
#include "graphics/PlatformGraphics.h"
#include "graphics/controls/ICircleKnobMultiControlText.h"
#include "graphics/controls/IControls.h"
#include "graphics/controls/IFaderMultiControlText.h"
#include "graphics/controls/ILinkControls.h"
#include "graphics/controls/IPopupMenuControls.h"
#include "plugin/Tolmara.h"

namespace {

constexpr int kEditorWidth = 960;
constexpr int kEditorHeight = 600;
constexpr const char* kBundleID = "com.Halden Merrow.vst.Tolmara";

struct BitmapFile {
  int id;
  const char* path;
  int frames;  // stacked vertically
};
constexpr BitmapFile kBackground = {101, "resources/img/Tolmara_v2_small.png", 1};
constexpr BitmapFile kCircle = {102, "resources/img/Circle_small.png", 1};
constexpr BitmapFile kDepthHandle = {103, "resources/img/Triangle_small.png", 1};
constexpr BitmapFile kSizeHandle = {104, "resources/img/TriangleUp_small.png", 1};
constexpr BitmapFile kDimSwitches[kNumDims] = {{105, "resources/img/V1_small.png", 2},
                                               {106, "resources/img/V2_small.png", 2},
                                               {107, "resources/img/V3_small.png", 2},
                                               {108, "resources/img/V4_small.png", 2},
                                               {109, "resources/img/V5_small.png", 2}};
constexpr BitmapFile kFastMode = {110, "resources/img/Fastmode_small.png", 2};

struct Knob {
  int param;
  int x, y, radius;  // centre, in window pixels
};
constexpr Knob kKnobs[] = {
    {kTimeDelay, 722, 149, 31},     {kTimeT0Percent, 722, 250, 31},
    {kTimeStretch, 799, 149, 31},   {kReversePercent, 874, 149, 31},
    {kTimeLinearity, 799, 250, 31}, {kTimeAttenuation, 874, 250, 31},
    {kPan, 722, 408, 30},           {kStereoHaas, 798, 408, 30},
    {kMix, 875, 408, 30},           {kGain, 875, 496, 30},
    {kStereoMidSide, 722, 496, 30}, {kStereoLeftRightPhase, 798, 496, 30},
    {kHighDecay, 568, 166, 32},     {kLowDecay, 568, 260, 32},
    {kLowCutFreq, 629, 200, 22},    {kLowCutQuality, 629, 262, 22},
};

// Rows of the dimensions.
constexpr int kFirstRow = 360;
constexpr int kRowDistance = 47;
constexpr int kFaderLeft = 120;
constexpr int kFaderLength = 364;
constexpr double kSizeTextDivisor = 2.5;
constexpr double kDepthTextDivisor = 4.0;

struct Link {
  IRECT rect;
  const char* url;
  const char* fallback;
  const char* failure;
};
constexpr Link kLinks[] = {
    {{701, 549, 896, 569},
     TOLMARA_SITE_URL "/about/",
     TOLMARA_SITE_URL "/",
     "Homepage unavailable"},
    {{565, 17, 631, 35},
     TOLMARA_SITE_URL "/tag/Tolmara/",
     TOLMARA_SITE_URL "/",
     "Homepage unavailable"},
    {{758, 17, 830, 35},
     TOLMARA_FORUM_URL "/board/3/tolmara",
     TOLMARA_FORUM_URL "/",
     "Forum page unavailable"},
};

constexpr IRECT kDisplayRect = {68, 44, 496, 306};
constexpr IRECT kWaveRect = {68, 44, 496, 160};
constexpr IRECT kSpectrogramRect = {68, 178, 496, 306};

constexpr IColor kCream = {255, 255, 231, 168};
constexpr IColor kAmber = {255, 255, 187, 0};

IText TextStyle(int size, const IColor& color) {
  IText text;
  text.mSize = size;
  text.mColor = color;
  return text;
}

const IText& KnobText() {
  static const IText text = TextStyle(12, kCream);
  return text;
}

IBitmap Load(IGraphics& graphics, const BitmapFile& file) {
  return graphics.LoadIBitmap(file.id, file.path, file.frames);
}

}  // namespace

void Tolmara::BuildEditor() {
  std::unique_ptr<IGraphics> graphics =
      MakePlatformGraphics(this, kEditorWidth, kEditorHeight, 0, kBundleID);
  graphics->HandleMouseOver(true);
  graphics->AttachBackground(kBackground.id, kBackground.path);
  AttachControls(*graphics);
  AttachGraphics(graphics.release());
}

void Tolmara::AttachControls(IGraphics& graphics) {
  DefineParam(kMaxFFTPow);
  graphics.AttachControl(new IFFTSizePopupMenu(this, {610, 125, 655, 140}, kMaxFFTPow));
  for (const Knob& knob : kKnobs) {
    DefineParam(knob.param);
    AttachKnob(graphics, knob.param, knob.x, knob.y, knob.radius, KnobText());
  }
  Load(graphics, kCircle);  // kept: loaded for no control, as the last
  const IBitmap depthHandle = Load(graphics, kDepthHandle);
  const IBitmap sizeHandle = Load(graphics, kSizeHandle);
  IBitmap switches[kNumDims];
  for (int d = 0; d < kNumDims; ++d) switches[d] = Load(graphics, kDimSwitches[d]);
  Load(graphics, kFastMode);
  DefineParam(kRenderMode);
  graphics.AttachControl(new IComputeModePopupMenu(this, {855, 343, 893, 355}, kRenderMode));
  DefineParam(kNormalizationMode);
  graphics.AttachControl(new INormModePopupMenu(this, {707, 343, 740, 355}, kNormalizationMode));
  for (int d = 0; d < kNumDims; ++d) {
    AttachDimension(graphics, d, switches[d], sizeHandle, depthHandle);
  }
  DefineParam(kDummyVar);
  AttachDisplayAndLinks(graphics);
}

void Tolmara::AttachKnob(IGraphics& graphics, int param, int x, int y, int radius,
                         const IText& text) {
  auto knob =
      std::make_unique<ICircleKnobMultiControlText>(this, param, x, y, radius, text, kAmber);
  knob->DisablePrompt(false);
  graphics.AttachControl(knob.release());
}

void Tolmara::AttachDimension(IGraphics& graphics, int d, const IBitmap& onOff,
                              const IBitmap& sizeHandle, const IBitmap& depthHandle) {
  static const IText faderText = TextStyle(11, kColorWhite);
  static const IText reflectionText = TextStyle(11, kCream);
  const int y = kFirstRow + kRowDistance * d;
  const auto defined = [this, d](DimField field) {
    DefineParam(DimParam(d, field));
    return DimParam(d, field);
  };
  const auto attachFader = [&](int top, DimField field, const IBitmap& handle, double divisor) {
    graphics.AttachControl(new IFaderMultiControlText(this, kFaderLeft, top, kFaderLength,
                                                      defined(field), handle, kHorizontal, true,
                                                      faderText, divisor));
  };
  graphics.AttachControl(new ISwitchControl(this, 60, y - 16, defined(kDimEnabled), onOff));
  attachFader(y - 24, kDimSize, sizeHandle, kSizeTextDivisor);
  attachFader(y, kDimDepth, depthHandle, kDepthTextDivisor);
  AttachKnob(graphics, defined(kDimRefl), 512, y, 20, reflectionText);
}

void Tolmara::AttachDisplayAndLinks(IGraphics& graphics) {
  const int rate = static_cast<int>(GetSampleRate());
  AlignedVector<float> singleTap(1, 1.0f);
  auto display = std::make_unique<ITolmaraWaveformSpectrogram>(
      this, kDisplayRect, kWaveRect, kSpectrogramRect, TextStyle(14, IColor(255, 100, 255, 105)),
      rate != 0 ? rate : kFallbackSampleRate, singleTap);
  for (const Link& link : kLinks) {
    graphics.AttachControl(new IURLControl(this, link.rect, link.url, link.fallback, link.failure));
  }
  for (int id = kFirstFutureParam; id < kNumParams; ++id) DefineParam(id);
  mDisplay = display.get();
  graphics.AttachControl(display.release());
}
