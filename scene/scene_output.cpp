#include "scene/scene_output.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <exception>
#include <memory>
#include <mutex>
#include <numeric>
#include <optional>
#include <stdexcept>
#include <thread>

#include "formats/NewFile.h"
#include "formats/OutputFolder.h"
#include "formats/file_error.h"
#include "formats/glb.h"
#include "formats/mesh_surfaces.h"
#include "formats/obj.h"
#include "formats/point_cache.h"
#include "scene/SceneSkin.h"
#include "scene/mesh_names.h"
#include "scene/scene_csv.h"
#include "scene/scene_extent.h"
#include "scene/scene_plots.h"

namespace vexa::scene {
namespace {

// Frames are divided over threads, four in this picture:
//
//   frames     0 .. 24 | 25 .. 49 | 50 .. 74 | 75 .. 99
//   tables     values.csv, values.csv.1, values.csv.2, values.csv.3, joined at the end
//   GLB, PC2   one file; the place of each frame in it is known, so all threads write at once
//   OBJ        a file per frame
//
// No output depends on how the frames are divided.

using Points = formats::MovingMesh::Points;

constexpr const char* kTables[] = {"values.csv", "placements.csv"};

// The model of all meshes together, for its faces: the points are zeros.
formats::ObjModel asObj(const std::vector<formats::MovingMesh>& meshes,
                        const std::vector<Points>& poses) {
  formats::ObjModel model;
  for (std::size_t m = 0; m < meshes.size(); ++m) {
    const formats::MovingMesh& mesh = meshes[m];
    const auto first = static_cast<unsigned int>(model.points.size());
    model.points.resize(model.points.size() + poses[m].size());
    for (std::size_t t = 0; t < mesh.mTriangles.size(); ++t) {
      const auto& c = mesh.mTriangles[t];
      const auto uv = mesh.mUvs.empty() ? Oru::TVector3D<Oru::TVector2D<float>>() : mesh.mUvs[t];
      model.triangles.push_back({{{{first + c.x, uv.x.x, uv.x.y},
                                   {first + c.y, uv.y.x, uv.y.y},
                                   {first + c.z, uv.z.x, uv.z.y}}},
                                 mesh.mMaterials[t]});
    }
  }
  return model;
}

std::string objName(int frame) {
  char name[32];
  std::snprintf(name, sizeof(name), "frame_%06d.obj", frame);
  return name;
}

// Not NAME.obj: the mesh that the scene reads is often of that name, in the same folder.
std::string restName(const std::string& name) { return name + "_mesh.obj"; }

// What all jobs write into; every operation may be called from any of them.
class SceneFiles {
 public:
  // `player` is left at the first frame.
  SceneFiles(ScenePlayer& player, const SceneOutput& output)
      : mOutput(output), mFolder(output.mFolder) {
    try {
      player.setFrame(mOutput.mFrames[0]);
      if (mOutput.mMeshes == SceneOutput::Meshes::kGlb && !mOutput.mIsMorphed) prepareSkin(player);
      if (mOutput.mMeshes != SceneOutput::Meshes::kNone && !mIsSkinned) prepareMeshes(player);
      if (mOutput.mPlots) mRecord.emplace(player, mOutput.mFrames);
    } catch (const std::runtime_error& error) {
      throw std::runtime_error(mFolder.inFinalPaths(error.what()));
    }
  }

  const std::vector<int>& frames() const { return mOutput.mFrames; }

  // A part of a table, in the order of the jobs.
  formats::NewFile newPart(const char* table, std::size_t job) const {
    return formats::NewFile(partPath(table, job));
  }

  // Whatever there is about frame i of the list, which `player` shows, apart from the tables.
  void addFrame(const ScenePlayer& player, std::size_t i, std::vector<Points>& ioPoses) {
    if (mGlb || mHasObjs || !mCaches.empty()) player.getPoses(ioPoses);
    if (mGlb && i > 0) mGlb->writeFrame(i, ioPoses);
    if (mHasObjs) writeObj(frames()[i], ioPoses);
    for (std::size_t m = 0; m < mCaches.size(); ++m) mCaches[m].write(i, ioPoses[m]);
    if (mRecord) mRecord->add(player, i);
    // The caller's function need not be safe for several threads.
    const std::lock_guard<std::mutex> lock(mProgress);
    mOutput.mProgress(++mDone, frames().size());
  }

