#include "scene/scene_file.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <utility>

#include "formats/calendar.h"
#include "formats/json_value.h"
#include "formats/obj.h"
#include "scene/value_kind.h"

namespace vexa::scene {
namespace {

using refhost::Scene;

constexpr std::int64_t kMaxInt = 2147483647;
// Hosts find paths and instances by UUID. Paths count from here and instances from 1, so that no
// path has the identifier of an instance.
constexpr std::uint32_t kFirstPathNumber = 1'000'000;

using Names = std::map<std::string, std::size_t>;
using Codes = std::map<std::string, int>;

const Codes kValueTypes = {{"vector", UxZel::kValueVector}, {"color", UxZel::kValueColor},
                           {"real", UxZel::kValueReal},     {"integer", UxZel::kValueInteger},
                           {"date", UxZel::kValueDate},     {"step", UxZel::kValueStep}};
const Codes kCurves = {{"linear", UxZel::kInterpolationLinear},
                       {"square", UxZel::kInterpolationSquare},
                       {"oneMinusSquare", UxZel::kInterpolationOneMinusSquare},
                       {"sinus", UxZel::kInterpolationSinus},
                       {"constant", UxZel::kInterpolationConstant},
                       {"date", UxZel::kInterpolationDate}};
const Codes kKinds = {{"ordinary", 0},
                      {"position", UxZel::kPropertyPosition},
                      {"takeFrame", UxZel::kPropertyAnimatedFrame},
                      {"walk", UxZel::kPropertyAnimatedWalk},
                      {"frameRate", UxZel::kPropertyAnimatedFrameRate}};

// A code by its name, or as the number that a host stores. An unknown number is passed on: the
// library defines what it does with each.
int codeOf(const formats::JsonValue& value, const Codes& codes) {
  if (value.isNumber()) return static_cast<int>(value.integer(0, kMaxInt));
  const auto found = codes.find(value.text());
  if (found != codes.end()) return found->second;
  std::string known;
  for (const auto& [name, code] : codes) known += (known.empty() ? "" : ", ") + name;
  value.fail("expected a number or one of " + known);
}

int intOr(const formats::JsonValue& object, const char* name, int otherwise) {
  const auto found = object.find(name);
  return found ? static_cast<int>(found->integer(-kMaxInt - 1, kMaxInt)) : otherwise;
}

double numberOr(const formats::JsonValue& object, const char* name, double otherwise) {
  const auto found = object.find(name);
  return found ? found->number() : otherwise;
}

bool booleanOr(const formats::JsonValue& object, const char* name, bool otherwise) {
  const auto found = object.find(name);
  return found ? found->boolean() : otherwise;
}

// CZelPoint or CZelVector from three numbers.
template <class Triple>
Triple tripleOr(const formats::JsonValue& object, const char* name, const Triple& otherwise) {
  const auto found = object.find(name);
  if (!found) return otherwise;
  const std::vector<double> numbers = found->numbers(3);
  return {numbers[0], numbers[1], numbers[2]};
}

// Remembers a name that others refer to.
std::string newName(const formats::JsonValue& object, Names& names) {
  // The index of a name is the number of names before it, which is its place in the list.
  const formats::JsonValue name = object.member("name");
  if (!names.emplace(name.text(), names.size()).second) name.fail("is used twice");
  return name.text();
}

std::size_t indexOf(const formats::JsonValue& reference, const Names& names, const char* what) {
  const auto found = names.find(reference.text());
  if (found == names.end()) {
    reference.fail("there is no " + std::string(what) + " \"" + reference.text() + "\"");
  }
  return found->second;
}

// Builds a scene from a document, list by list. A name can be referred to by everything that comes
// later, never by what comes before: so parents are earlier than children, and there is no ring.
class SceneReader {
 public:
  // The page sends each edit as a whole scene. It cannot change meshes, so reading them is skipped.
  enum class Meshes { kRead, kSkip };

  SceneReader(formats::JsonValue document, std::filesystem::path folder, Meshes meshes)
      : mDocument(std::move(document)), mFolder(std::move(folder)), mMeshes(meshes) {}

