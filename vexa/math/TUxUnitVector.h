#pragma once

#include "vexa/math/TUxBaseVector.h"

namespace Norvel::Vexa {

template <class T>
class ux_vect3;

/// A vector that was normalised when it was made: of length 1 within rounding, or exactly zero.
///
/// Made only by conversion from ux_vect3.
template <class T>
class TUxUnitVector : public TUxBaseVector<T> {
  friend class ux_vect3<T>;
  TUxUnitVector(T newX, T newY, T newZ) : TUxBaseVector<T>(newX, newY, newZ) { this->Normalize(); }
};

}  // namespace Norvel::Vexa
