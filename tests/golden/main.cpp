// The recorded results: runs every group of operations over fixed inputs and compares the digests
// of the result bits with those that were recorded. See docs/testing.md.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <set>

#include "tests/golden/Group.h"
#include "tests/helpers/compare.h"

using namespace vexa::tests;

namespace {

struct Result {
  std::string mDigest;
  std::vector<std::string> mSamples;
};

std::string hex(std::uint64_t digest) {
  char text[20];
  std::snprintf(text, sizeof(text), "%016llx", static_cast<unsigned long long>(digest));
  return text;
}

Result resultOf(const Group& group, bool keepsAll = false) {
  Recorder recorder(group.mName, keepsAll);
  group.mRun(recorder);
  const std::string digest = hex(recorder.finish());
  return {digest, recorder.samples()};
}

// The mathematics library itself: tells which of the recorded variants to expect.
void runLibm(Recorder& r) {
  for (int i = 0; i < 2000; ++i) {
    const double x = r.numbers().plain<double>();
    const float y = float(x);
    r.begin();
    r.in("x", x);
    const double s = r.numbers().unit<double>();
    r.out(std::sin(x), std::cos(x), std::tan(x), std::atan(x), std::acos(s), std::asin(s));
    r.out(std::sin(y), std::cos(y), std::acos(float(s)), std::atan2(x, s), std::atan2(y, float(s)));
  }
}

/// The groups of some source files, such as "mesh"; all for none.
Groups groupsOf(const std::vector<std::string>& names) {
  const struct {
    const char* mName;
    void (*mAdd)(Groups&);
  } kFiles[] = {{"math", addMathGroups},       {"interpolation", addInterpolationGroups},
                {"key", addKeyGroups},         {"path", addPathGroups},
                {"mesh", addMeshGroups},       {"collector", addCollectorGroups},
                {"manager", addManagerGroups}, {"tool", addToolGroups},
                {"support", addSupportGroups}};
  Groups groups{{"libm_itself", Kind::kLibm, runLibm}};
  for (const auto& file : kFiles) {
    if (names.empty() || std::find(names.begin(), names.end(), file.mName) != names.end()) {
      file.mAdd(groups);
    }
  }
  return groups;
}

std::string lineOf(const Group& group, const Result& result) {
  return group.mName + " " + result.mDigest +
         (group.mKind == Kind::kLibm ? " libm" : " arithmetic");
}

/// The lines of a file, by the first word, which names the group.
std::map<std::string, std::vector<std::string>> linesOf(const std::string& path) {
  std::map<std::string, std::vector<std::string>> lines;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line[0] != '#') lines[line.substr(0, line.find(' '))].push_back(line);
  }
  return lines;
}

/// The numbers of two results agree within a few units in the last place, as those of two
/// mathematics libraries do; everything else is the same.
bool nearlySame(const std::string& a, const std::string& b) {
  const char *p = a.c_str(), *q = b.c_str();
  while (*p != 0 && *q != 0) {
    if (*p == ' ' && *q == ' ') {
      ++p, ++q;
      continue;
    }
    char *pEnd, *qEnd;
    const double x = std::strtod(p, &pEnd), y = std::strtod(q, &qEnd);
    if (pEnd == p || qEnd == q) {
      if (*p++ != *q++) return false;
      continue;
    }
    const bool isFloat = *pEnd == 'f';
    if (std::fabs(x - y) > (isFloat ? 1e-5 : 1e-12) * (1 + std::fabs(x))) return false;
    p = pEnd, q = qEnd;
  }
  return *p == *q;
}

/// Prints the first sample that differs. False when none does.
bool printFirstDifference(const std::vector<std::string>& recorded,
                          const std::vector<std::string>& now, bool isExact) {
  for (std::size_t i = 0; i < recorded.size() && i < now.size(); ++i) {
    if (recorded[i] == now[i] || (!isExact && nearlySame(recorded[i], now[i]))) continue;
    std::printf("  recorded: %s\n  now:      %s\n", recorded[i].c_str(), now[i].c_str());
    return true;
  }
  return false;
}

int check(const Groups& groups, const std::string& path, bool stopsAtFirst) {
  const auto digests = linesOf(path);
  const auto samples = linesOf(path.substr(0, path.rfind('/') + 1) + "samples.txt");
  const auto has = [](const auto& lines, const std::string& group, const std::string& line) {
    const auto found = lines.find(group);
    if (found == lines.end()) return false;
    for (const std::string& each : found->second) {
      if (each == line) return true;
    }
    return false;
  };
  int differences = 0;
  bool knowsLibm = true;
  for (const Group& group : groups) {
    const Result result = resultOf(group);
    if (has(digests, group.mName, lineOf(group, result))) continue;
    const auto sample = samples.find(group.mName);
    const bool isRecorded = digests.count(group.mName) != 0 && sample != samples.end();
    if (group.mName == "libm_itself") {
      knowsLibm = false;
      std::puts("This mathematics library was not recorded: its groups are compared by samples.");
      continue;
    }
    const bool isExact = group.mKind == Kind::kArithmetic || knowsLibm;
    if (!isExact && isRecorded && !printFirstDifference(sample->second, result.mSamples, false)) {
      continue;
    }
    ++differences;
    if (stopsAtFirst) return 1;
    std::printf("%s: %s\n", group.mName.c_str(),
                isRecorded ? "the results changed" : "not recorded");
    if (isExact && isRecorded && !printFirstDifference(sample->second, result.mSamples, true)) {
      std::printf(
          "  None of the recorded samples differs. Compare the output of\n"
          "  'golden --cases %s' of a build before the change with that of this one.\n",
          group.mName.c_str());
    }
  }
  std::printf("%d of %zu groups differ\n", differences, groups.size());
  return differences == 0 ? 0 : 1;
}

int print(const Groups& groups, bool wantsSamples) {
  for (const Group& group : groups) {
    const Result result = resultOf(group);
    if (!wantsSamples) std::puts(lineOf(group, result).c_str());
    if (!wantsSamples) continue;
    for (const std::string& sample : result.mSamples) std::puts(sample.c_str());
  }
  return 0;
}

int printCases(const Groups& groups, const std::string& name) {
  for (const Group& group : groups) {
    if (group.mName != name) continue;
    for (const std::string& line : resultOf(group, true).mSamples) std::puts(line.c_str());
    return 0;
  }
  std::printf("there is no group %s\n", name.c_str());
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  setenv("TZ", "XYZ+5:30", 1);  // dates are in UTC wherever the program runs
  std::vector<std::string> words(argv + 1, argv + argc);
  const std::string option = words.empty() ? "" : words[0];
  if (words.empty()) return print(groupsOf({}), false);
  if (words.size() == 1 && option == "--samples") return print(groupsOf({}), true);
  if (words.size() == 2 && option == "--cases") return printCases(groupsOf({}), words[1]);
  if (words.size() >= 2 && (option == "--check" || option == "--first")) {
    const std::string path = words[1];
    words.erase(words.begin(), words.begin() + 2);
    return check(groupsOf(words), path, option == "--first");
  }
  std::puts(
      "usage: golden [--samples | --cases GROUP | --check DIGESTS [NAME ...] | --first ...]\n"
      "Prints the digest of each group, or compares them with recorded ones; --first stops at the\n"
      "first group that differs and prints nothing. NAME_groups.cpp holds the groups of a NAME.");
  return 2;
}
