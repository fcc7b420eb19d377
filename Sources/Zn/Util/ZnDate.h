//===- ZnDate.h - Gregorian calendar fields and points in time ------------===//
#pragma once
#include "Zn/Base/ZnObject.h"

namespace Zn {
class String;

/// Seconds from the Unix epoch to the reference instant of absolute times,
/// 2001-01-01 00:00:00 UTC.
constexpr double kAbsoluteTimeOffset = 978307200.0;

/// The plain calendar record. timeZoneOffset is in seconds east of UTC.
struct BaseGregorianDate {
  int32_t year = 2001;
  uint8_t month = 1;
  uint8_t day = 1;
  uint8_t hour = 0;
  uint8_t minute = 0;
  double second = 0;
  double timeZoneOffset = 0;
};

/// Calendar fields with the conversions to and from absolute time (seconds
/// since the reference instant) under the Gregorian leap rule.
class GregorianDate : public BaseGregorianDate {
public:
  GregorianDate() = default;
  explicit GregorianDate(const BaseGregorianDate& theFields) : BaseGregorianDate(theFields) {}
  GregorianDate(int32_t theYear, uint8_t theMonth, uint8_t theDay, uint8_t theHour = 0, uint8_t theMinute = 0,
                double theSecond = 0, double theTimeZoneOffset = 0);
  /// The calendar reading of an absolute time at the given offset.
  GregorianDate(double theAbsoluteTime, double theTimeZoneOffset);

  /// The absolute time of the fields; the month must be 1-12.
  double getAbsoluteTime() const;
  /// Year at most 9999, month 1-12, day 1-31, hour <= 23, minute <= 59 and
  /// 0 <= second <= 60.
  bool isValid() const;
  /// Reads "YYYY-MM-DDTHH:MM:SS" or any leading part of it (separators
  /// optional, "T" in either case). The fields not read are reset, the
  /// offset becomes 0. False, with the fields untouched, without a year.
  bool parse(const String& theString);
  /// +1. "YYYY-MM-DDTHH:MM:SSZ" with the seconds rounded; null when the
  /// fields are not valid.
  String* createISOString() const;
  /// Writes the ISO text, or "%d-%02d-%02d %02d:%02d:%2.2f" when the
  /// fields are not valid.
  void writeText(Writer* theWriter) const;
};

/// An immutable point in time with the calendar reading it was made with.
class Date : public Object, public BaseGregorianDate {
public:
  /// The instant the fields name.
  explicit Date(const BaseGregorianDate& theFields);
  /// The instant, read at the given offset.
  explicit Date(double theAbsoluteTime, double theTimeZoneOffset = 0);
  /// +1. Whole seconds from time(); read in the local zone when asked.
  static Date* createNow(bool theLocalZone = false);
  /// +1. To the microsecond; read in UTC.
  static Date* createPreciseNow();
  /// +1. The date the text names (see GregorianDate::parse), or null.
  static Date* createWithString(const String* theString);
  /// The local offset in seconds east of UTC at the given Unix time.
  static double getLocalTimeZoneOffset(double theUnixTime);

  double getAbsoluteTime() const { return absoluteTime_; }
  GregorianDate getGregorianDate() const { return GregorianDate(static_cast<const BaseGregorianDate&>(*this)); }

  /// Same instant, whatever the offsets.
  bool isEqual(const Object* theOther) const override;
  int32_t compare(const Object* theOther) const override;
  uint32_t hash() const override;
  /// The ISO text of the instant in UTC.
  void writeDescription(Writer* theWriter) const override;
  const char* className() const override;
  const char* superclassName() const override;

private:
  double absoluteTime_;
};
} // namespace Zn
