#include <algorithm>

#include "importer/fbx_scene_internal.h"

namespace vexa::importer {

namespace {

const std::vector<FbxScene::Link> kNoLinks;

// "Name\0\1Class" in binary files, "Class::Name" in text.
std::string plainName(const std::string& stored) {
  const std::size_t zero = stored.find('\0');
  if (zero != std::string::npos) return stored.substr(0, zero);
  const std::size_t colons = stored.find("::");
  return colons == std::string::npos ? stored : stored.substr(colons + 2);
}

// A file states a property only where it differs from the template of its class.
std::map<std::string, const FbxRecord*> defaultsByClass(const FbxRecord& root) {
  std::map<std::string, const FbxRecord*> defaults;
  const FbxRecord* definitions = root.find("Definitions");
  if (definitions == nullptr) return defaults;
  for (const FbxRecord& type : definitions->mChildren) {
    const FbxRecord* record = type.find("PropertyTemplate");
    if (type.mName == "ObjectType" && record != nullptr) defaults.emplace(type.text(0), record);
  }
  return defaults;
}

const FbxObject* firstOf(const std::vector<FbxScene::Link>& links, const char* className) {
  const auto found = std::find_if(links.begin(), links.end(), [&](const FbxScene::Link& link) {
    return link.mObject->mClass == className;
  });
  return found == links.end() ? nullptr : found->mObject;
}

// The values of a property come behind its name, type, label and flags.
constexpr std::size_t kFirstValue = 4;

const FbxRecord* propertyOf(const FbxObject& object, const char* name, std::size_t valueCount) {
  // The object's own value, else that of its class.
  for (const FbxRecord* holder : {object.mRecord, object.mDefaults}) {
    const FbxRecord* property = fbxProperty(holder, name);
    if (property != nullptr && property->mValues.size() >= kFirstValue + valueCount) {
      return property;
    }
  }
  return nullptr;
}

}  // namespace

FbxScene::FbxScene(const FbxDocument& document) : mDocument(document) {
  if (const FbxRecord* objects = document.mRoot.find("Objects")) addObjects(*objects);
  if (const FbxRecord* links = document.mRoot.find("Connections")) addConnections(*links);
}

void FbxScene::addObjects(const FbxRecord& objects) {
  const auto defaults = defaultsByClass(mDocument.mRoot);
  // Links keep pointers to the objects, which must not move.
  mObjects.reserve(objects.mChildren.size());
  for (const FbxRecord& record : objects.mChildren) {
    if (record.mValues.size() < 2) continue;
    FbxObject object;
    object.mId = record.integer(0);
    object.mClass = record.mName;
    object.mName = plainName(record.text(1));
    object.mSort = record.text(2);
    object.mRecord = &record;
    const auto found = defaults.find(record.mName);
    if (found != defaults.end()) object.mDefaults = found->second;
    // Of two objects with one number the first counts.
    if (mById.emplace(object.mId, mObjects.size()).second) mObjects.push_back(std::move(object));
  }
}

void FbxScene::addConnections(const FbxRecord& connections) {
  for (const FbxRecord& record : connections.mChildren) {
    if (record.mValues.size() < 3) continue;
    const std::int64_t low = record.integer(1), high = record.integer(2);
    const auto lower = mById.find(low), upper = mById.find(high);
    // One end may be the root, which is not an object, or an object that was left out.
    if (lower != mById.end()) mBelow[high].push_back({&mObjects[lower->second], record.text(3)});
    if (upper != mById.end()) mAbove[low].push_back({&mObjects[upper->second], record.text(3)});
  }
}

const std::vector<FbxScene::Link>& FbxScene::below(std::int64_t id) const {
  const auto found = mBelow.find(id);
  return found == mBelow.end() ? kNoLinks : found->second;
}

const std::vector<FbxScene::Link>& FbxScene::above(std::int64_t id) const {
  const auto found = mAbove.find(id);
  return found == mAbove.end() ? kNoLinks : found->second;
}

const FbxObject* FbxScene::firstBelow(std::int64_t id, const char* className) const {
  return firstOf(below(id), className);
}

const FbxObject* FbxScene::firstAbove(std::int64_t id, const char* className) const {
  return firstOf(above(id), className);
}

const FbxRecord* FbxScene::settings() const { return mDocument.mRoot.find("GlobalSettings"); }

const FbxRecord* fbxProperty(const FbxRecord* holder, const char* name) {
  const FbxRecord* list = holder == nullptr ? nullptr : holder->find("Properties70");
  if (list == nullptr) return nullptr;
  for (const FbxRecord& property : list->mChildren) {
    // P: "Lcl Translation", "Lcl Translation", "", "A", x, y, z
    if (property.text(0) == name) return &property;
  }
  return nullptr;
}

std::optional<Vec3> fbxVector(const FbxObject& object, const char* name) {
  const FbxRecord* property = propertyOf(object, name, 3);
  if (property == nullptr) return std::nullopt;
  const FbxValue* v = &property->mValues[kFirstValue];
  return Vec3(v[0].number(), v[1].number(), v[2].number());
}

std::optional<double> fbxNumber(const FbxObject& object, const char* name) {
  const FbxRecord* property = propertyOf(object, name, 1);
  if (property == nullptr) return std::nullopt;
  return property->mValues[kFirstValue].number();
}

std::optional<Matrix> fbxMatrix(const std::vector<double>& numbers) {
  if (numbers.size() != 16) return std::nullopt;
  Matrix result;
  for (int e = 0; e < 16; ++e) result(e % 4, e / 4) = numbers[std::size_t(e)];
  return result;
}

}  // namespace vexa::importer
