#pragma once

#include "vexa/Export.h"
#include "vexa/math/TVector3D.h"

namespace Oru {

/// Axis-aligned box from its lowest to its highest corner, in scene units.
///
/// A value-initialised box is all zeros and empty: mIsValid is whether it holds any point.
template <class T>
struct VEXA_EXPORT TBox3D {
  TVector3D<T> mMin;
  TVector3D<T> mMax;
  bool mIsValid = false;
};

}  // namespace Oru
