#pragma once

#include <vector>

#include "c/vexa_c.h"
#include "refhost/Definition.h"
#include "refhost/Instance.h"
#include "refhost/Path.h"
#include "refhost/Property.h"
#include "vexa/math/TVector3D.h"

// From the structs of the interface to those of the reference host. Each throws Fault for a null
// pointer and a number out of range.
namespace vexa::c {

// A text that must be there.
const char* textOf(const char* text, const char* what);
// Throws unless all `count` numbers are finite.
void requireFinite(const double* numbers, std::size_t count, const char* what);
void requireFinite(const float* numbers, std::size_t count, const char* what);
// Throws when an array is null but not empty, or longer than an int counts.
void requireArray(const void* array, std::size_t count, const char* what);

refhost::BezierPoint pointOf(const vexa_path_point& point);
refhost::Key keyOf(const vexa_key& key);
refhost::Definition definitionOf(const vexa_object& object);
// Everything but the object, the parent and the take, which the caller looks up.
refhost::Instance instanceOf(const vexa_instance& instance);

// Arrays of three numbers as plain numbers.
void setPoints(const std::vector<Oru::TVector3D<float>>& points, vexa_mesh& outMesh);
void setTriangles(const std::vector<Oru::TVector3D<unsigned int>>& triangles, vexa_mesh& outMesh);

vexa_placement placementOf(const refhost::Instance& instance);

}  // namespace vexa::c