  // Puts the parts together and moves everything to its place; returns what was written.
  std::vector<std::string> publish(const ScenePlayer& player, std::size_t jobs) {
    std::vector<std::string> names(std::begin(kTables), std::end(kTables));
    for (const std::string& table : names) joinParts(table, jobs);
    if (mGlb) {
      mGlb->finish();
      mGlbFile->close();
    }
    if (mGlb || mIsSkinned) names.emplace_back("scene.glb");
    for (formats::PointCacheWriter& cache : mCaches) cache.close();
    for (const std::string& name : mCacheNames) {
      names.push_back(restName(name));
      names.push_back(name + ".pc2");
    }
    if (mRecord) {
      const auto plots = mRecord->write(
          player.scene(), [this](const std::string& name) { return mFolder.pathFor(name); });
      names.insert(names.end(), plots.begin(), plots.end());
    }
    mFolder.publish();
    for (std::string& name : names) {
      name = mFolder.finalPath(name) + (name == "scene.glb" ? mGlbText : "");
    }
    if (mHasObjs) names.push_back(objNames());
    return names;
  }

  std::string inFinalPaths(const std::string& text) const { return mFolder.inFinalPaths(text); }

 private:
  /// A skin is written at once: no frame has to be deformed for it.
  void prepareSkin(ScenePlayer& player) {
    const SceneSkin skin(player, frames());
    mGlbText = ": " + glbText(skin);
    mIsSkinned = skin.obstacle().empty();
    if (mIsSkinned) writeSkin(skin, player, frames(), mFolder);
    player.setFrame(frames()[0]);
  }

  void prepareMeshes(ScenePlayer& player) {
    std::vector<formats::MovingMesh> meshes = player.meshes();
    std::vector<Points> poses;
    player.getPoses(poses);
    if (mOutput.mMeshes == SceneOutput::Meshes::kObj) {
      mHasObjs = !meshes.empty();
      // The faces of all frames are the same text.
      mFaces = formats::formatObjFaces(asObj(meshes, poses));
      return;
    }
    if (mOutput.mMeshes == SceneOutput::Meshes::kPointCache) return prepareCaches(meshes, poses);
    formats::addSurfaces(meshes);
    for (std::size_t m = 0; m < meshes.size(); ++m) meshes[m].mFrames.push_back(poses[m]);
    const int timeScale = player.scene().mSettings.mElements[0].mTimeScale;
    const std::string path = mFolder.pathFor("scene.glb");
    mGlbFile.emplace(path);
    mGlb.emplace(*mGlbFile, path, meshes, frames().size(), framesPerSecond(timeScale, frames()));
  }

  // A rest mesh and a cache for each mesh.
  void prepareCaches(const std::vector<formats::MovingMesh>& meshes,
                     const std::vector<Points>& poses) {
    mCacheNames = meshNames(meshes);
    const float step = frames().size() < 2 ? 1 : float(frames()[1] - frames()[0]);
    for (std::size_t m = 0; m < meshes.size(); ++m) {
      const std::string& name = mCacheNames[m];
      std::string text;
      formats::appendObjPoints(poses[m], text);
      formats::NewFile rest(mFolder.pathFor(restName(name)));
      rest.write(text + formats::formatObjFaces(asObj({meshes[m]}, {poses[m]})));
      rest.close();
      const std::string path = mFolder.pathFor(name + ".pc2");
      mCaches.emplace_back(path, path, poses[m].size(), float(frames()[0]), step, frames().size());
    }
  }

  void writeObj(int frame, const std::vector<Points>& poses) const {
    std::string text;
    for (const Points& points : poses) formats::appendObjPoints(points, text);
    text += mFaces;
    formats::NewFile file(mFolder.pathFor(objName(frame)));
    file.write(text);
    file.close();
  }

  std::string objNames() const {
    std::string first = mFolder.finalPath(objName(frames().front()));
    if (frames().size() == 1) return first;
    return first + " to " + objName(frames().back()) + ": " + std::to_string(frames().size()) +
           " files";
  }

  std::string partPath(const std::string& table, std::size_t job) const {
    return mFolder.pathFor(table) + (job == 0 ? "" : "." + std::to_string(job));
  }

  void joinParts(const std::string& table, std::size_t jobs) const {
    if (jobs == 1) return;
    const std::string whole = partPath(table, 0);
    // NewFile writes only files that are not there, so the first part makes room for the whole.
    const std::string first = whole + ".0";
    if (std::rename(whole.c_str(), first.c_str()) != 0) formats::failForFile(whole);
    formats::NewFile file(whole);
    for (std::size_t job = 0; job < jobs; ++job) {
      const std::string part = job == 0 ? first : partPath(table, job);
      file.append(part);
      std::remove(part.c_str());
    }
    file.close();
  }

