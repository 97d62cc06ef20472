#pragma once

#include "vexa/host/IZelInterpolatedValue.h"
#include "vexa/host/IZelMgr.h"
#include "vexa/host/IZelObjectInstance.h"
#include "vexa/host/IZelZelObjectDefinition.h"

namespace vexa::benchmarks {

/// The calls that any search of the nearest keys must make, from a library of its own: beside the
/// host, the compiler would see through its classes. The sum of the keys' frames.
int sumOfKeyFrames(const UxZel::IZelInterpolatedValue& value);

/// The calls on the host that one step of a walker makes: its keys, settings and take, the search
/// for its path, every point of that, and the setters. A sum of what was read.
double callHost(const UxZel::IZelMgr& mgr, const UxZel::IZelInterpolatedValue& value,
                UxZel::IZelObjectInstance& instance,
                const UxZel::IZelZelObjectDefinition& definition);

}  // namespace vexa::benchmarks