  Scene read() {
    // The order is that of the references: values name instances and paths, instances name objects.
    mDocument.allowOnly({"$schema", "settings", "paths", "objects", "instances", "values"});
    if (const auto settings = mDocument.find("settings")) readSettings(*settings);
    forEach("paths", [this](const formats::JsonValue& value) { readPath(value); });
    forEach("objects", [this](const formats::JsonValue& value) { readObject(value); });
    forEach("instances", [this](const formats::JsonValue& value) { readInstance(value); });
    forEach("values", [this](const formats::JsonValue& value) { readValue(value); });
    return std::move(mScene);
  }

 private:
  template <class Read>
  void forEach(const char* name, Read read) {
    const auto found = mDocument.find(name);
    if (!found) return;
    for (const formats::JsonValue& element : found->list()) read(element);
  }

  // An absolute name stays as it is: that is how paths are joined.
  std::string fileName(const formats::JsonValue& value) const {
    return (mFolder / value.text()).string();
  }

  void readSettings(const formats::JsonValue& value) {
    value.allowOnly({"timeScale"});
    if (const auto scale = value.find("timeScale")) {
      mScene.mSettings.mElements[0].mTimeScale = static_cast<int>(scale->integer(1, kMaxInt));
    }
  }

  void readPath(const formats::JsonValue& value) {
    value.allowOnly({"name", "closed", "points"});
    refhost::Path path;
    path.mName = newName(value, mPaths);
    path.mIdentity.mUUID =
        refhost::numberedUUID(kFirstPathNumber + static_cast<std::uint32_t>(mPaths.size()));
    path.mClosed = booleanOr(value, "closed", false);
    for (const formats::JsonValue& point : value.member("points").list()) {
      point.allowOnly({"position", "before", "after", "tangentLocked"});
      refhost::BezierPoint bezier;
      // Required; tripleOr alone would take the origin for a missing one.
      point.member("position");
      bezier.mPassage = tripleOr(point, "position", UxZel::CZelPoint{});
      bezier.mBefore = tripleOr(point, "before", UxZel::CZelVector{});
      bezier.mAfter = tripleOr(point, "after", UxZel::CZelVector{});
      bezier.mTangentLocked = booleanOr(point, "tangentLocked", false);
      path.mPoints.add(bezier);
    }
    mScene.mPaths.add(std::move(path));
  }

  void readObject(const formats::JsonValue& value) {
    value.allowOnly({"name", "mesh", "animation", "takes", "anchorVertex", "elevation"});
    refhost::Definition definition;
    definition.mName = newName(value, mObjects);
    definition.mSizes.mElevation = numberOr(value, "elevation", 0);
    definition.mAnimatedObject = std::make_unique<refhost::AnimatedObject>();
    refhost::AnimatedObject& object = *definition.mAnimatedObject;
    if (mMeshes == Meshes::kRead) readMesh(value.member("mesh"), object);
    object.mAnimationFile = fileName(value.member("animation"));
    for (const formats::JsonValue& take : value.member("takes").list()) readTake(take, object);
    // Without the mesh the number of its points is not known.
    const std::int64_t last = mMeshes == Meshes::kRead
                                  ? static_cast<std::int64_t>(object.mPoints.mElements.size()) - 1
                                  : kMaxInt;
    if (const auto anchor = value.find("anchorVertex")) {
      object.mAnchorVertex = static_cast<unsigned int>(anchor->integer(0, last));
    }
    mScene.mDefinitions.push_back(std::move(definition));
  }

  void readMesh(const formats::JsonValue& value, refhost::AnimatedObject& outObject) const {
    formats::ObjModel model;
    try {
      outObject.mMeshFile = fileName(value);
      model = formats::readObj(outObject.mMeshFile);
    } catch (const std::runtime_error& error) {
      // The reader's error names the mesh file; this adds where the scene names it.
      value.fail(error.what());
    }
    for (const auto& point : model.points) {
      outObject.mPoints.add({double(point.x), double(point.y), double(point.z)});
    }
    for (const auto& triangle : model.triangles) {
      refhost::Polygon polygon;
      polygon.mMaterialIndex = triangle.material;
      for (const auto& corner : triangle.corners) {
        polygon.mCorners.add({corner.point, 0, corner.u, corner.v});
      }
      outObject.mPolygons.add(std::move(polygon));
    }
  }

