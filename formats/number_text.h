#pragma once

#include <string>
#include <string_view>

namespace vexa::formats {

/// The fewest digits that read back as the same number; "nan", "inf" and "-inf".
std::string shortestText(float value);
std::string shortestText(double value);
/// The same into memory that has room for kLongestNumber characters; returns the end of the text.
constexpr int kLongestNumber = 32;
char* writeShortest(char* text, float value);

/// Parses the whole of `text` as a decimal number, whatever the locale; false unless all of it is
/// one number that is neither too large nor too small for the type.
bool parseNumber(std::string_view text, float& outValue);
bool parseNumber(std::string_view text, double& outValue);

}  // namespace vexa::formats
