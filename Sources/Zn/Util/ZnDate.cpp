//===- ZnDate.cpp - Gregorian calendar fields and points in time ----------===//
#include "Zn/Util/ZnDate.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnString.h"
#include "Zn/IO/ZnWriter.h"
#include "Zn/Util/ZnUtil.h"
#include <cmath>
#include <ctime>

namespace Zn {

//===--- Calendar arithmetic -------------------------------------------------===//

static constexpr int32_t kDaysBeforeMonth[13] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};
static constexpr int64_t kDaysIn400Years = 146097;

static bool IsLeapYear(int32_t theYear) {
  return (theYear % 4 == 0 && theYear % 100 != 0) || theYear % 400 == 0;
}

static int32_t DaysInYear(int32_t theYear) { return IsLeapYear(theYear) ? 366 : 365; }

static int64_t FloorDivide(int64_t theA, int64_t theB) { return theA / theB - (theA % theB < 0 ? 1 : 0); }

// Leap years from year 1 up to theYear, counted on through zero and below.
static int64_t LeapYearsThrough(int64_t theYear) {
  return FloorDivide(theYear, 4) - FloorDivide(theYear, 100) + FloorDivide(theYear, 400);
}

// Days from 2001-01-01 to January 1 of theYear: negative for 2000 and earlier.
static int64_t DaysBeforeYear(int32_t theYear) {
  return 365 * (int64_t(theYear) - 2001) + LeapYearsThrough(int64_t(theYear) - 1) - LeapYearsThrough(2000);
}

static int32_t DaysBeforeMonth(int32_t theYear, int32_t theMonth) {
  return kDaysBeforeMonth[theMonth - 1] + (theMonth > 2 && IsLeapYear(theYear) ? 1 : 0);
}

static double AbsoluteTimeFromFields(int32_t theYear, uint8_t theMonth, uint8_t theDay, uint8_t theHour,
                                     uint8_t theMinute, double theSecond, double theTimeZoneOffset) {
  ZnAssert((theMonth > 0) && (theMonth < 13), theMonth);
  int64_t days = DaysBeforeYear(theYear) + DaysBeforeMonth(theYear, theMonth) + theDay - 1;
  return double(days) * 86400 + theHour * 3600 + theMinute * 60 + theSecond - theTimeZoneOffset;
}

//===--- GregorianDate -------------------------------------------------------===//

GregorianDate::GregorianDate(int32_t theYear, uint8_t theMonth, uint8_t theDay, uint8_t theHour, uint8_t theMinute,
                             double theSecond, double theTimeZoneOffset)
    : BaseGregorianDate{theYear, theMonth, theDay, theHour, theMinute, theSecond, theTimeZoneOffset} {}

GregorianDate::GregorianDate(double theAbsoluteTime, double theTimeZoneOffset) {
  double local = theAbsoluteTime + theTimeZoneOffset;
  int64_t days = int64_t(std::floor(local / 86400));
  // Whole 400-year cycles first, so that distant dates take no long walk.
  int64_t remaining = days;
  int32_t theYear = 2001;
  if (remaining < 0) {
    int64_t cycles = FloorDivide(remaining, kDaysIn400Years);
    remaining -= cycles * kDaysIn400Years;
    theYear += int32_t(cycles * 400);
  }
  theYear += int32_t(remaining / kDaysIn400Years * 400);
  remaining %= kDaysIn400Years;
  while (remaining >= DaysInYear(theYear))
    remaining -= DaysInYear(theYear++);
  int32_t theMonth = 12;
  while (DaysBeforeMonth(theYear, theMonth) > remaining)
    --theMonth;
  year = theYear;
  month = uint8_t(theMonth);
  day = uint8_t(remaining - DaysBeforeMonth(theYear, theMonth) + 1);
  double rest = local - double(days) * 86400;
  double hours = std::floor(rest / 3600);
  rest -= hours * 3600;
  double minutes = std::floor(rest / 60);
  hour = uint8_t(hours);
  minute = uint8_t(minutes);
  second = rest - minutes * 60;
  timeZoneOffset = theTimeZoneOffset;
}

double GregorianDate::getAbsoluteTime() const {
  return AbsoluteTimeFromFields(year, month, day, hour, minute, second, timeZoneOffset);
}

bool GregorianDate::isValid() const {
  return year <= 9999 && month >= 1 && month <= 12 && day >= 1 && day <= 31 && hour <= 23 && minute <= 59 &&
         second >= 0 && second <= 60;
}

