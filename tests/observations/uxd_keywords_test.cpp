// Tests of the table of UXD header keywords: what each keyword sets and the lines no keyword opens.
#include "observations/uxd_keywords.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace corvinet {
namespace {

// Applies the keyword line `text` (type character left off) with the value
// `value`, numbers read as `number`; records whether the number was required.
UxdExperiment Apply(const std::string& text, const std::string& value, float number,
                    std::vector<bool>* required = nullptr) {
  UxdExperiment e;
  const UxdKeyword* k = FindUxdKeyword(text);
  EXPECT_NE(k, nullptr) << text;
  if (k == nullptr || k->action == nullptr) return e;
  k->action(e, UxdValue{value, [&](bool r) {
                          if (required != nullptr) required->push_back(r);
                          return number;
                        }});
  return e;
}

TEST(UxdKeywords, TextKeywordsKeepTheirValue) {
  EXPECT_EQ(Apply("FILENAME = 'a.raw'", "a.raw", 0).fileName, "a.raw");
  EXPECT_EQ(Apply("SAMPLE = 'quartz'", "quartz", 0).sample, "quartz");
  EXPECT_EQ(Apply("SA quartz", "quartz", 0).sample, "quartz");
  EXPECT_EQ(Apply("DATE = 1/2/99", "1/2/99", 0).date, "1/2/99");
  EXPECT_EQ(Apply("RUNTIME = 10:00", "10:00", 0).runTime, "10:00");
  EXPECT_EQ(Apply("ANODE = CU", "CU", 0).anode, "CU");
  EXPECT_EQ(Apply("ROTATION = ON", "ON", 0).rotation, "ON");
  EXPECT_EQ(Apply("STEPMODE = C", "C", 0).stepMode, "C");
}

TEST(UxdKeywords, NumberKeywordsSetTheirField) {
  EXPECT_EQ(Apply("WL1 = 1.54", "", 1.5f).wave1, 1.5f);
  EXPECT_EQ(Apply("WL2 = 1.54", "", 2.5f).wave2, 2.5f);
  EXPECT_EQ(Apply("WL3 = 1.39", "", 3.5f).wave3, 3.5f);
  EXPECT_EQ(Apply("WLRATIO = 0.5", "", 0.5f).waveRatio, 0.5f);
  EXPECT_EQ(Apply("STEPTIME = 2", "", 2.0f).stepTime, 2.0f);
  EXPECT_EQ(Apply("THETA = 7", "", 7.0f).omega, 7.0f);
  EXPECT_EQ(Apply("KHI = 8", "", 8.0f).chi, 8.0f);
  EXPECT_EQ(Apply("PHI = 9", "", 9.0f).phi, 9.0f);
  EXPECT_EQ(Apply("X= 1", "", 1.0f).tr1, 1.0f);
  EXPECT_EQ(Apply("Y= 2", "", 2.0f).tr2, 2.0f);
  EXPECT_EQ(Apply("KV= 40", "", 40.0f).kiloVolt, 40.0f);
  EXPECT_EQ(Apply("MA= 30", "", 30.0f).milliAmpere, 30.0f);
  EXPECT_EQ(Apply("HV= 1700", "", 1700.0f).highVoltage, 1700.0f);
  EXPECT_EQ(Apply("GAIN = 3", "", 3.0f).gain, 3.0f);
  EXPECT_EQ(Apply("LLD = 4", "", 4.0f).lowerLevel, 4.0f);
  EXPECT_EQ(Apply("ULD = 5", "", 5.0f).upperLevel, 5.0f);
}

TEST(UxdKeywords, GridAndConditionKeywordsMarkThatTheyWereGiven) {
  std::vector<bool> required;
  UxdExperiment e = Apply("STEPSIZE = 0.02", "", 0.02f, &required);
  EXPECT_EQ(e.step, 0.02f);
  EXPECT_TRUE(e.stepGiven);
  e = Apply("STEP = 0.03", "", 0.03f, &required);
  EXPECT_EQ(e.step, 0.03f);
  EXPECT_TRUE(e.stepGiven);
  e = Apply("START = 10", "", 10.0f, &required);
  EXPECT_EQ(e.start, 10.0f);
  EXPECT_TRUE(e.startGiven);
  EXPECT_EQ(required, (std::vector<bool>{true, true, true}));
  e = Apply("2THETA = 20", "", 20.0f, &required);
  EXPECT_EQ(e.twoTheta, 20.0f);
  EXPECT_TRUE(e.twoThetaGiven);
  e = Apply("TEMP = 300", "", 300.0f, &required);
  EXPECT_EQ(e.temperature, 300.0f);
  EXPECT_TRUE(e.temperatureGiven);
  EXPECT_EQ(required, (std::vector<bool>{true, true, true, false, false}));
}

TEST(UxdKeywords, LongerWordsComeBeforeTheirStartsAndCaseDoesNotMatter) {
  const UxdKeyword* stepTime = FindUxdKeyword("steptime = 1");
  ASSERT_NE(stepTime, nullptr);
  EXPECT_STREQ(stepTime->word, "STEPTIME");
  const UxdKeyword* counts = FindUxdKeyword("COUNTS = 5");
  ASSERT_NE(counts, nullptr);
  EXPECT_STREQ(counts->word, "COUNTS");
  EXPECT_EQ(counts->action, nullptr);
  EXPECT_STREQ(FindUxdKeyword("STEPCOUNT = 5")->word, "STEPCOUN");
}

TEST(UxdKeywords, RecognisedButUnusedKeywordsHaveNoAction) {
  for (const char* text : {"DRIVE = 1", "CHANGER = 1", "COUNTER = 1", "DIVERGENCE = 1",
                           "OSCILLATION = 1", "STEPCOUNT = 1", "COUNTS = 1"}) {
    const UxdKeyword* k = FindUxdKeyword(text);
    ASSERT_NE(k, nullptr) << text;
    EXPECT_EQ(k->action, nullptr) << text;
  }
}

TEST(UxdKeywords, UnknownWordsAreNoKeyword) {
  EXPECT_EQ(FindUxdKeyword("WAVELENGTH = 1.5"), nullptr);
  EXPECT_EQ(FindUxdKeyword("MONOCHROMATOR = GE"), nullptr);
  EXPECT_EQ(FindUxdKeyword(""), nullptr);
}

}  // namespace
}  // namespace corvinet
