#include "importer/nearest_name.h"

#include <algorithm>
#include <cctype>
#include <numeric>

namespace vexa::importer {

namespace {

char lower(char c) { return char(std::tolower(static_cast<unsigned char>(c))); }

// How many letters have to be added, removed or replaced: Levenshtein's distance.
std::size_t distance(const std::string& a, const std::string& b) {
  // One row of the table is enough: each entry needs its left, upper and diagonal neighbour.
  //
  //       ""  w  a  l  k
  //   ""   0  1  2  3  4
  //   w    1  0  1  2  3     row[j] is the distance of a's first i letters to b's first j
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (lower(a[i]) == lower(b[j]) ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

bool contains(const std::string& text, const std::string& part) {
  return std::search(text.begin(), text.end(), part.begin(), part.end(),
                     [](char a, char b) { return lower(a) == lower(b); }) != text.end();
}

}  // namespace

std::string nearestName(const std::string& name, const std::vector<std::string>& names) {
  constexpr std::size_t kLongest = 200;  // names beyond that are not compared
  std::string best;
  // Farther than half its letters no name is a slip of this one.
  std::size_t least = name.size() / 2 + 1;
  for (const std::string& each : names) {
    if (each.size() > kLongest || name.size() > kLongest) continue;
    // "Armature|Walk" is near "walk".
    const std::size_t d = !name.empty() && contains(each, name) ? 1 : distance(name, each);
    if (d < least) {
      least = d;
      best = each;
    }
  }
  return best;
}

}  // namespace vexa::importer