bool GregorianDate::parse(const String& theString) {
  ZnIndex length = theString.length();
  ZnIndex at = 0;
  // The value of theCount digits at the cursor, or -1 (cursor unmoved).
  auto digits = [&](ZnIndex theCount) -> int32_t {
    if (at + theCount > length)
      return -1;
    int32_t value = 0;
    for (ZnIndex i = 0; i < theCount; ++i) {
      ZnUnichar c = theString.unitAt(at + i);
      if (c < '0' || c > '9')
        return -1;
      value = value * 10 + (c - '0');
    }
    at += theCount;
    return value;
  };
  if (length <= 4)
    return false;
  int32_t theYear = digits(4);
  if (theYear < 0)
    return false;
  *this = GregorianDate();
  year = theYear;
  // Each later part: an optional separator, then two digits.
  struct Part {
    char separator, alternative;
    uint8_t* field;
  };
  const Part parts[] = {{'-', '-', &month}, {'-', '-', &day}, {'T', 't', &hour}, {':', ':', &minute}};
  bool complete = true;
  for (const Part& part : parts) {
    if (at < length && (theString.unitAt(at) == part.separator || theString.unitAt(at) == part.alternative))
      ++at;
    int32_t value = digits(2);
    if (value < 0) {
      complete = false;
      break;
    }
    *part.field = uint8_t(value);
  }
  if (complete) {
    if (at < length && theString.unitAt(at) == ':')
      ++at;
    int32_t seconds = digits(2);
    if (seconds >= 0)
      second = seconds;
  }
  return true;
}

String* GregorianDate::createISOString() const {
  if (!isValid())
    return nullptr;
  return StringWithFormat("%04d-%02d-%02dT%02d:%02d:%02dZ", year, month, day, hour, minute,
                          int(std::round(second)));
}

void GregorianDate::writeText(Writer* theWriter) const {
  if (isValid()) {
    theWriter->putFormat("%04d-%02d-%02dT%02d:%02d:%02dZ", year, month, day, hour, minute, int(std::round(second)));
    return;
  }
  theWriter->putFormat("%d-%02d-%02d %02d:%02d:%2.2f", year, month, day, hour, minute, second);
}

//===--- Date ----------------------------------------------------------------===//

Date::Date(const BaseGregorianDate& theFields)
    : BaseGregorianDate(theFields), absoluteTime_(GregorianDate(theFields).getAbsoluteTime()) {}

Date::Date(double theAbsoluteTime, double theTimeZoneOffset)
    : BaseGregorianDate(GregorianDate(theAbsoluteTime, theTimeZoneOffset)), absoluteTime_(theAbsoluteTime) {}

double Date::getLocalTimeZoneOffset(double theUnixTime) {
  time_t now = time_t(theUnixTime);
  struct tm local, utc;
  localtime_r(&now, &local);
  utc = *std::gmtime(&now);
  // The two calendar readings of one instant differ by the offset.
  auto reading = [](const struct tm& theTime) {
    return AbsoluteTimeFromFields(theTime.tm_year + 1900, uint8_t(theTime.tm_mon + 1), uint8_t(theTime.tm_mday),
                                  uint8_t(theTime.tm_hour), uint8_t(theTime.tm_min), theTime.tm_sec, 0);
  };
  return reading(local) - reading(utc);
}

Date* Date::createNow(bool theLocalZone) {
  double unixTime = double(std::time(nullptr));
  return new Date(unixTime - kAbsoluteTimeOffset, theLocalZone ? getLocalTimeZoneOffset(unixTime) : 0);
}

Date* Date::createPreciseNow() { return new Date(CurrentTime() - kAbsoluteTimeOffset); }

Date* Date::createWithString(const String* theString) {
  GregorianDate fields;
  if (theString == nullptr || !fields.parse(*theString))
    return nullptr;
  return new Date(fields);
}

bool Date::isEqual(const Object* theOther) const {
  const Date* other = dynamic_cast<const Date*>(theOther);
  return other && other->absoluteTime_ == absoluteTime_;
}

int32_t Date::compare(const Object* theOther) const {
  const Date* other = dynamic_cast<const Date*>(theOther);
  if (other == nullptr)
    return Object::compare(theOther);
  return absoluteTime_ < other->absoluteTime_ ? -1 : absoluteTime_ > other->absoluteTime_ ? 1 : 0;
}

uint32_t Date::hash() const {
  double time = absoluteTime_ == 0 ? 0 : absoluteTime_; // -0 and 0 are one instant
  return HashMemory(&time, sizeof time);
}

void Date::writeDescription(Writer* theWriter) const {
  if (timeZoneOffset != 0) {
    GregorianDate(absoluteTime_, 0).writeText(theWriter);
    return;
  }
  getGregorianDate().writeText(theWriter);
}

const char* Date::className() const { return "Date"; }
const char* Date::superclassName() const { return "Object"; }
} // namespace Zn
