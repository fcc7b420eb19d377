//===- ZnDateTest.cpp - Gregorian conversions, ISO text and parsing --------===//
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Util/ZnDate.h"
#include <ctime>

using namespace Zn;

namespace {
using ZnTest::Describe;
class DateTest : public ZnTest::LeakCheckedTest {};

std::string Fields(const GregorianDate& theDate) {
  char text[64];
  std::snprintf(text, sizeof text, "%d-%02d-%02d %02d:%02d:%g", theDate.year, theDate.month, theDate.day,
                theDate.hour, theDate.minute, theDate.second);
  return text;
}
} // namespace

TEST_F(DateTest, FieldsAndAbsoluteTimesConvertBothWays) {
  struct Case { GregorianDate fields; double absolute; };
  const Case cases[] = {
      {{2001, 1, 1}, 0},
      {{2000, 12, 31}, -86400},
      {{2000, 1, 1}, -366 * 86400.0},            // 2000 is a leap year
      {{2004, 3, 1}, (365 * 3 + 31 + 29) * 86400.0},
      {{1900, 3, 1}, -(100 * 365 + 25 + 306) * 86400.0}, // 1900 is not
      {{1970, 1, 1}, -978307200.0},              // the Unix epoch
      {{1601, 1, 1}, -146097 * 86400.0},         // one 400-year cycle back
      {{2001, 1, 1, 0, 0, 0, 3600}, -3600},      // an hour east of UTC
      {{2000, 12, 31, 23, 59, 30}, -30},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(c.fields.getAbsoluteTime(), c.absolute) << Fields(c.fields);
    GregorianDate back(c.absolute, c.fields.timeZoneOffset);
    EXPECT_EQ(Fields(back), Fields(c.fields));
  }
}

TEST_F(DateTest, ISOTextRoundsSecondsAndNeedsValidFields) {
  EXPECT_EQ(ZnTest::Utf8(adopt(GregorianDate(2001, 2, 3, 4, 5, 6.4).createISOString()).get()), "2001-02-03T04:05:06Z");
  EXPECT_EQ(ZnTest::Utf8(adopt(GregorianDate(2001, 2, 3, 4, 5, 59.6).createISOString()).get()), "2001-02-03T04:05:60Z");
  EXPECT_EQ(ZnTest::Utf8(adopt(GregorianDate(2001, 2, 3, 4, 5, 6.5).createISOString()).get()), "2001-02-03T04:05:07Z");
  EXPECT_EQ(GregorianDate(10000, 1, 1).createISOString(), nullptr);
  EXPECT_EQ(GregorianDate(2001, 1, 1, 24).createISOString(), nullptr);
  EXPECT_EQ(GregorianDate(2001, 1, 1, 0, 0, 60.5).createISOString(), nullptr);
}

TEST_F(DateTest, DescriptionIsUTCOrThePlainForm) {
  EXPECT_EQ(Describe(adopt(new Date(0.0)).get()), "2001-01-01T00:00:00Z");
  // Made an hour east of UTC: described as the UTC reading.
  EXPECT_EQ(Describe(adopt(new Date(GregorianDate(2001, 1, 1, 1, 0, 0, 3600))).get()), "2001-01-01T00:00:00Z");
  EXPECT_EQ(Describe(adopt(new Date(GregorianDate(10000, 1, 2, 3, 4, 5.25))).get()), "10000-01-02 03:04:5.25");
}

TEST_F(DateTest, ParseKeepsTheLeadingParts) {
  struct Case { const char* text; bool parsed; const char* fields; };
  const Case cases[] = {
      {"2001-02-03", true, "2001-02-03 00:00:0"},
      {"2001-02-03T04:05:06", true, "2001-02-03 04:05:6"},
      {"20010203T0405", true, "2001-02-03 04:05:0"},  // separators are optional
      {"1999-12", true, "1999-12-01 00:00:0"},
      {"1999-1", true, "1999-01-01 00:00:0"},         // a single digit is no month
      {"2001-02-03T04:05:06Z", true, "2001-02-03 04:05:6"},
      {"2001", false, ""},                            // a year alone is too short
      {"20x1-02-03", false, ""},
      {"", false, ""},
  };
  for (const Case& c : cases) {
    GregorianDate date;
    EXPECT_EQ(date.parse(*adopt(new String(c.text))), c.parsed) << c.text;
    if (c.parsed) {
      EXPECT_EQ(Fields(date), c.fields) << c.text;
    }
  }
  auto date = adopt(Date::createWithString(adopt(new String("2001-02-03")).get()));
  EXPECT_EQ(date->getAbsoluteTime(), 33 * 86400.0);
  EXPECT_EQ(date->timeZoneOffset, 0);
}

TEST_F(DateTest, NowAgreesWithTheSystemClock) {
  auto now = adopt(Date::createNow());
  double expected = double(std::time(nullptr)) - kAbsoluteTimeOffset;
  EXPECT_NEAR(now->getAbsoluteTime(), expected, 2);
  EXPECT_EQ(now->getAbsoluteTime(), double(int64_t(now->getAbsoluteTime())));
  EXPECT_NEAR(adopt(Date::createPreciseNow())->getAbsoluteTime(), expected, 2);
  EXPECT_LT(now->compare(adopt(new Date(now->getAbsoluteTime() + 1)).get()), 0);
  EXPECT_TRUE(now->isEqual(adopt(new Date(now->getAbsoluteTime(), 7200)).get()));
}

using DateDeathTest = DateTest;

TEST_F(DateDeathTest, MonthOutOfRangeIsReported) {
  EXPECT_EXIT(GregorianDate(2001, 13, 1).getAbsoluteTime(), testing::ExitedWithCode(255),
              "\\(theMonth > 0\\) && \\(theMonth < 13\\)");
}
