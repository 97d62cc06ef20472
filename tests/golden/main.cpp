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

#include "tests/golden/Difference.h"
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
  using Keeps = Recorder::Keeps;
  const Keeps samples = group.mKind == Kind::kLibm ? Keeps::kWholeSamples : Keeps::kSamples;
  Recorder recorder(group.mName, keepsAll ? Keeps::kAll : samples);
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

/// The bounds that are wider than one unit: measured between four mathematics libraries, see
/// docs/testing.md.
void setBounds(Groups& groups) {
  const struct {
    const char* mName;
    Bound mBound;
  } kBounds[] = {{"matrix_turned_builders_float", {16}},
                 {"matrix_turned_builders_double", {256}},
                 {"rolls_float", {8}},
                 {"rolls_double", {32}},
                 {"timed_sinus_double", {32}},
                 {"timed_square_double", {4}},
                 {"timed_one_minus_square_double", {4}},
                 {"keys_one_minus_square_real", {8}},
                 {"keys_sinus_real", {64}},
                 {"keys_dispatch_eased", {2}},
                 {"path_position_eased", {2}},
                 {"cameras_rolled", {16}},
                 {"instance_transforms", {4096}},
                 {"mesh_smooth_data", {4, 1}},
                 {"mesh_smooth_normals", {256, 1, 16}},
                 {"driving_walks", {536870912, 1}}};
  for (Group& group : groups) {
    for (const auto& each : kBounds) {
      if (group.mName == each.mName) group.mBound = each.mBound;
    }
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
  setBounds(groups);
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

using Lines = std::vector<std::string>;

/// The lines that were recorded for a case, one for each variant of the mathematics library.
Lines variantsOf(const Lines& recorded, const std::string& sample) {
  const std::string label = sample.substr(0, sample.find(':') + 1);
  Lines variants;
  for (const std::string& line : recorded) {
    if (line.compare(0, label.size(), label) == 0) variants.push_back(line);
  }
  return variants;
}

/// Whether one of the lines is the same, or within the bound.
bool isAmong(const Lines& variants, const std::string& sample, const Bound* bound) {
  return std::any_of(variants.begin(), variants.end(), [&](const std::string& line) {
    if (bound == nullptr) return line == sample;
    return differenceOf(line, sample, *bound).mBeyond <= bound->mMostBeyond;
  });
}

/// Prints the first sample that differs. False when none does.
bool printFirstDifference(const Lines& recorded, const Lines& now, const Bound* bound) {
  for (const std::string& sample : now) {
    const Lines variants = variantsOf(recorded, sample);
    if (isAmong(variants, sample, bound)) continue;
    for (const std::string& line : variants) std::printf("  recorded: %s\n", line.c_str());
    std::printf("  now:      %s\n", sample.c_str());
    return true;
  }
  return false;
}

/// What was recorded, and whether with this mathematics library.
struct Record {
  std::map<std::string, Lines> mDigests, mSamples;
  bool mKnowsLibm = true;

  explicit Record(const std::string& path)
      : mDigests(linesOf(path)),
        mSamples(linesOf(path.substr(0, path.rfind('/') + 1) + "samples.txt")) {}

  bool has(const Group& group, const Result& result) const {
    const auto found = mDigests.find(group.mName);
    if (found == mDigests.end()) return false;
    const Lines& lines = found->second;
    return std::find(lines.begin(), lines.end(), lineOf(group, result)) != lines.end();
  }
};

/// Prints what differs from the record; false when nothing does.
bool differs(const Group& group, const Result& result, const Record& record) {
  const auto recorded = record.mSamples.find(group.mName);
  if (recorded == record.mSamples.end()) {
    std::printf("%s: not recorded\n", group.mName.c_str());
    return true;
  }
  const bool isExact = group.mKind == Kind::kArithmetic || record.mKnowsLibm;
  const Bound* const bound = isExact ? nullptr : &group.mBound;
  if (isExact) std::printf("%s: the results changed\n", group.mName.c_str());
  if (printFirstDifference(recorded->second, result.mSamples, bound)) {
    if (!isExact) std::printf("%s: too far off\n", group.mName.c_str());
    return true;
  }
  if (isExact) {
    std::printf(
        "  None of the recorded samples differs. Compare the output of\n"
        "  'golden --cases %s' of a build before the change with that of this one.\n",
        group.mName.c_str());
  }
  return isExact;
}

int check(const Groups& groups, const std::string& path, bool stopsAtFirst) {
  Record record(path);
  int differences = 0;
  for (const Group& group : groups) {
    const Result result = resultOf(group);
    if (record.has(group, result)) continue;
    if (group.mName == "libm_itself") {
      record.mKnowsLibm = false;
      std::puts("This mathematics library was not recorded: its groups are compared by samples.");
    }
    differences += differs(group, result, record) ? 1 : 0;
    if (stopsAtFirst && differences > 0) return 1;
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

/// How far the cases of a group are from those that another build printed.
int printDistance(const Groups& groups, const std::string& name, const std::string& path) {
  const auto cases = linesOf(path);
  for (const Group& group : groups) {
    if (group.mName != name || cases.count(name) == 0) continue;
    const Lines now = resultOf(group, true).mSamples, other = cases.at(name);
    Difference all;
    for (std::size_t i = 0; i < now.size() && i < other.size(); ++i) {
      const Difference one = differenceOf(other[i], now[i], group.mBound);
      all.mNumbers += one.mNumbers;
      all.mDiffering += one.mDiffering;
      all.mBeyond += one.mBeyond;
      all.mMostUnits = std::max(all.mMostUnits, one.mMostUnits);
    }
    std::printf("%d %d %.10g %d %d\n", all.mNumbers, all.mDiffering, all.mMostUnits, all.mBeyond,
                group.mBound.mMostBeyond);
    return now.size() == other.size() ? 0 : 1;
  }
  return 2;
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
  if (words.size() == 3 && option == "--distance") {
    return printDistance(groupsOf({}), words[1], words[2]);
  }
  if (words.size() >= 2 && (option == "--check" || option == "--first")) {
    const std::string path = words[1];
    words.erase(words.begin(), words.begin() + 2);
    return check(groupsOf(words), path, option == "--first");
  }
  std::puts(
      "usage: golden [--samples | --cases GROUP | --distance GROUP FILE |\n"
      "               --check DIGESTS [NAME ...] | --first ...]\n"
      "Prints the digest of each group, or compares them with recorded ones; --first stops at the\n"
      "first group that differs. --distance prints how many numbers there are, how many differ "
      "from a\n"
      "file that --cases made, and by how many units in the last place at most. NAME_groups.cpp\n"
      "holds the groups of a NAME.");
  return 2;
}
