#include "formats/calendar.h"

#include <gtest/gtest.h>

using vexa::formats::dateOfSeconds;
using vexa::formats::secondsOfDate;

TEST(Calendar, DatesAndSecondsAreEachOthersInverse) {
  EXPECT_EQ(secondsOfDate("1970-01-02"), 86400);
  EXPECT_EQ(secondsOfDate("2000-02-29T12:30Z"), 951827400);
  for (const char* text :
       {"1969-12-31T23:59:59Z", "2024-03-01T12:30:05Z", "2038-01-19T03:14:08Z"}) {
    EXPECT_EQ(dateOfSeconds(secondsOfDate(text).value()), text);
  }
}

TEST(Calendar, WhatTheCalendarDoesNotHaveIsNoDate) {
  for (const char* text : {"2023-02-29", "2024-04-31", "2024-13-01", "2024-01-01T25:00",
                           "yesterday", "", "2024-01-01 and more"}) {
    EXPECT_FALSE(secondsOfDate(text)) << text;
  }
}
