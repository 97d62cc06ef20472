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
  void setMonth(int inMonth) override { mMonth = inMonth; }
  int getDay() const override { return mDay; }
  void setDay(int inDay) override { mDay = inDay; }
  int getHour() const override { return mHour; }
  void setHour(int inHour) override { mHour = inHour; }
  int getMinute() const override { return mMinute; }
  void setMinute(int inMinute) override { mMinute = inMinute; }
  int getYear() const override { return mYear; }
  void setYear(int inYear) override { mYear = inYear; }

 private:
  int mMinute = 0;
  int mHour = 0;
  int mDay = 1;
  int mMonth = 1;
  int mYear = 2008;
};

}  // namespace Norvel::Vexa
