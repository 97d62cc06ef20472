#pragma once

#include <stdexcept>
#include <string>

#include "vexa/host/IZelMgr.h"
#include "vexa/host/TZelObjectMgr.h"

// Reads elements of the host's scene that may be missing.
namespace Norvel::Vexa {

[[noreturn]] inline void raise(const char* operation, const char* fault) {
  throw std::runtime_error(std::string(operation) + " : " + fault);
}

// An element of a list; raises "operation : fault" for an index outside of it.
template <class T>
T* elementAt(const UxZel::TZelObjectMgr<T>* list, int index, const char* operation,
             const char* fault) {
  if (list == nullptr || index < 0 || index >= list->GetCount()) raise(operation, fault);
  return list->GetAt(index);
}

// The settings of the scene.
inline const UxZel::IZelSettings& settingsOf(const UxZel::IZelMgr* mgr, const char* operation) {
  return *elementAt(mgr->GetSettingsList(), 0, operation, "list of settings is empty");
}

// The first 3D path of that identifier, or null.
inline const UxZel::IZel3DPath* find3DPath(const UxZel::IZelMgr* mgr, const UxZel::CZelUUID& id) {
  const UxZel::TZelObjectMgr<UxZel::IZel3DPath>* paths = mgr->Get3DPaths();
  const int count = paths->GetCount();
  for (int i = 0; i < count; ++i) {
    const UxZel::IZel3DPath* path = paths->GetAt(i);
    if (*path->GetIdentity()->GetUUID() == id) return path;
  }
  return nullptr;
}

}  // namespace Norvel::Vexa
