#include "importer/model_motion.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <stdexcept>
#include <unordered_map>

#include "importer/unique_names_internal.h"

namespace vexa::importer {

namespace {

std::string stemOf(const std::string& file) {
  const std::string name = file.substr(file.find_last_of('/') + 1);
  return name.substr(0, name.find_last_of('.'));
}

const std::string& parentName(const SourceModel& model, const SourceModel::Node& node) {
  static const std::string kNobody;
  return node.mParent == SourceModel::kNone ? kNobody
                                            : model.mNodes[std::size_t(node.mParent)].mName;
}

// For each node of the motion the model's node of that name, or kNone.
std::vector<std::int32_t> matchNodes(const SourceModel& motion, const SourceModel& model) {
  // By name, because that is all that two files have in common: their numbers of nodes differ.
  std::unordered_map<std::string, std::vector<std::int32_t>> byName;
  for (std::size_t i = 0; i < model.mNodes.size(); ++i) {
    byName[model.mNodes[i].mName].push_back(std::int32_t(i));
  }
  std::vector<std::int32_t> matches;
  for (const SourceModel::Node& node : motion.mNodes) {
    const auto found = node.mName.empty() ? byName.end() : byName.find(node.mName);
    if (found == byName.end()) {
      matches.push_back(SourceModel::kNone);
      continue;
    }
    const std::vector<std::int32_t>& all = found->second;
    // Names repeat in some files ("End", "Nub"); then the one below the same parent is meant.
    const auto best = std::find_if(all.begin(), all.end(), [&](std::int32_t i) {
      return parentName(model, model.mNodes[std::size_t(i)]) == parentName(motion, node);
    });
    matches.push_back(best == all.end() ? all.front() : *best);
  }
  return matches;
}

std::string listOf(const std::set<std::string>& names) {
  constexpr std::size_t kMostNamed = 5;
  std::string list;
  std::size_t count = 0;
  for (const std::string& name : names) {
    if (count++ == kMostNamed) return list + ", ...";
    list += (list.empty() ? "'" : ", '") + name + "'";
  }
  return list;
}

bool areAlike(const Matrix& a, const Matrix& b) {
  return std::equal(std::begin(a.e), std::end(a.e), std::begin(b.e),
                    [](double x, double y) { return std::abs(x - y) < 1e-9; });
}

// What would make the same numbers mean something else.
void noteSettings(const SourceModel& motion, const std::string& file, SourceModel& ioModel) {
  const double ours = ioModel.mMetresPerUnit, theirs = motion.mMetresPerUnit;
  if (ours > 0 && theirs > 0 && std::abs(ours - theirs) > 1e-6 * ours) {
    ioModel.mNotes.push_back("'" + file + "' has another unit of length than the model");
  }
  if (!areAlike(motion.mAxes, ioModel.mAxes)) {
    ioModel.mNotes.push_back("'" + file + "' has other axes than the model");
  }
}

class MotionAdder {
 public:
  MotionAdder(const SourceModel& motion, const std::string& file, SourceModel& ioModel)
      : mMotion(motion),
        mFile(file),
        mModel(ioModel),
        mMatches(matchNodes(motion, ioModel)),
        mFirstPivots(std::int32_t(ioModel.mPivots.size())) {
    // Curves of the motion are about pivots of their own file, so these come along.
    mModel.mPivots.insert(mModel.mPivots.end(), motion.mPivots.begin(), motion.mPivots.end());
  }

  void addClips() {
    for (const SourceModel::Clip& clip : mMotion.mClips) addClip(clip);
    // Nothing fits: most likely the wrong file, so this is refused instead of noted.
    if (mFound == 0) {
      throw std::runtime_error("'" + mFile + "' moves no node that the model has: " +
                               (mMissing.empty() ? "it has no motion" : listOf(mMissing)));
    }
    if (mMissing.empty()) return;
    mModel.mNotes.push_back("'" + mFile + "' moves " + std::to_string(mMissing.size()) +
                            " nodes that the model does not have: " + listOf(mMissing));
  }

 private:
  void addClip(const SourceModel::Clip& clip) {
    SourceModel::Clip added;
    const auto hasName = [&](const SourceModel::Clip& other) { return other.mName == clip.mName; };
    // Some programs give the only clip of every file the same name; the name of the file says more.
    const bool isTaken = std::any_of(mModel.mClips.begin(), mModel.mClips.end(), hasName);
    added.mName = isTaken ? stemOf(mFile) : clip.mName;
    for (const SourceModel::Channel& channel : clip.mChannels) {
      const SourceModel::Node& node = mMotion.mNodes[std::size_t(channel.mNode)];
      const std::int32_t match = mMatches[std::size_t(channel.mNode)];
      if (match == SourceModel::kNone) {
        mMissing.insert(node.mName);
        continue;
      }
      ++mFound;
      SourceModel::Channel& moved = added.mChannels.emplace_back(channel);
      moved.mNode = match;
      if (node.mPivots != SourceModel::kNone) moved.mPivots = mFirstPivots + node.mPivots;
    }
    mModel.mClips.push_back(std::move(added));
  }

  const SourceModel& mMotion;
  const std::string& mFile;
  SourceModel& mModel;
  const std::vector<std::int32_t> mMatches;
  const std::int32_t mFirstPivots;
  std::size_t mFound = 0;
  std::set<std::string> mMissing;
};

}  // namespace

void addMotion(const SourceModel& motion, const std::string& file, SourceModel& ioModel) {
  MotionAdder(motion, file, ioModel).addClips();
  noteSettings(motion, file, ioModel);
  for (const std::string& note : motion.mNotes) {
    // Notes on meshes and materials of the other file say nothing about this model.
    if (note.rfind("clip ", 0) == 0) ioModel.mNotes.push_back(note);
  }
  makeNamesUnique(ioModel.mClips, "clip");
}

}  // namespace vexa::importer
