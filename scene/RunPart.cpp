#include "scene/RunPart.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <stdexcept>

#include "formats/OutputFolder.h"
#include "formats/json_value.h"
#include "formats/read_file.h"
#include "formats/write_file.h"
#include "scene/SceneSkin.h"
#include "scene/merge_files.h"

namespace vexa::scene {
namespace {

// A run that is split, here into three tasks of thirty frames:
//
//   DIR/part_0_of_3/   frames  0 to  9     values.csv, placements.csv, NAME.pc2, ..., part.json
//   DIR/part_1_of_3/   frames 10 to 19     the same names
//   DIR/part_2_of_3/   frames 20 to 29     the same names
//
// Merging reads them in the order of the tasks and writes the files of a whole run into DIR. A part
// is whole once it has its part.json: that is removed before a part is played and written after
// everything else.

namespace fs = std::filesystem;

constexpr char kManifest[] = "part.json";

[[noreturn]] void fail(const std::string& where, const std::string& fault) {
  throw std::runtime_error(where + ": " + fault);
}

// FNV-1a, 64 bits: finds what was cut or damaged, not what was forged.
class Checksum {
 public:
  void add(const void* bytes, std::size_t count) {
    const auto* each = static_cast<const unsigned char*>(bytes);
    for (std::size_t i = 0; i < count; ++i) mHash = (mHash ^ each[i]) * 0x100000001b3u;
  }
  void add(const std::string& text) { add(text.data(), text.size()); }
  std::string text() const {
    char digits[24];
    std::snprintf(digits, sizeof(digits), "%016llx", static_cast<unsigned long long>(mHash));
    return digits;
  }

