#include "vexa/support/UxThrow.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

#include "tests/helpers/compare.h"

namespace {

using namespace Norvel;
using vexa::tests::whatOf;

TEST(UxThrow, NullMessagesReadAsException) {
  EXPECT_EQ(whatOf([] { UxThrow::Signal(nullptr); }), "exception");
  EXPECT_EQ(whatOf([] { UxThrow::SignalFalse(nullptr); }), "exception (assertion failed)");
  EXPECT_EQ(whatOf([] { UxThrow::SignalNULL(nullptr); }), "exception (pointer is NULL)");
  EXPECT_EQ(whatOf([] { UxThrow::SignalError(3, nullptr); }), "exception (error #3)");
}

TEST(UxThrow, OnlyChecksReadTheirMessageAsAFormatAndOnlyFailedOnesThrow) {
  EXPECT_EQ(whatOf([] { UxThrow::SignalFalse("50 %d"); }), "50 %d (assertion failed)");
  EXPECT_EQ(whatOf([] { UxThrow::IfFalse(false, "5%% of %d", 8); }), "5% of 8 (assertion failed)");
  EXPECT_EQ(whatOf([] { UxThrow::IfNULL(nullptr, "no %c", 'p'); }), "no p (pointer is NULL)");
  EXPECT_EQ(whatOf([] { UxThrow::IfFalse(true, "x"), UxThrow::IfNULL("", "x"); }),
            "nothing was thrown");
}

TEST(UxThrow, AFailedAssertionNamesOnlyTheFile) {
  EXPECT_EQ(whatOf([] { UxThrow::FailedAssertion("n > 0", "Mesh", 120); }),
            "$s:$u: failed assertion 'Mesh'");
  EXPECT_THROW(UxThrow::FailedAssertion("n > 0", "Mesh", 120), std::runtime_error);
}

TEST(UxThrow, LongTextsAreCutBeforeTheirSuffix) {
  const std::string text(3000, 'x');
  EXPECT_EQ(whatOf([&] { UxThrow::IfFalse(false, "%s", text.c_str()); }),
            text.substr(0, 1023) + " (assertion failed)");
  EXPECT_EQ(whatOf([&] { UxThrow::SignalFmt("%s", text.c_str()); }), text.substr(0, 2047));
  EXPECT_EQ(whatOf([&] { UxThrow::Signal(text.c_str()); }), text);
}

// A wide character that has no encoding makes printf fail.
TEST(UxThrow, AFormatThatPrintfRefusesIsThrownAsItStands) {
  const wchar_t noCharacter[] = {L'a', static_cast<wchar_t>(0x7fffffff), L'\0'};
  EXPECT_EQ(whatOf([&] { UxThrow::IfFalse(false, "wide %ls", noCharacter); }),
            "wide %ls (assertion failed)");
}

}  // namespace
