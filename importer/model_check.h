#pragma once

#include "importer/SourceModel.h"

namespace vexa::importer {

/// Makes sure that a model can be computed with, so that nobody after this has to ask.
///
/// Throws std::runtime_error with one line for what would make it another model: indices out of
/// range, coordinates, matrices and keys that are not finite numbers. Repairs, with a note in
/// `mNotes`: weights that are negative or not finite and influences on absent vertices are dropped,
/// as are rotation keys without a length. Without a note: weights of 0 are dropped, keys are sorted
/// by time, texture coordinates that are not finite become 0, absent materials get a name.
void checkModel(SourceModel& ioModel);

}  // namespace vexa::importer
