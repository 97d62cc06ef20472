#pragma once

#include "vexa/Export.h"
#include "vexa/host/IZelTime.h"

namespace Norvel::Vexa {

/// The library's own calendar date and time: five fields, stored as given, without a range check.
///
/// A new one reads 2008-01-01 00:00.
class VEXA_EXPORT XCTimeImpl : public UxZel::IZelTime {
 public:
  XCTimeImpl() = default;
  ~XCTimeImpl() override = default;

  int getMonth() const override { return mMonth; }
  void setMonth(int month) override { mMonth = month; }
  int getDay() const override { return mDay; }
  void setDay(int day) override { mDay = day; }
  int getHour() const override { return mHour; }
  void setHour(int hour) override { mHour = hour; }
  int getMinute() const override { return mMinute; }
  void setMinute(int minute) override { mMinute = minute; }
  int getYear() const override { return mYear; }
  void setYear(int year) override { mYear = year; }

 private:
  int mMinute = 0;
  int mHour = 0;
  int mDay = 1;
  int mMonth = 1;
  int mYear = 2008;
};

}  // namespace Norvel::Vexa