 private:
  std::uint64_t mHash = 0xcbf29ce484222325u;
};

// Nothing for a file that cannot be read to its end.
std::optional<std::string> fileSum(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  // By blocks: a point cache may be larger than memory.
  std::vector<char> block(std::size_t{1} << 20);
  Checksum sum;
  while (file.read(block.data(), std::streamsize(block.size())) || file.gcount() > 0) {
    sum.add(block.data(), std::size_t(file.gcount()));
  }
  return file.bad() ? std::nullopt : std::optional(sum.text());
}

/// Frames as first, last and step where they are evenly spaced, as a run's are.
formats::JsonTree framesAsJson(const std::vector<int>& frames) {
  const int step = frames.size() < 2 ? 1 : frames[1] - frames[0];
  return formats::JsonTree::list(frames.front(), frames.back(), step);
}

formats::JsonTree asJson(const RunPart& part) {
  formats::JsonTree files = formats::JsonTree::object();
  for (const auto& [name, sum] : part.mFiles) files[name] = sum;
  return formats::JsonTree::object()
      .with("formatVersion", 1)
      .with("scene", part.mScene)
      .with("sceneSum", part.mSceneSum)
      .with("take", part.mTake)
      .with("mesh", part.mMesh)
      .with("glb", part.mGlb)
      .with("frames", framesAsJson(part.mFrames))
      .with("task", part.mTask)
      .with("tasks", part.mTasks)
      .with("files", std::move(files));
}

std::vector<int> framesOf(const formats::JsonValue& value) {
  const std::vector<double> range = value.numbers(3);
  // Checked as real numbers, in which no sum or quotient can overflow.
  const bool isRange = range[0] >= 0 && range[1] >= range[0] && range[1] <= 2147483647 &&
                       range[2] >= 1 && (range[1] - range[0]) / range[2] < 1e6;
  if (!isRange) value.fail("expected the first frame, the last and a step");
  std::vector<int> frames;
  for (double frame = range[0]; frame <= range[1]; frame += range[2]) frames.push_back(int(frame));
  return frames;
}

RunPart partOf(const formats::JsonValue& value) {
  // Nothing here is trusted: the folder may have come from another machine.
  value.member("formatVersion").integer(1, 1);
  RunPart part;
  part.mScene = value.member("scene").text();
  part.mSceneSum = value.member("sceneSum").text();
  part.mTake = value.member("take").text();
  part.mMesh = value.member("mesh").text();
  part.mGlb = value.member("glb").text();
  part.mFrames = framesOf(value.member("frames"));
  part.mTasks = std::size_t(value.member("tasks").integer(1, kMostTasks));
  part.mTask =
      std::size_t(value.member("task").integer(0, static_cast<std::int64_t>(part.mTasks) - 1));
  return part;
}

RunPart readPart(const std::string& folder) {
  const std::string path = folder + "/" + kManifest;
  const formats::JsonTree document = formats::readJsonFile(path);
  try {
    RunPart part = partOf(formats::JsonValue(document));
    const auto* const files = document["files"].members();
    if (files == nullptr) fail("/files", "expected names and checksums");
    for (const auto& [name, sum] : *files) {
      const bool isPlain = name.find('/') == std::string::npos;
      if (!isPlain || sum.text() == nullptr) fail("/files", "expected names and checksums");
      part.mFiles.emplace_back(name, *sum.text());
    }
    return part;
  } catch (const std::exception& error) {
    fail(path, error.what());
  }
}

// The path of the scene does not count: other machines may see the same files elsewhere.
bool isOfSameRun(const RunPart& a, const RunPart& b) {
  return a.mSceneSum == b.mSceneSum && a.mTake == b.mTake && a.mMesh == b.mMesh &&
         a.mGlb == b.mGlb && a.mFrames == b.mFrames && a.mTasks == b.mTasks;
}

// The name of the first file that is not as it was written, or "".
std::string damagedFile(const RunPart& part, const std::string& folder) {
  for (const auto& [name, sum] : part.mFiles) {
    if (fileSum(folder + "/" + name) != sum) return name;
  }
  return "";
}

std::string framesText(const RunPart& part) {
  const std::vector<int> frames = part.frames();
  if (frames.empty()) return "no frames";
  return "frames " + std::to_string(frames.front()) + " to " + std::to_string(frames.back());
}

// The folders of parts below a folder, by name.
std::vector<std::string> partFolders(const std::string& folder) {
  std::vector<std::string> found;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    if (fs::exists(entry.path() / kManifest, error)) found.push_back(entry.path().string());
  }
  if (error && found.empty()) fail(folder, error.message());
  if (found.empty()) fail(folder, "there is no part of a run in it");
  std::sort(found.begin(), found.end());
  return found;
}

struct PlacedPart {
  std::string mFolder;
  RunPart mPart;
};

void requireAllTasks(const std::string& folder, const std::map<std::size_t, PlacedPart>& parts) {
  RunPart missing = parts.begin()->second.mPart;
  std::string names;
  for (missing.mTask = 0; missing.mTask < missing.mTasks; ++missing.mTask) {
    if (parts.count(missing.mTask) != 0) continue;
    // A run may have a million tasks; the first ones show what is wrong.
    if (names.size() > 500) {
      names += " ...";
      break;
    }
    names += (names.empty() ? "" : ", ") + missing.folderName() + " (" + framesText(missing) + ")";
  }
  if (!names.empty()) fail(folder, "missing: " + names);
}

// All parts of one run by their task; throws for anything else.
std::map<std::size_t, PlacedPart> readParts(const std::string& folder) {
  // By task, so that the parts are later merged in the order of their frames.
  std::map<std::size_t, PlacedPart> parts;
  for (const std::string& each : partFolders(folder)) {
    PlacedPart placed{each, readPart(each)};
    if (!parts.empty() && !isOfSameRun(parts.begin()->second.mPart, placed.mPart)) {
      fail(each, "is a part of another run than " + parts.begin()->second.mFolder);
    }
    const auto [other, isNew] = parts.emplace(placed.mPart.mTask, placed);
    if (!isNew)
      fail(each, "has the same " + framesText(placed.mPart) + " as " + other->second.mFolder);
    const std::string damaged = damagedFile(placed.mPart, each);
    if (!damaged.empty()) fail(each + "/" + damaged, "is not as the run wrote it");
  }
  requireAllTasks(folder, parts);
  return parts;
}

}  // namespace

std::string RunPart::folderName() const {
  const std::string count = std::to_string(mTasks);
  // Leading zeros make the order of the names that of the tasks.
  std::string task = std::to_string(mTask);
  task.insert(0, count.size() > task.size() ? count.size() - task.size() : 0, '0');
  return "part_" + task + "_of_" + count;
}

std::vector<int> RunPart::frames() const {
  // The lengths of two parts differ by at most one. Part i ends where part i + 1 starts, because
  // both compute the same number; the product stays below 10^12.
  const std::size_t count = mFrames.size();
  const auto at = [&](std::size_t task) {
    return mFrames.begin() + static_cast<std::ptrdiff_t>(count * task / mTasks);
  };
  return {at(mTask), at(mTask + 1)};
}