  static void readTake(const formats::JsonValue& value, refhost::AnimatedObject& outObject) {
    value.allowOnly({"name", "frames", "rate", "elevation"});
    refhost::Take take;
    take.mName = value.member("name").text();
    take.mFrameCount = static_cast<int>(value.member("frames").integer(1, kMaxInt));
    take.mFrameRate = static_cast<int>(value.member("rate").integer(1, kMaxInt));
    take.mElevation = numberOr(value, "elevation", 0);
    outObject.mTakes.add(std::move(take));
  }

  void readInstance(const formats::JsonValue& value) {
    value.allowOnly({"name", "object", "class", "parent", "position", "rotationDegrees", "scale",
                     "take", "frameOffset", "startOffset", "billboard"});
    refhost::Instance instance;
    if (const auto parent = value.find("parent")) {
      instance.mParent =
          mScene.mInstances.mElements[indexOf(*parent, mInstances, "earlier instance")]
              .mIdentity.mUUID;
    }
    instance.mName = newName(value, mInstances);
    // Numbered by place, so that an edited scene gives each instance its former identifier.
    instance.mIdentity.mUUID = refhost::numberedUUID(static_cast<std::uint32_t>(mInstances.size()));
    if (const auto name = value.find("class")) instance.mClassName = name->text();
    instance.mPosition = tripleOr(value, "position", UxZel::CZelPoint{});
    // Files state degrees because people write them; the host interfaces take radians.
    constexpr double kRadiansPerDegree = 3.141592653589793 / 180;
    instance.mRotation = numberOr(value, "rotationDegrees", 0) * kRadiansPerDegree;
    readScale(value, instance);
    instance.mBillboardEnabled = booleanOr(value, "billboard", false);
    instance.mState.mFrameOffset = intOr(value, "frameOffset", 0);
    instance.mState.mStartOffset = intOr(value, "startOffset", 0);
    if (const auto object = value.find("object")) {
      instance.mDefinition = indexOf(*object, mObjects, "object");
    }
    if (const auto take = value.find("take")) readTakeChoice(*take, instance);
    mScene.mInstances.add(std::move(instance));
  }

  static void readScale(const formats::JsonValue& value, refhost::Instance& outInstance) {
    const auto scale = value.find("scale");
    if (!scale) return;
    // One factor for all axes, or one for each.
    const std::vector<double> factors =
        scale->isNumber() ? std::vector<double>(3, scale->number()) : scale->numbers(3);
    std::copy(factors.begin(), factors.end(), outInstance.mScale);
  }

  void readTakeChoice(const formats::JsonValue& value, refhost::Instance& outInstance) const {
    if (outInstance.mDefinition == refhost::kNone) value.fail("the instance has no object");
    const auto& takes =
        mScene.mDefinitions[outInstance.mDefinition].mAnimatedObject->mTakes.mElements;
    const auto found = std::find_if(takes.begin(), takes.end(),
                                    [&](const auto& take) { return take.mName == value.text(); });
    if (found == takes.end()) value.fail("the object has no take \"" + value.text() + "\"");
    outInstance.mState.mTakeIndex = static_cast<unsigned int>(found - takes.begin());
  }

  void readValue(const formats::JsonValue& value) {
    value.allowOnly(
        {"name", "kind", "type", "cyclic", "repeat", "path", "instance", "rate", "keys"});
    refhost::Property property;
    property.mName = newName(value, mValues);
    if (const auto kind = value.find("kind")) {
      property.mPropertyType = static_cast<unsigned int>(codeOf(*kind, kKinds));
    }
    property.mCyclic = booleanOr(value, "cyclic", false);
    property.mRepeatCount = intOr(value, "repeat", 0);
    if (const auto rate = value.find("rate")) property.mRate = rate->number();
    if (const auto path = value.find("path")) {
      property.mPath = mScene.mPaths.mElements[indexOf(*path, mPaths, "path")].mIdentity.mUUID;
    }
    if (const auto instance = value.find("instance")) {
      property.mInstance = indexOf(*instance, mInstances, "instance");
    }
    // All keys of a value have one type: the parts of its samples follow from the first key.
    const int type = valueTypeOf(value, property);
    for (const formats::JsonValue& key : value.member("keys").list())
      property.mKeys.add(readKey(key, type));
    requireWhatTheKindNeeds(value, property);
    mScene.mProperties.push_back(std::move(property));
  }

