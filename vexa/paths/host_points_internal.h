#pragma once

#include "vexa/host/CZelPoint.h"
#include "vexa/host/CZelVector.h"
#include "vexa/host/IZelBezierPoint.h"
#include "vexa/host/TZelObjectMgr.h"
#include "vexa/math/uxs_generic_vec3.h"

/// What the path info and the path agent read from the host's list of points, which may be null.
///
/// Each operation throws as XCZELPathInfo says; the texts name the operation of the same name.
namespace Norvel::Vexa::host_points {

using V3 = UXS::uxs_generic_vec3<float>;
using List = UxZel::TZelObjectMgr<UxZel::IZelBezierPoint>;

/// Throws the error of a missing list, in the name of an operation.
void checkList(const List* points, const char* operation);
/// The point at an index; never null.
UxZel::IZelBezierPoint* pointAt(const List* points, unsigned int index, const char* operation);

unsigned int getNbBezierPoints(const List* points);
V3 getPassagePointPositionAt(const List* points, unsigned int index);
V3 getBeforeControlPointAt(const List* points, unsigned int index);
V3 getAfterControlPointAt(const List* points, unsigned int index);
V3 getToBeforeCtrlPtAt(const List* points, unsigned int index);
V3 getToAfterCtrlPtAt(const List* points, unsigned int index);
float getAfterControlPointWeightAt(const List* points, unsigned int index);
float getBeforeControlPointWeightAt(const List* points, unsigned int index);
bool getTangentLockedAt(const List* points, unsigned int index);

}  // namespace Norvel::Vexa::host_points
