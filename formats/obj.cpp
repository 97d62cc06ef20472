#include "formats/obj.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <istream>
#include <limits>
#include <map>
#include <stdexcept>
#include <streambuf>
#include <string_view>
#include <system_error>
#include <tiny_obj_loader.h>

#include "formats/number_text.h"
#include "formats/read_file.h"

namespace vexa::formats {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// Takes the next word off the front.
std::string_view takeWord(std::string_view& ioText) {
  ioText = trimmed(ioText);
  const std::string_view word = ioText.substr(0, ioText.find_first_of(kBlanks));
  ioText.remove_prefix(word.size());
  return word;
}

bool parseId(std::string_view text, unsigned int& outValue) {
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, outValue);
  return error == std::errc() && stop == end;
}

// The nearest float. Exporters write numbers such as 1e-42 where they mean zero; parseNumber
// refuses them for a float, so they go by way of a double.
bool parseFloat(std::string_view text, float& outValue) {
  if (!text.empty() && text[0] == '+') text.remove_prefix(1);
  if (parseNumber(text, outValue)) return true;
  double value = 0;
  if (!parseNumber(text, value) || !(value > -1 && value < 1)) return false;
  outValue = float(value);
  return true;
}

// A text to be read as a stream that knows which line was read last.
//
// tinyobjloader gives its callbacks neither the number nor the text of a line. It reads its stream
// line by line, so the place up to which it has read is the end of the line in question. mSeen
// only moves forwards: each byte is looked at once.
class LineSource : public std::streambuf {
 public:
  explicit LineSource(const std::string& text) : mText(text) {
    char* const begin = const_cast<char*>(mText.data());  // a get area is never written
    setg(begin, begin, begin + mText.size());
  }

  // The line that was read last, without its end.
  std::string_view line() {
    const auto end = static_cast<std::size_t>(gptr() - eback());
    for (; mSeen < end; ++mSeen) {
      if (mIsNewLine) {
        mStart = mSeen;
        ++mNumber;
      }
      const bool isPair =
          mText[mSeen] == '\r' && mSeen + 1 < mText.size() && mText[mSeen + 1] == '\n';
      mIsNewLine = mText[mSeen] == '\n' || (mText[mSeen] == '\r' && !isPair);
    }
    return trimmed(std::string_view(mText).substr(mStart, mSeen - mStart));
  }
  // Its number, counted from 1.
  std::size_t number() const { return mNumber; }

 private:
  const std::string& mText;
  std::size_t mSeen = 0, mStart = 0, mNumber = 0;
  bool mIsNewLine = true;
};

// Gathers what tinyobjloader finds. The loader reads what is no number as 0 and rounds loosely, so
// the numbers of a line are read here.
class Gatherer {
 public:
  Gatherer(const std::string& text, const std::string& name) : mSource(text), mName(name) {}

  ObjModel read() {
    tinyobj::callback_t callbacks;
    callbacks.vertex_cb = [](void* self, float, float, float, float) { of(self).addPoint(); };
    callbacks.texcoord_cb = [](void* self, float, float, float) { of(self).addUV(); };
    callbacks.index_cb = [](void* self, tinyobj::index_t* corners, int count) {
      of(self).addFace(corners, count);
    };
    callbacks.usemtl_cb = [](void* self, const char* name, int) { of(self).useMaterial(name); };
    std::istream stream(&mSource);
    tinyobj::LoadObjWithCallback(stream, callbacks, this);
    nameMaterials();
    return std::move(mModel);
  }

 private:
  static Gatherer& of(void* self) { return *static_cast<Gatherer*>(self); }

  [[noreturn]] void fail(const std::string& what) {
    mSource.line();
    throw std::runtime_error(mName + ":" + std::to_string(mSource.number()) + ": " + what);
  }

  // The numbers of the line that was read last, behind its keyword; `needed` of them must be
  // there.
  template <std::size_t N>
  std::array<float, N> numbers(std::size_t needed) {
    std::string_view line = mSource.line();
    takeWord(line);
    std::array<float, N> values{};
    for (std::size_t i = 0; i < N; ++i) {
      const std::string_view word = takeWord(line);
      if (word.empty() && i >= needed) break;
      if (word.empty()) fail("expected " + std::to_string(needed) + " numbers");
      if (!parseFloat(word, values[i])) fail("\"" + std::string(word) + "\" is no number");
    }
    return values;
  }

  void addPoint() {
    const auto [x, y, z] = numbers<3>(3);
    mModel.points.emplace_back(x, y, z);
  }

  void addUV() { mUVs.push_back(numbers<2>(1)); }

