#include <algorithm>
#include <charconv>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "formats/number_text.h"
#include "formats/obj.h"
#include "formats/write_file.h"

namespace vexa::formats {
namespace {

// Text that grows in large steps: a piece is formatted where it stays.
class Text {
 public:
  // Room for the shortest texts of a few numbers, or for more.
  void reserve(std::size_t bytes = kPiece) {
    if (mBytes.size() - mUsed < bytes) mBytes.resize(2 * mBytes.size() + bytes + (1 << 16));
  }
  void put(char c) { mBytes[mUsed++] = c; }
  void put(float number) { moveTo(writeShortest(mBytes.data() + mUsed, number)); }
  void put(std::uint64_t number) {
    moveTo(std::to_chars(mBytes.data() + mUsed, mBytes.data() + mBytes.size(), number).ptr);
  }
  void append(std::string_view text) {
    reserve(text.size());
    std::memcpy(mBytes.data() + mUsed, text.data(), text.size());
    mUsed += text.size();
  }
  std::string_view view() const { return {mBytes.data(), mUsed}; }
  std::string take() {
    mBytes.resize(mUsed);
    return std::move(mBytes);
  }

 private:
  void moveTo(const char* end) { mUsed = std::size_t(end - mBytes.data()); }

  // A face is the longest line: three corners of two numbers with up to 20 digits each.
  static constexpr std::size_t kPiece = 256;
  std::string mBytes;
  std::size_t mUsed = 0;
};

// About what a line takes; more is no fault.
constexpr std::size_t kLineBytes = 40;

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
  std::uint32_t add(const ObjCorner& corner, Text& ioText) {
    std::uint64_t key = 0;
    std::memcpy(&key, &corner.u, sizeof(float));
    std::memcpy(reinterpret_cast<char*>(&key) + sizeof(float), &corner.v, sizeof(float));
    std::uint32_t& index = mTable[placeOf(key)];
    if (index != 0) return index;
    mKeys.push_back(key);
    index = std::uint32_t(mKeys.size());
    if (2 * mKeys.size() > mTable.size()) grow();
    ioText.reserve();
    for (const char c : {'v', 't', ' '}) ioText.put(c);
    ioText.put(corner.u);
    ioText.put(' ');
    ioText.put(corner.v);
    ioText.put('\n');
    return std::uint32_t(mKeys.size());
  }

 private:
  // Where the index of the key is, or is to come.
  std::size_t placeOf(std::uint64_t key) const {
    // 2^64 divided by the golden ratio spreads neighbouring keys. Every bit of u and v reaches the
    // highest bits alone: coordinates that are whole 256ths differ in no low one.
    auto place = std::size_t((key ^ key >> 29) * 0x9E3779B97F4A7C15u >> mShift);
    while (mTable[place] != 0 && mKeys[mTable[place] - 1] != key) {
      place = (place + 1) & (mTable.size() - 1);
    }
    return place;
  }
  void grow() {
    std::vector<std::uint32_t>(2 * mTable.size()).swap(mTable);
    --mShift;
    for (std::size_t i = 0; i < mKeys.size(); ++i) {
      mTable[placeOf(mKeys[i])] = std::uint32_t(i + 1);
    }
  }

  std::vector<std::uint64_t> mKeys;  // of the indices from 1 on
  // The indices, by open addressing; 0 where there is none. At most half of the places are taken,
  // so a search ends soon at a free one.
  std::vector<std::uint32_t> mTable = std::vector<std::uint32_t>(1024);
  unsigned int mShift = 54;  // the table has 2^(64 - mShift) places
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

void putFaces(const ObjModel& model, Text& ioText) {
  const bool withUV = hasUV(model);
  UVIndices indices;
  Text faces;
  faces.reserve(kLineBytes * model.triangles.size());
  for (std::size_t t = 0; t < model.triangles.size(); ++t) {
    const ObjTriangle& triangle = model.triangles[t];
    if (t == 0 || triangle.material != model.triangles[t - 1].material) {
      faces.append("usemtl " + nameInObj(model, triangle.material) + '\n');
    }
    putFace(triangle, withUV ? &indices : nullptr, ioText, faces);
  }
  ioText.append(faces.view());
}

}  // namespace

std::string formatObjFaces(const ObjModel& model) {
  checkCorners(model);
  Text text;
  putFaces(model, text);
  return text.take();
}

void appendObjPoints(const std::vector<Oru::TVector3D<float>>& points, std::string& ioText) {
  Text text;
  putPoints(points, text);
  ioText += text.view();
}

std::string formatObj(const ObjModel& model, const std::string& materialFile) {
  checkCorners(model);
  Text text;
  if (!materialFile.empty()) text.append("mtllib " + materialFile + '\n');
  text.reserve(2 * kLineBytes * model.points.size());
  putPoints(model.points, text);
  putFaces(model, text);
  return text.take();
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
