#include <algorithm>
#include <charconv>
#include <cstring>
#include <stdexcept>

#include "formats/number_text.h"
#include "formats/obj.h"
#include "formats/write_file.h"

namespace vexa::formats {
namespace {

// Text that grows in large steps: a piece is formatted where it stays.
class Text {
 public:
  // Room for the shortest texts of a few numbers.
  void reserve() {
    if (mBytes.size() - mUsed < kPiece) mBytes.resize(2 * mBytes.size() + (1 << 16));
  }
  void put(char c) { mBytes[mUsed++] = c; }
  void put(float number) { moveTo(writeShortest(mBytes.data() + mUsed, number)); }
  void put(std::uint64_t number) {
    moveTo(std::to_chars(mBytes.data() + mUsed, mBytes.data() + mBytes.size(), number).ptr);
  }
  void append(const std::string& text) {
    mBytes.resize(mUsed);
    mBytes += text;
    mUsed = mBytes.size();
  }
  std::string_view view() const { return {mBytes.data(), mUsed}; }

 private:
  void moveTo(const char* end) { mUsed = std::size_t(end - mBytes.data()); }

  // A face is the longest line: three corners of two numbers with up to 20 digits each.
  static constexpr std::size_t kPiece = 256;
  std::string mBytes;
  std::size_t mUsed = 0;
};

bool hasUV(const ObjModel& model) {
  const auto isSet = [](const ObjCorner& c) { return c.u != 0 || c.v != 0; };
  return std::any_of(model.triangles.begin(), model.triangles.end(), [&](const ObjTriangle& t) {
    return std::any_of(t.corners.begin(), t.corners.end(), isSet);
  });
}

// Gives each distinct (u, v), compared by bytes, an index from 1 on, and appends a "vt" line for
// each new one.
class UVIndices {
 public:
  explicit UVIndices(std::size_t corners) {
    std::size_t size = 16;
    while (size < 2 * corners) size *= 2;
    mTable.resize(size);
  }

  std::uint32_t add(const ObjCorner& corner, Text& ioText) {
    std::uint64_t key = 0;
    std::memcpy(&key, &corner.u, sizeof(float));
    std::memcpy(reinterpret_cast<char*>(&key) + sizeof(float), &corner.v, sizeof(float));
    // 2^64 divided by the golden ratio spreads neighbouring keys; the high bits are the mixed ones.
    std::size_t place = std::size_t(key * 0x9E3779B97F4A7C15u >> 20) & (mTable.size() - 1);
    while (mTable[place].index != 0 && mTable[place].key != key) {
      place = (place + 1) & (mTable.size() - 1);
    }
    Entry& entry = mTable[place];
    if (entry.index != 0) return entry.index;
    entry = {key, ++mCount};
    ioText.reserve();
    for (const char c : {'v', 't', ' '}) ioText.put(c);
    ioText.put(corner.u);
    ioText.put(' ');
    ioText.put(corner.v);
    ioText.put('\n');
    return mCount;
  }

 private:
  // A table with open addressing. At most half of it is in use, so a search ends soon at a free
  // entry. Any key is possible, also 0; a free entry is known by its index, since indices start at
  // 1.
  struct Entry {
    std::uint64_t key;
    std::uint32_t index;  // 0: free
  };
  std::vector<Entry> mTable;
  std::uint32_t mCount = 0;
};

void putPoints(const std::vector<Oru::TVector3D<float>>& points, Text& ioText) {
  for (const auto& p : points) {
    ioText.reserve();
    ioText.put('v');
    for (const float value : {p.x, p.y, p.z}) {
      ioText.put(' ');
      ioText.put(value);
    }
    ioText.put('\n');
  }
}

void putFace(const ObjTriangle& triangle, UVIndices* uvs, Text& ioUvs, Text& ioFaces) {
  ioFaces.reserve();
  ioFaces.put('f');
  for (const ObjCorner& corner : triangle.corners) {
    ioFaces.put(' ');
    ioFaces.put(std::uint64_t{corner.point} + 1);
    if (uvs == nullptr) continue;
    ioFaces.put('/');
    ioFaces.put(std::uint64_t{uvs->add(corner, ioUvs)});
  }
  ioFaces.put('\n');
}

}  // namespace

std::string formatObjFaces(const ObjModel& model) {
  checkCorners(model);
  const bool withUV = hasUV(model);
  UVIndices indices(withUV ? 3 * model.triangles.size() : 0);
  Text uvs, faces;
  for (std::size_t t = 0; t < model.triangles.size(); ++t) {
    const ObjTriangle& triangle = model.triangles[t];
    if (t == 0 || triangle.material != model.triangles[t - 1].material) {
      faces.append("usemtl " + nameInObj(model, triangle.material) + '\n');
    }
    putFace(triangle, withUV ? &indices : nullptr, uvs, faces);
  }
  std::string text(uvs.view());
  text += faces.view();
  return text;
}

void appendObjPoints(const std::vector<Oru::TVector3D<float>>& points, std::string& ioText) {
  Text text;
  putPoints(points, text);
  ioText += text.view();
}

std::string formatObj(const ObjModel& model, const std::string& materialFile) {
  const std::string faces = formatObjFaces(model);  // checks the corners first
  std::string text = materialFile.empty() ? "" : "mtllib " + materialFile + '\n';
  appendObjPoints(model.points, text);
  return text += faces;
}

void writeObj(const std::string& path, const ObjModel& model, const std::string& materialFile) {
  writeFile(path, formatObj(model, materialFile));
}

std::string nameInObj(const ObjModel& model, unsigned int material) {
  if (material >= model.materials.size()) return std::to_string(material);
  std::string name = model.materials[material];
  std::replace_if(
      name.begin(), name.end(), [](unsigned char c) { return c < ' '; }, '_');
  return name;
}

}  // namespace vexa::formats