  const SceneOutput& mOutput;
  formats::OutputFolder mFolder;
  bool mHasObjs = false;
  std::string mFaces;  // what an OBJ file says besides the points
  std::optional<formats::NewFile> mGlbFile;
  std::optional<formats::GlbWriter> mGlb;
  bool mIsSkinned = false;
  std::string mGlbText;  ///< which kind of GLB it is
  std::vector<std::string> mCacheNames;
  std::vector<formats::PointCacheWriter> mCaches;
  std::optional<SceneRecord> mRecord;
  std::mutex mProgress;
  std::size_t mDone = 0;
};

// Frames `first` to `last`, the last not included, of a run that has as many jobs as it has parts.
struct Job {
  std::size_t mIndex, mFirst, mLast;
  std::exception_ptr mFailure;
};

// The lowest job that has failed, or the number of jobs. Jobs above it stop. Jobs below it go on,
// because the failure that is reported is that of the lowest frame, as when one thread plays all.
using LowestFailure = std::atomic<std::size_t>;

void playFrames(ScenePlayer& player, const Job& job, SceneFiles& files,
                const LowestFailure& failure) {
  formats::NewFile values = files.newPart(kTables[0], job.mIndex);
  formats::NewFile placements = files.newPart(kTables[1], job.mIndex);
  if (job.mIndex == 0) {
    values.write(valuesHeader(player.scene()));
    placements.write(placementsHeader());
  }
  std::vector<Points> poses;
  for (std::size_t i = job.mFirst; i < job.mLast && failure > job.mIndex; ++i) {
    const int frame = files.frames()[i];
    player.setFrame(frame);
    values.write(valuesRow(player, frame));
    placements.write(placementsRows(player, frame));
    files.addFrame(player, i, poses);
  }
  values.close();
  placements.close();
}

// Notes a failure in the place of throwing it.
template <class Play>
void playJob(Job& ioJob, LowestFailure& ioFailure, Play play) {
  try {
    play();
  } catch (...) {
    ioJob.mFailure = std::current_exception();
    std::size_t lowest = ioFailure;
    // Keeps the minimum when several jobs fail at a time.
    while (ioJob.mIndex < lowest && !ioFailure.compare_exchange_weak(lowest, ioJob.mIndex)) {
    }
  }
}

// Joins its threads at the end, whatever happens.
struct Threads {
  std::vector<std::thread> mThreads;
  ~Threads() {
    for (std::thread& thread : mThreads) thread.join();
  }
};

// Each job but the first loads the scene in its own thread: a manager belongs to one thread.
void playJobs(ScenePlayer& player, const PlayerMaker& makePlayer, std::vector<Job>& ioJobs,
              SceneFiles& files) {
  LowestFailure failure{ioJobs.size()};
  {
    Threads threads;
    // The references that the threads take stay valid until Threads has joined them.
    threads.mThreads.reserve(ioJobs.size());
    for (std::size_t j = 1; j < ioJobs.size(); ++j) {
      threads.mThreads.emplace_back([&, j] {
        playJob(ioJobs[j], failure, [&] {
          ScenePlayer own = makePlayer();
          playFrames(own, ioJobs[j], files, failure);
        });
      });
    }
    playJob(ioJobs[0], failure, [&] { playFrames(player, ioJobs[0], files, failure); });
  }
  for (const Job& job : ioJobs) {
    if (job.mFailure) std::rethrow_exception(job.mFailure);
  }
}

std::vector<Job> splitFrames(std::size_t frames, std::size_t jobs) {
  std::vector<Job> result;
  for (std::size_t j = 0; j < jobs; ++j) {
    // Every job has a frame: there are never more jobs than frames.
    result.push_back({j, frames * j / jobs, frames * (j + 1) / jobs, nullptr});
  }
  return result;
}

}  // namespace

std::vector<std::string> writeScene(const PlayerMaker& makePlayer, SceneOutput output) {
  ScenePlayer player = makePlayer();
  if (output.mFrames.empty()) {
    output.mFrames.resize(std::size_t(lastFrame(player.scene())) + 1);
    std::iota(output.mFrames.begin(), output.mFrames.end(), 0);
  }
  std::vector<Job> jobs = splitFrames(
      output.mFrames.size(), std::clamp<std::size_t>(output.mJobs, 1, output.mFrames.size()));
  SceneFiles files(player, output);
  try {
    playJobs(player, makePlayer, jobs, files);
    return files.publish(player, jobs.size());
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(files.inFinalPaths(error.what()));
  }
}

}  // namespace vexa::scene
