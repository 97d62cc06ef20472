#pragma once

#include <cstddef>
#include <cstdint>

#include "vexa/host/IZelIdentity.h"

namespace vexa::refhost {

/// An index that names nothing.
inline constexpr std::size_t kNone = std::size_t(-1);

/// The identity of a scene object.
struct Identity final : UxZel::IZelIdentity {
  UxZel::CZelUUID mUUID;

  const UxZel::CZelUUID* GetUUID() const override { return &mUUID; }
};

/// An identifier made from a number; number 0 gives "none".
constexpr UxZel::CZelUUID numberedUUID(std::uint32_t number) { return {{0, 0, 0, number}}; }

}  // namespace vexa::refhost
