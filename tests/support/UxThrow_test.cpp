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

TEST(UxThrow, OnlyTheCheckingFunctionsReadTheirMessageAsAFormat) {
  EXPECT_EQ(whatOf([] { UxThrow::Signal("50 %d"); }), "50 %d");
  EXPECT_EQ(whatOf([] { UxThrow::SignalFalse("50 %d"); }), "50 %d (assertion failed)");
  EXPECT_EQ(whatOf([] { UxThrow::IfFalse(false, "50 %% of %d", 8); }),
            "50 % of 8 (assertion failed)");
  EXPECT_EQ(whatOf([] { UxThrow::IfNULL(nullptr, "%s : no %c", "Here", 'p'); }),
            "Here : no p (pointer is NULL)");
  EXPECT_EQ(whatOf([] { UxThrow::SignalFmt("%s", "100 %d"); }), "100 %d");
}

TEST(UxThrow, AFailedAssertionNamesOnlyTheFile) {
  EXPECT_EQ(whatOf([] { UxThrow::FailedAssertion("n > 0", "Mesh", 120); }),
            "$s:$u: failed assertion 'Mesh'");
}

TEST(UxThrow, PassedChecksReturn) {
  const int something = 0;
  EXPECT_NO_THROW(UxThrow::IfFalse(true, "fine"));
  EXPECT_NO_THROW(UxThrow::IfNULL(&something, "fine"));
  EXPECT_NO_THROW(UxThrow::IfHeapCorrupted(nullptr));
}

TEST(UxThrow, LongTextsAreCutBeforeTheirSuffix) {
  const std::string text(3000, 'x');
  const char* const t = text.c_str();
  EXPECT_EQ(whatOf([=] { UxThrow::IfFalse(false, "%s", t); }),
            std::string(1023, 'x') + " (assertion failed)");
  EXPECT_EQ(whatOf([=] { UxThrow::IfNULL(nullptr, "%s", t); }),
            std::string(1023, 'x') + " (pointer is NULL)");
  EXPECT_EQ(whatOf([=] { UxThrow::SignalFmt("%s", t); }), std::string(2047, 'x'));
  EXPECT_EQ(whatOf([=] { UxThrow::Signal(t); }), text);
}

// A wide character that has no encoding makes printf fail.
TEST(UxThrow, AFormatThatPrintfRefusesIsThrownAsItStands) {
  const wchar_t noCharacter[] = {L'a', static_cast<wchar_t>(0x7fffffff), L'\0'};
  EXPECT_EQ(whatOf([&] { UxThrow::IfFalse(false, "wide %ls", noCharacter); }),
            "wide %ls (assertion failed)");
}

TEST(UxThrow, EverythingIsARuntimeError) {
  EXPECT_THROW(UxThrow::Signal("x"), std::runtime_error);
  EXPECT_THROW(UxThrow::SignalError(5, "Open"), std::runtime_error);
  EXPECT_THROW(UxThrow::IfFalse(false, "x"), std::runtime_error);
  EXPECT_THROW(UxThrow::FailedAssertion("e", "f", 1), std::runtime_error);
}

}  // namespace
