#pragma once

#include <string>
#include <string_view>

#include "importer/SourceModel.h"

namespace vexa::importer {

/// The model as bytes, for a pipe between two processes of one machine.
std::string packModel(const SourceModel& model);

/// The model from such bytes, which need not be trusted: std::runtime_error when they are cut
/// short, hold counts that do not fit, or anything after the model. Indices are not looked at.
SourceModel unpackModel(std::string_view bytes);

}  // namespace vexa::importer
