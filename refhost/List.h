#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "vexa/host/TZelObjectMgr.h"

namespace vexa::refhost {

/// A list of the scene that owns its elements; Element is T or implements it.
///
/// Growing or shrinking the list moves its elements: pointers to them end there.
template <class T, class Element = T>
struct List final : UxZel::TZelObjectMgr<T> {
  /// Mutable because the interface hands writable elements out of a list that it only reads.
  mutable std::vector<Element> mElements;

  /// Appends an element and returns it.
  Element& add(Element element = {}) {
    mElements.push_back(std::move(element));
    return mElements.back();
  }

  int GetCount() const override { return int(mElements.size()); }

  /// An index outside the list removes nothing.
  void RemoveAt(unsigned int index) override {
    if (index < mElements.size()) {
      mElements.erase(mElements.begin() + std::ptrdiff_t(index));
    }
  }

  /// Null for an index outside the list.
  T* GetAt(int index) const override {
    const bool inside = index >= 0 && index < GetCount();
    return inside ? &mElements[std::size_t(index)] : nullptr;
  }

  /// An index past the end appends.
  void InsertAt(unsigned int index) override {
    const std::size_t place = index < mElements.size() ? index : mElements.size();
    mElements.emplace(mElements.begin() + std::ptrdiff_t(place));
  }
};

}  // namespace vexa::refhost
