// Ranges, tapers and texts of parameters.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "iplug/IParam.h"
#include "iplug/Numbers.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

std::string Display(const IParam& param, double value, bool normalized = false,
                    bool withText = true) {
  char text[IParam::kTextSize + 1];
  std::memset(text, '#', sizeof text);
  param.GetDisplayForHost(value, normalized, text, withText);
  EXPECT_EQ(text[IParam::kTextSize], '#') << "written past the end";
  return text;
}

IParam Double(double lo, double hi, double step, double shape = 1.0) {
  IParam param;
  param.InitDouble("x", lo, lo, hi, step, "unit");
  param.SetShape(shape);
  return param;
}

IParam Int(int lo, int hi) {
  IParam param;
  param.InitInt("x", lo, lo, hi);
  return param;
}

TEST(IParam, RangesAreNeverEmpty) {
  IParam list;
  list.InitEnum("x", 0, 1);
  for (const auto& [param, least, most] :
       {std::tuple{Int(5, 5), 5.0, 6.0}, {list, 0.0, 1.0}, {Double(2, 2, 0.25), 2.0, 2.25}}) {
    double lo = 0;
    double hi = 0;
    param.GetBounds(&lo, &hi);
    EXPECT_EQ(lo, least);
    EXPECT_EQ(hi, most);
  }
}

TEST(IParam, PrecisionShowsEveryStepUpToSixDecimals) {
  const struct {
    double step;
    std::size_t precision;
  } kCases[] = {{1, 0},        {10, 0},      {0.1, 1},         {0.25, 2},
                {0.01, 2},     {0.001, 3},   {0.0001, 4},      {0.00001, 5},
                {0.000001, 6}, {1.0 / 3, 6}, {0.0000000001, 6}};
  for (const auto& c : kCases) {
    char text[IParam::kTextSize];
    Double(0, 10, c.step).GetDisplayForHost(0.0, false, text);
    EXPECT_EQ(std::string(text), c.precision ? "0." + std::string(c.precision, '0') : "0")
        << c.step;
  }
}

TEST(IParam, TaperMapsBothWaysAndOnlyDoublesKeepValuesBetweenSteps) {
  IParam param = Double(0, 1, 0.01, 2.0);
  param.SetNormalized(0.5);
  EXPECT_EQ(param.Value(), 0.25);
  EXPECT_EQ(param.GetNormalized(), 0.5);
  param.SetNormalized(1.0);
  EXPECT_EQ(param.GetNormalized(), 1.0);
  param.SetShape(0.0);
  EXPECT_EQ(param.GetNormalized(0.25), 0.5) << "a shape of zero is ignored";
  IParam integer = Int(0, 3);
  integer.SetNormalized(0.5);
  EXPECT_EQ(integer.Value(), 2.0);
}

TEST(IParam, ValuesFromOutsideSaturateAndTheNextGoodOneRestores) {
  IParam param = Double(-6, -0.1, 0.01);
  for (const double bad : {kNaN, kInf, -kInf, 1e300, -1e300}) {
    param.Set(bad);
    EXPECT_TRUE(param.Value() >= -6.0 && param.Value() <= -0.1) << bad;
    param.SetNormalized(bad);
    EXPECT_TRUE(param.Value() <= -0.1) << bad;
    EXPECT_TRUE(param.GetNormalized() >= 0.0 && param.GetNormalized() <= 1.0) << bad;
    for (const bool normalized : {false, true}) EXPECT_NE(Display(param, bad, normalized), "");
    param.SetNormalized(0.5);
    EXPECT_DOUBLE_EQ(param.Value(), -3.05);
  }
  param.SetNormalized(-0.5);
  EXPECT_LT(param.Value(), -6.0) << "only the upper bound clamps a normalised value";
}

TEST(IParam, TheFirstInitDecidesTheKind) {
  IParam param = Int(0, 5);
  param.InitDouble("second", 0.5, 0, 2, 0.25, "", "");
  EXPECT_EQ(param.Type(), kTypeInt);
  EXPECT_STREQ(param.GetNameForHost(), "second");
  EXPECT_EQ(param.GetDefault(), 0.5);
  param.SetNormalized(0.4);
  EXPECT_DOUBLE_EQ(param.Value(), 0.75);
  EXPECT_EQ(Display(param, 1.25), "1.25");
}

