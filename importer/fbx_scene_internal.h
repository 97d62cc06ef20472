#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "importer/SourceModel.h"
#include "importer/fbx_document_internal.h"

namespace vexa::importer {

/// An object of an FBX file.
struct FbxObject {
  std::int64_t mId = 0;
  /// What it is ("Model", "Geometry", ...) and of which sort ("Mesh", "LimbNode", ...).
  std::string mClass, mSort;
  std::string mName;
  const FbxRecord* mRecord = nullptr;
  /// The properties that all objects of its class have, or null.
  const FbxRecord* mDefaults = nullptr;
};

/// The objects of an FBX 7 file and what connects them. Borrows the document.
class FbxScene {
 public:
  struct Link {
    const FbxObject* mObject;
    /// The property of the upper object that the lower one drives; empty for a plain connection.
    std::string mProperty;
  };

  explicit FbxScene(const FbxDocument& document);

  const FbxDocument& document() const { return mDocument; }
  const std::vector<FbxObject>& objects() const { return mObjects; }
  /// What is connected below or above an object, in the file's order. The scene's root has id 0 and
  /// is not an object.
  const std::vector<Link>& below(std::int64_t id) const;
  const std::vector<Link>& above(std::int64_t id) const;
  /// The first such object below or above another, or null.
  const FbxObject* firstBelow(std::int64_t id, const char* className) const;
  const FbxObject* firstAbove(std::int64_t id, const char* className) const;
  /// The record of the file's settings, or null.
  const FbxRecord* settings() const;

 private:
  void addObjects(const FbxRecord& objects);
  void addConnections(const FbxRecord& connections);

  const FbxDocument& mDocument;
  std::vector<FbxObject> mObjects;
  std::unordered_map<std::int64_t, std::size_t> mById;
  std::unordered_map<std::int64_t, std::vector<Link>> mBelow, mAbove;
};

/// Properties of an object, else of its class; nothing when neither states them.
std::optional<Vec3> fbxVector(const FbxObject& object, const char* name);
std::optional<double> fbxNumber(const FbxObject& object, const char* name);
/// A property in a record that holds a "Properties70", or null.
const FbxRecord* fbxProperty(const FbxRecord* holder, const char* name);

/// A matrix of 16 numbers, column by column; nothing else gives one.
std::optional<Matrix> fbxMatrix(const std::vector<double>& numbers);

}  // namespace vexa::importer
