#pragma once

#include <vector>

#include "refhost/Definition.h"
#include "refhost/Instance.h"
#include "refhost/List.h"
#include "refhost/Path.h"
#include "refhost/Property.h"
#include "vexa/host/IZelMgr.h"

namespace vexa::refhost {

/// One element of the scene's settings.
struct Settings final : UxZel::IZelSettings {
  int mTimeScale = 25;  ///< host frames per time unit

  int GetTimeScale() const override { return mTimeScale; }
};

/// A whole scene in memory. A new one has settings and nothing else.
struct Scene final : UxZel::IZelMgr {
  // Mutable: the interface hands out writable lists.
  mutable List<UxZel::IZelSettings, Settings> mSettings;
  mutable List<UxZel::IZel3DPath, Path> mPaths;
  mutable List<UxZel::IZelObjectInstance, Instance> mInstances;
  std::vector<Definition> mDefinitions;
  std::vector<Property> mProperties;

  Scene() { mSettings.add(); }

  UxZel::TZelObjectMgr<UxZel::IZelObjectInstance>* GetObjectInstances() const override {
    return &mInstances;
  }
  UxZel::TZelObjectMgr<UxZel::IZelSettings>* GetSettingsList() const override { return &mSettings; }
  UxZel::TZelObjectMgr<UxZel::IZel3DPath>* Get3DPaths() const override { return &mPaths; }
};

}  // namespace vexa::refhost