TEST(IParam, TextsAreThoseOfTheTruncatedValueElseTheNumber) {
  IParam named;
  named.InitBool("x", true, "unit", "");
  named.SetDisplayText(1, "later");
  named.SetDisplayText(3, "");
  IParam negated = Double(-6, 0, 0.01);
  negated.NegateDisplay(true);
  const struct {
    const IParam param;
    double value;
    bool normalized, withText;
    const char* text;
  } kCases[] = {{named, 1, false, true, "on"},  // the first text of a value wins
                {named, 0.99, false, true, "off"},
                {named, 1, false, false, "1"},
                {named, 3, false, true, "3"},
                {Double(-1, 1, 1), -0.9, false, false, "0"},
                {Double(0, 1, 1), 0.9, false, true, "0"},
                {Double(0, 1, 0.01), 0.995001, false, true, "1.00"},
                {Double(0, 10, 0.1, 2.0), 0.5, true, true, "2.5"},
                {negated, -1.5, false, true, "1.50"}};
  for (const auto& c : kCases)
    EXPECT_EQ(Display(c.param, c.value, c.normalized, c.withText), c.text) << c.value;
  EXPECT_STREQ(named.GetLabelForHost(), "") << "a named state has no unit";
  EXPECT_STREQ(negated.GetLabelForHost(), "unit");
  int value = 0;
  EXPECT_TRUE(named.MapDisplayText("later", &value));
  EXPECT_EQ(value, 1);
  EXPECT_FALSE(named.MapDisplayText("On", &value));
  EXPECT_STREQ(named.GetDisplayTextAtIdx(2, &value), "later");
  for (const int idx : {-1, 4}) EXPECT_STREQ(named.GetDisplayTextAtIdx(idx), "");
}

TEST(IParam, LongTextIsCutWithItsEndMark) {
  const std::string longName(40, 'n');
  const std::string cut(31, 'n');
  IParam param;
  param.InitDouble(longName.c_str(), 0, 0, 1e30, 0.01, longName.c_str(), longName.c_str());
  param.SetDisplayText(7, longName.c_str());
  for (const std::string text : {param.GetNameForHost(), param.GetLabelForHost(),
                                 param.GetParamGroupForHost(), param.GetDisplayText(7)})
    EXPECT_EQ(text, cut);
  EXPECT_EQ(Display(param, 7.0), cut);
  EXPECT_EQ(Display(param, 1e300).size(), 31U);
}

TEST(Numbers, ReadingIsAsLenientAsTheLibrarysOwn) {
  std::string beyond(400, '9');
  beyond += ".0";
  const std::string tiny = "0." + std::string(400, '0') + "1";
  const char* kTexts[] = {"1.5",       " \t\n-2.25dB", "+3",   "",      "abc",   "-",
                          "+-1",       "--1",          ".5",   "5.",    "1e3x",  "1e",
                          "1e+",       "inf",          "-inf", "  ",    "-0.0",  "1e400",
                          "-1e400",    "1e-400",       "0x",   "12 34", "1.2.3", beyond.c_str(),
                          tiny.c_str()};
  for (const char* text : kTexts) {
    EXPECT_EQ(NumberFromText(text), std::atof(text)) << text;
    EXPECT_EQ(std::signbit(NumberFromText(text)), std::signbit(std::atof(text))) << text;
  }
  EXPECT_EQ(NumberFromText(nullptr), 0.0);
  EXPECT_TRUE(std::isnan(NumberFromText("nan")));
}

TEST(Numbers, ConversionsToIntegersSaturate) {
  EXPECT_EQ(SaturateToInt(std::int64_t{1} << 40), INT_MAX);
  EXPECT_EQ(SaturateToInt(-(std::int64_t{1} << 40)), INT_MIN);
}

}  // namespace
