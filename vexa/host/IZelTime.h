#pragma once

#include "vexa/Export.h"

namespace UxZel {

/// A calendar date and time, read and written field by field; nothing is checked.
///
/// Positions of virtual operations are fixed; the destructor comes last.
class VEXA_EXPORT IZelTime {
 public:
  virtual int getMonth() const = 0;  ///< 1 to 12
  virtual void setMonth(int month) = 0;
  virtual int getDay() const = 0;  ///< day of the month, from 1
  virtual void setDay(int day) = 0;
  virtual int getHour() const = 0;
  virtual void setHour(int hour) = 0;
  virtual int getMinute() const = 0;
  virtual void setMinute(int minute) = 0;
  virtual int getYear() const = 0;  ///< full year, such as 2024
  virtual void setYear(int year) = 0;
  virtual ~IZelTime() = default;
};

}  // namespace UxZel