std::string sceneSum(const std::string& file, const refhost::Scene& scene) {
  Checksum sum;
  sum.add(formats::readFile(file));
  for (const refhost::Definition& definition : scene.mDefinitions) {
    const refhost::AnimatedObject* object = definition.mAnimatedObject.get();
    if (object == nullptr) continue;
    // The animation file by its bytes, the mesh as it was read: a comment in an OBJ file changes
    // nothing.
    sum.add(formats::readFile(object->mAnimationFile));
    for (const auto& p : object->mPoints.mElements) {
      for (const double x : {p.x, p.y, p.z}) sum.add(&x, sizeof(x));
    }
    for (const auto& polygon : object->mPolygons.mElements) {
      const unsigned int material = polygon.mMaterialIndex;
      sum.add(&material, sizeof(material));
      for (const auto& corner : polygon.mCorners.mElements) sum.add(&corner, sizeof(corner));
    }
  }
  return sum.text();
}

bool isWhole(const RunPart& part, const std::string& folder) {
  const std::string own = folder + "/" + part.folderName();
  std::error_code error;
  if (!fs::exists(own + "/" + kManifest, error)) return false;
  try {
    const RunPart written = readPart(own);
    return isOfSameRun(part, written) && written.mTask == part.mTask &&
           damagedFile(written, own).empty();
  } catch (const std::runtime_error&) {
    return false;  // a damaged manifest is written again
  }
}

std::vector<std::string> writePart(RunPart part, const std::string& folder,
                                   const PlayerMaker& makePlayer, const SceneOutput& output) {
  const std::string own = folder + "/" + part.folderName();
  std::vector<std::string> lines;
  SceneOutput partial = output;
  partial.mFolder = own;
  partial.mFrames = part.frames();
  // A GLB file states moves from its first frame, which rounds: parts keep the points themselves.
  // A skin needs no points at all.
  if (part.mMesh == "glb") {
    partial.mMeshes =
        part.mGlb == "skin" ? SceneOutput::Meshes::kNone : SceneOutput::Meshes::kPointCache;
  }
  std::error_code error;
  fs::remove(own + "/" + kManifest, error);
  // There are more tasks than frames. An empty list would mean all frames to writeScene.
  if (partial.mFrames.empty()) {
    fs::create_directories(own, error);
    if (error) fail(own, error.message());
  } else {
    lines = writeScene(makePlayer, partial);
    for (const auto& entry : fs::directory_iterator(own)) {
      const auto sum = fileSum(entry.path().string());
      if (!sum) fail(entry.path().string(), "cannot be read");
      part.mFiles.emplace_back(entry.path().filename().string(), *sum);
    }
  }
  // A folder lists its files in any order; the manifest is the same in every run.
  std::sort(part.mFiles.begin(), part.mFiles.end());
  formats::writeFile(own + "/" + kManifest,
                     asJson(part).dump(formats::JsonTree::Layout::kIndented) + "\n");
  lines.push_back(own + "/" + kManifest);
  return lines;
}

std::vector<std::string> mergeParts(
    const std::string& folder,
    const std::function<ScenePlayer(const std::string& file, const std::string& take)>&
        makePlayer) {
  const std::map<std::size_t, PlacedPart> parts = readParts(folder);
  const RunPart& any = parts.begin()->second.mPart;
  std::vector<MergedPart> folders;
  for (const auto& [task, placed] : parts) {
    std::vector<std::string> names;
    for (const auto& [name, sum] : placed.mPart.mFiles) names.push_back(name);
    folders.push_back({placed.mFolder, placed.mPart.frames(), std::move(names)});
  }
  formats::OutputFolder target(folder);
  try {
    std::vector<std::string> names = mergeTables(folders, target);
    if (any.mMesh == "obj" || any.mMesh == "pc2") {
      const float step = any.mFrames.size() < 2 ? 1 : float(any.mFrames[1] - any.mFrames[0]);
      const auto more =
          any.mMesh == "obj" ? mergeObjs(folders, target) : mergeCaches(folders, step, target);
      names.insert(names.end(), more.begin(), more.end());
    }
    if (any.mMesh == "glb") {
      // The caches have points only. Triangles, materials and names of a GLB come from the scene,
      // which therefore must not have changed since.
      ScenePlayer player = makePlayer(any.mScene, any.mTake);
      if (sceneSum(any.mScene, player.scene()) != any.mSceneSum) {
        fail(any.mScene, "is not the scene that the parts were played from");
      }
      if (any.mGlb == "skin") {
        writeSkin(SceneSkin(player, any.mFrames), player, any.mFrames, target);
      } else {
        mergeGlb(folders, any.mFrames, player, target);
      }
      names.emplace_back("scene.glb");
    }
    target.publish();
    for (std::string& name : names) name = target.finalPath(name);
    return names;
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(target.inFinalPaths(error.what()));
  }
}

}  // namespace vexa::scene
