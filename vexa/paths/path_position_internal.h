#pragma once

#include "vexa/host/IZel3DPath.h"
#include "vexa/host/IZelKeyFrame.h"
#include "vexa/host/TZelObjectMgr.h"
#include "vexa/paths/XTBezierPath.h"

namespace Norvel::Vexa {

using BezierPath = XTBezierPath<UXS::uxs_generic_vec3<float>, UXS::uxs_generic_vec3<float>, float>;

// What uxInterpolated3DPath does once the Bezier path of the host path `path` is built.
void positionOn(const BezierPath& bezier, const UxZel::IZel3DPath& path,
                const UxZel::TZelObjectMgr<UxZel::IZelKeyFrame>& keys, int minIndex, int maxIndex,
                int frame, UxZel::IZelKeyFrame::uValue& outPosition,
                UxZel::IZelKeyFrame::uValue& outDirection);
void positionOn(const BezierPath& bezier, const UxZel::IZel3DPath& path,
                const UxZel::TZelObjectMgr<UxZel::IZelKeyFrame>& keys, int minIndex, int maxIndex,
                int frame, UxZel::IZelKeyFrame::uValue& outPosition,
                UxZel::IZelKeyFrame::uValue& outDirection, double lookAhead);

}  // namespace Norvel::Vexa
