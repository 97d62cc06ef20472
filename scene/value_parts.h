#pragma once

#include <string>
#include <vector>

#include "scene/ScenePlayer.h"

namespace vexa::scene {

/// The names of the numbers that a value consists of: "x", "y", "z", "r", ...; one empty name for a
/// value that is a single number. They follow from its kind and from the type of its first key.
std::vector<std::string> partNames(const refhost::Property& value);
/// How many there are.
std::size_t partCount(const refhost::Property& value);
/// Writes the numbers of a sample, as many as partCount says.
void writeParts(const refhost::Property& value, const ScenePlayer::Sample& sample,
                double* outNumbers);
/// The numbers of a sample as a list.
std::vector<double> parts(const refhost::Property& value, const ScenePlayer::Sample& sample);

bool isDate(const refhost::Property& value);
bool isColor(const refhost::Property& value);

}  // namespace vexa::scene
