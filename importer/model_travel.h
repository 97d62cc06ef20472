#pragma once

#include "importer/SourceModel.h"

namespace vexa::importer {

/// Makes every clip lead away evenly, for clips that walk in place: a new root node above all
/// others moves by `travel`, in the model's world, between the first and the last key of a clip.
void addTravel(SourceModel& ioModel, const Oru::TVector3D<double>& travel);

}  // namespace vexa::importer
