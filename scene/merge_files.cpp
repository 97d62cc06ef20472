#include "scene/merge_files.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

#include "formats/NewFile.h"
#include "formats/glb.h"
#include "formats/mesh_surfaces.h"
#include "formats/point_cache.h"
#include "scene/mesh_names.h"

namespace vexa::scene {
namespace {

using Points = formats::MovingMesh::Points;

bool endsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// Appends a table; of all but the first one without the header. Names of values may hold line
// breaks, in quotes.
void appendTable(const std::string& path, bool withHeader, formats::NewFile& ioFile) {
  std::ifstream from(path, std::ios::binary);
  bool isQuoted = false, isCopying = withHeader;
  std::vector<char> block(std::size_t{1} << 20);
  while (from.read(block.data(), std::streamsize(block.size())) || from.gcount() > 0) {
    std::string_view bytes(block.data(), std::size_t(from.gcount()));
    // Skips the header, which ends at the first line break outside quotes. A doubled quote inside a
    // quoted field turns the state off and on again, which is right as well.
    while (!isCopying && !bytes.empty()) {
      if (bytes[0] == '"') isQuoted = !isQuoted;
      isCopying = bytes[0] == '\n' && !isQuoted;
      bytes.remove_prefix(1);
    }
    ioFile.write(bytes);
  }
  if (from.bad()) throw std::runtime_error(path + ": cannot be read");
}

// The readers of one mesh's caches, part by part.
std::vector<formats::PointCacheReader> openCaches(const std::vector<MergedPart>& parts,
                                                  const std::string& name) {
  // All parts are open at a time: mergeGlb needs a frame of every mesh at once.
  std::vector<formats::PointCacheReader> readers;
  for (const MergedPart& part : parts) {
    // Such a part has no files.
    if (part.mFrames.empty()) continue;
    readers.emplace_back(part.mFolder + "/" + name);
    const formats::PointCacheHeader& header = readers.back().header();
    const bool fits = std::size_t(header.mSamples) == part.mFrames.size() &&
                      header.mPoints == readers.front().header().mPoints;
    if (!fits) throw std::runtime_error(part.mFolder + "/" + name + ": does not fit its run");
  }
  return readers;
}

}  // namespace

std::vector<std::string> mergeTables(const std::vector<MergedPart>& parts,
                                     const formats::OutputFolder& target) {
  std::vector<std::string> names = {"values.csv", "placements.csv"};
  for (const std::string& name : names) {
    formats::NewFile file(target.pathFor(name), target.finalPath(name));
    bool isFirst = true;
    for (const MergedPart& part : parts) {
      if (part.mFrames.empty()) continue;
      appendTable(part.mFolder + "/" + name, isFirst, file);
      isFirst = false;
    }
    file.close();
  }
  return names;
}

// Names of OBJ files hold their frame, so the files of two parts never have one name.
std::vector<std::string> mergeObjs(const std::vector<MergedPart>& parts,
                                   const formats::OutputFolder& target) {
  std::vector<std::string> names;
  for (const MergedPart& part : parts) {
    for (const std::string& name : part.mNames) {
      if (!endsWith(name, ".obj")) continue;
      formats::NewFile file(target.pathFor(name), target.finalPath(name));
      file.append(part.mFolder + "/" + name);
      file.close();
      names.push_back(name);
    }
  }
  return names;
}

std::vector<std::string> mergeCaches(const std::vector<MergedPart>& parts, float step,
                                     const formats::OutputFolder& target) {
  // The rest mesh of a whole run shows its first frame, and that frame is in the first part that
  // has any.
  const auto first = std::find_if(parts.begin(), parts.end(),
                                  [](const auto& part) { return !part.mFrames.empty(); });
  std::vector<std::string> names;
  for (const std::string& name : first->mNames) {
    if (endsWith(name, ".obj")) {
      formats::NewFile file(target.pathFor(name), target.finalPath(name));
      file.append(first->mFolder + "/" + name);
      file.close();
      names.push_back(name);
    }
    if (!endsWith(name, ".pc2")) continue;
    const auto readers = openCaches(parts, name);
    std::size_t samples = 0;
    for (const auto& reader : readers) samples += std::size_t(reader.header().mSamples);
    const formats::PointCacheHeader& header = readers.front().header();
    formats::PointCacheWriter writer(target.pathFor(name), target.finalPath(name),
                                     std::size_t(header.mPoints), header.mFirstFrame, step,
                                     samples);
    Points points;
    std::size_t next = 0;
    for (const auto& reader : readers) {
      for (std::int32_t i = 0; i < reader.header().mSamples; ++i) {
        reader.read(std::size_t(i), points);
        writer.write(next++, points);
      }
    }
    writer.close();
    names.push_back(name);
  }
  return names;
}

void mergeGlb(const std::vector<MergedPart>& parts, const std::vector<int>& frames,
              ScenePlayer& player, const formats::OutputFolder& target) {
  std::vector<formats::MovingMesh> meshes = player.meshes();
  formats::addSurfaces(meshes);
  std::vector<std::vector<formats::PointCacheReader>> readers;
  for (const std::string& name : meshNames(meshes))
    readers.push_back(openCaches(parts, name + ".pc2"));
  // The GLB rests in the first frame of the run: it goes to the writer with the meshes, and the
  // loop below skips it.
  std::vector<Points> poses(meshes.size());
  for (std::size_t m = 0; m < meshes.size(); ++m) {
    meshes[m].mFrames.resize(1);
    readers[m].front().read(0, meshes[m].mFrames[0]);
  }
  const std::string path = target.pathFor("scene.glb");
  formats::NewFile file(path, target.finalPath("scene.glb"));
  formats::GlbWriter writer(
      file, target.finalPath("scene.glb"), meshes, frames.size(),
      framesPerSecond(player.scene().mSettings.mElements[0].mTimeScale, frames));
  std::size_t frame = 0;
  std::size_t partIndex = 0;
  for (const MergedPart& part : parts) {
    if (part.mFrames.empty()) continue;
    for (std::size_t i = 0; i < part.mFrames.size(); ++i, ++frame) {
      if (frame == 0) continue;
      for (std::size_t m = 0; m < meshes.size(); ++m) readers[m][partIndex].read(i, poses[m]);
      writer.writeFrame(frame, poses);
    }
    ++partIndex;
  }
  writer.finish();
  file.close();
}

}  // namespace vexa::scene
