#pragma once

#include <string>

#include "importer/SourceModel.h"

namespace vexa::importer {

/// Adds the clips of one checked model to another, whose nodes have the same names.
///
/// Each node that a clip moves takes those parts of its local transform that the clip moves; the
/// others stay as the model has them. Of several nodes of one name the one below a node of the same
/// name is taken, else the first. A clip keeps its name unless the model has one of that name; then
/// it is called after `file`. Nodes that are not found are noted; throws std::runtime_error when no
/// node is found.
void addMotion(const SourceModel& motion, const std::string& file, SourceModel& ioModel);

}  // namespace vexa::importer
