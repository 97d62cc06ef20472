#include "tests/golden/Difference.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdlib>

namespace vexa::tests {

namespace {

// The next word of a case: a text in quotes, or what stands between blanks, = and commas.
std::string nextWord(const std::string& text, std::size_t& ioAt) {
  ioAt = text.find_first_not_of(" =,", ioAt);
  if (ioAt == std::string::npos) return "";
  const std::size_t from = ioAt;
  const bool isText = text[from] == '"';
  ioAt = isText ? text.find('"', from + 1) : text.find_first_of(" =,", from);
  ioAt = ioAt == std::string::npos ? text.size() : ioAt + (isText ? 1 : 0);
  return text.substr(from, ioAt - from);
}

// Integers and whole numbers are written alike, but for the f of a float.
bool mayBeReal(const std::string& word) { return word.find_first_of(".ef") != std::string::npos; }

double unitOf(double x, int digits, int lowest) {
  int exponent;
  std::frexp(x, &exponent);
  return std::ldexp(1, std::max(exponent - digits, lowest));
}

double unitsApart(const std::string& a, const std::string& b, double size) {
  if (a.empty() || b.empty() || (!mayBeReal(a) && !mayBeReal(b))) return HUGE_VAL;
  char *aEnd, *bEnd;
  double x = std::strtod(a.c_str(), &aEnd), y = std::strtod(b.c_str(), &bEnd);
  const std::string rest = aEnd;
  if ((!rest.empty() && rest != "f") || rest != bEnd) return HUGE_VAL;
  if (!std::isfinite(x) || !std::isfinite(y)) return HUGE_VAL;
  // Nine digits are not the float itself, but the nearest one is.
  if (rest == "f") x = double(float(x)), y = double(float(y));
  const double largest = std::max({std::fabs(x), std::fabs(y), size});
  const double unit = rest == "f" ? unitOf(largest, FLT_MANT_DIG, FLT_MIN_EXP - FLT_MANT_DIG)
                                  : unitOf(largest, DBL_MANT_DIG, DBL_MIN_EXP - DBL_MANT_DIG);
  return std::fabs(x - y) / unit;
}

}  // namespace

Difference differenceOf(const std::string& a, const std::string& b, const Bound& bound) {
  Difference difference;
  std::size_t atA = 0, atB = 0;
  while (true) {
    const std::string x = nextWord(a, atA), y = nextWord(b, atB);
    if (x.empty() && y.empty()) return difference;
    ++difference.mNumbers;
    if (x == y) continue;
    ++difference.mDiffering;
    const double units = unitsApart(x, y, bound.mSize);
    if (units > bound.mUnits) ++difference.mBeyond;
    if (units <= bound.mUnits) difference.mMostUnits = std::max(difference.mMostUnits, units);
  }
}

}  // namespace vexa::tests