  // An index of the file counts from 1, or from -1 backwards.
  std::size_t resolve(int index, std::size_t count, const char* what) {
    const auto size = static_cast<std::int64_t>(count);
    const std::int64_t position = index < 0 ? size + index : std::int64_t{index} - 1;
    if (position < 0 || position >= size) {
      fail(std::string(what) + " " + std::to_string(index) + " of " + std::to_string(count));
    }
    return static_cast<std::size_t>(position);
  }

  ObjCorner corner(const tinyobj::index_t& index) {
    ObjCorner result;
    const std::size_t point = resolve(index.vertex_index, mModel.points.size(), "point");
    result.point = static_cast<unsigned int>(point);
    if (index.texcoord_index != 0) {
      const auto& uv = mUVs[resolve(index.texcoord_index, mUVs.size(), "uv")];
      result.u = uv[0];
      result.v = uv[1];
    }
    return result;
  }

  void addFace(const tinyobj::index_t* corners, int count) {
    if (count < 3) fail("a face of " + std::to_string(count) + " corners");
    const ObjCorner first = corner(corners[0]);
    ObjCorner last = corner(corners[1]);
    // A fan around the first corner:  (0 1 2) (0 2 3) (0 3 4) ...
    for (int i = 2; i < count; ++i) {
      const ObjCorner next = corner(corners[i]);
      mModel.triangles.push_back({{first, last, next}, materialInUse()});
      last = next;
    }
  }

  void useMaterial(const char* name) { mMaterial = trimmed(name); }

  // For now in order of appearance.
  unsigned int materialInUse() {
    const auto next = static_cast<unsigned int>(mModel.materials.size());
    const auto [known, isNew] = mMaterials.try_emplace(mMaterial, next);
    if (isNew) mModel.materials.push_back(mMaterial);
    return known->second;
  }

  // Turns names into ids if each is a number: formatObj calls a material without a name by its id,
  // and reading such a file back gives the same ids.
  void nameMaterials() {
    std::vector<unsigned int> ids;
    for (const std::string& name : mModel.materials) {
      unsigned int id = 0;
      if (!name.empty() && !parseId(name, id)) return;
      ids.push_back(id);
    }
    for (ObjTriangle& triangle : mModel.triangles) triangle.material = ids[triangle.material];
    mModel.materials.clear();
  }

  LineSource mSource;
  const std::string& mName;
  ObjModel mModel;
  std::vector<std::array<float, 2>> mUVs;
  std::string mMaterial;
  std::map<std::string, unsigned int> mMaterials;
};

}  // namespace

ObjModel parseObj(const std::string& text, const std::string& name) {
  return Gatherer(text, name).read();
}

ObjModel readObj(const std::string& path) { return parseObj(readFile(path), path); }

void checkCorners(const ObjModel& model) {
  for (std::size_t t = 0; t < model.triangles.size(); ++t) {
    for (const ObjCorner& corner : model.triangles[t].corners) {
      if (corner.point < model.points.size()) continue;
      throw std::invalid_argument("triangle " + std::to_string(t) + " has point " +
                                  std::to_string(corner.point) + " of " +
                                  std::to_string(model.points.size()));
    }
  }
}

ObjModel objOf(const UXS::Mesh& mesh) {
  ObjModel model;
  model.points = mesh.GetVerticesArray();
  const auto& triangles = mesh.GetTrianglesArray();
  for (unsigned int t = 0; t < triangles.size(); ++t) {
    const auto& c = triangles[t];
    const UXS::Mesh::CornerUVs uv =
        mesh.HasUVCoords() ? mesh.GetTriangleUVCoords(t) : UXS::Mesh::CornerUVs();
    model.triangles.push_back(
        {{{{c.x, uv.x.x, uv.x.y}, {c.y, uv.y.x, uv.y.y}, {c.z, uv.z.x, uv.z.y}}},
         mesh.GetTriangleMaterialID(t)});
  }
  return model;
}

void addTo(UXS::Mesh::EditorBase& editor, const ObjModel& model) {
  checkCorners(model);
  std::vector<unsigned int> vertices;
  for (const auto& point : model.points) vertices.push_back(editor.AddVertex(point));
  for (const ObjTriangle& triangle : model.triangles) {
    const auto& [a, b, c] = triangle.corners;
    const unsigned int t = editor.AddTriangle(
        {vertices[a.point], vertices[b.point], vertices[c.point]}, triangle.material);
    editor.SetTriangleUVCoords(t, {{a.u, a.v}, {b.u, b.v}, {c.u, c.v}});
  }
}

}  // namespace vexa::formats
