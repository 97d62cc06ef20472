#pragma once

#include "vexa/Export.h"
#include "vexa/host/IZel3DPath.h"
#include "vexa/host/IZelKeyFrame.h"
#include "vexa/host/TZelObjectMgr.h"

/// Where an object that follows a path is at a frame, and where it faces.
///
/// The keys of such an object hold no points but fractions of the path's length, read as real
/// numbers: 0 is its start, 1 its end. All functions take the whole list of keys and the indices,
/// which must be in the list, of the two keys that enclose the frame. What the curves of the
/// interpolation and the path throw passes: std::runtime_error for a frame outside the two keys
/// that eases, for a fraction outside [0, 1] or NaN and for a path without a list of points,
/// std::out_of_range for a path of fewer than two points. Nothing is written then.
namespace Norvel::Vexa {

/// The fraction of the path's length at a frame.
///
/// Linear when every key of the list is linear or the path is closed. Otherwise the motion eases
/// where the object rests: at a key that is the first or last of the list, or whose neighbour in
/// the list holds the same fraction within 1e-6. At rest at both ends it follows the sinus curve,
/// at rest at the start the square, at rest at the end the one-minus-square; else it is linear.
/// Required behaviour: one key that is not linear, anywhere in the list, enables easing for every
/// two keys; which curve the keys ask for does not matter.
VEXA_EXPORT double getInterpolatedPathPosition(
    const UxZel::TZelObjectMgr<UxZel::IZelKeyFrame>* keys, int minIndex, int maxIndex, int frame,
    bool pathClosed);

/// Writes position and direction, three components each, at a frame. Builds the Bezier path; a
/// manager keeps the paths that it has built. Required behaviour: the direction is a unit vector
/// (or zero) when both keys are at the same frame; between keys it is the curve's derivative, of
/// any length.
VEXA_EXPORT void uxInterpolated3DPath(const UxZel::TZelObjectMgr<UxZel::IZelKeyFrame>* keys,
                                      const UxZel::IZel3DPath* path, int minIndex, int maxIndex,
                                      int frame, UxZel::IZelKeyFrame::uValue& outPosition,
                                      UxZel::IZelKeyFrame::uValue& outDirection);

/// The same with the direction towards the place lookAhead scene units further along the path: the
/// chord to it, not normalised. Where that place is beyond the path, the chord to the end of the
/// path and from there a unit step along it.
/// Required behaviour: a place before the start (a negative lookAhead) counts as beyond the end.
VEXA_EXPORT void uxInterpolated3DPath(const UxZel::TZelObjectMgr<UxZel::IZelKeyFrame>* keys,
                                      const UxZel::IZel3DPath* path, int minIndex, int maxIndex,
                                      int frame, UxZel::IZelKeyFrame::uValue& outPosition,
                                      UxZel::IZelKeyFrame::uValue& outDirection, double lookAhead);

}  // namespace Norvel::Vexa