  // The type of a value's keys; the kinds that are driven have one each.
  static int valueTypeOf(const formats::JsonValue& value, const refhost::Property& property) {
    if (const auto type = value.find("type")) return codeOf(*type, kValueTypes);
    return showsFrames(property) ? UxZel::kValueInteger : UxZel::kValueReal;
  }

  static void requireWhatTheKindNeeds(const formats::JsonValue& value,
                                      const refhost::Property& property) {
    if (followsPath(property)) value.member("path");
    if (drivesAnInstance(property)) value.member("instance");
  }

  static refhost::Key readKey(const formats::JsonValue& value, int type) {
    value.allowOnly({"frame", "curve", "value"});
    refhost::Key key;
    // -1 is a key without a frame, which hosts have and the search for keys ignores.
    key.mFrame = static_cast<int>(value.member("frame").integer(-1, kMaxInt));
    if (const auto curve = value.find("curve")) key.mInterpolationType = codeOf(*curve, kCurves);
    key.mValueType = static_cast<unsigned int>(type);
    readKeyValue(value.member("value"), type, key.mValue);
    return key;
  }

  static void readKeyValue(const formats::JsonValue& value, int type,
                           UxZel::IZelKeyFrame::uValue& outValue) {
    switch (type) {
      case UxZel::kValueVector: {
        const std::vector<double> numbers = value.numbers(3);
        std::copy(numbers.begin(), numbers.end(), outValue.mVector);
        return;
      }
      case UxZel::kValueColor: {
        // Not numbers(4): each byte has its own range and its own place in an error.
        std::vector<formats::JsonValue> bytes = value.list();
        if (bytes.size() != 4) value.fail("expected red, green, blue and alpha");
        for (std::size_t i = 0; i < 4; ++i) {
          outValue.mColor[i] = static_cast<unsigned char>(bytes[i].integer(0, 255));
        }
        return;
      }
      case UxZel::kValueInteger:
        outValue.mInteger = static_cast<std::int32_t>(value.integer(-kMaxInt - 1, kMaxInt));
        return;
      case UxZel::kValueDate: {
        const auto seconds = formats::secondsOfDate(value.text());
        if (!seconds) value.fail("expected a date such as \"2024-03-01T12:30:00Z\"");
        outValue.mDate = *seconds;
        return;
      }
      case UxZel::kValueStep:
        outValue.mStep = static_cast<std::uint32_t>(value.integer(0, 4294967295));
        return;
      default:
        outValue.mReal = value.number();
    }
  }

  const formats::JsonValue mDocument;
  const std::filesystem::path mFolder;
  const Meshes mMeshes;
  Scene mScene;
  Names mPaths, mObjects, mInstances, mValues;
};

}  // namespace

Scene readSceneFile(const std::string& file) {
  const formats::JsonTree document = formats::readJsonFile(file);
  try {
    return SceneReader(formats::JsonValue(document), std::filesystem::path(file).parent_path(),
                       SceneReader::Meshes::kRead)
        .read();
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(file + ": " + error.what());
  }
}

Scene readEditedScene(const std::string& text) {
  const formats::JsonTree document = formats::parseJson(text);
  return SceneReader(formats::JsonValue(document), {}, SceneReader::Meshes::kSkip).read();
}

Scene readSceneText(const std::string& text, const std::string& folder) {
  const formats::JsonTree document = formats::parseJson(text);
  return SceneReader(formats::JsonValue(document), folder, SceneReader::Meshes::kRead).read();
}

}  // namespace vexa::scene
