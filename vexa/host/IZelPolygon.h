#pragma once

#include <cstdint>

#include "vexa/host/TZelObjectMgr.h"

namespace UxZel {

/// One corner of a polygon.
struct sPolygonCorner {
  std::uint32_t mPointIndex = 0;  ///< into the object's point list
  std::uint32_t mReserved = 0;    ///< never read
  float mU = 0, mV = 0;           ///< texture coordinates
};
static_assert(sizeof(sPolygonCorner) == 16, "hosts lay corners out so");

/// One polygon of an animated object's mesh. Positions of virtual operations are fixed.
class IZelPolygon {
 public:
  virtual void reserved0() {}
  virtual void reserved1() {}
  virtual void reserved2() {}

  /// 3: the material of the polygon, stored with its triangle.
  virtual unsigned int GetMaterialIndex() const = 0;
  virtual void reserved4() {}
  /// 5: the corners, at least three; only the first three are read. Owned by the host.
  virtual const TZelObjectMgr<sPolygonCorner>* GetVertices() const = 0;

 protected:
  ~IZelPolygon() = default;
};

}  // namespace UxZel
