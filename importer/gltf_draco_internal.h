#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vexa::importer {

/// Both decode a mesh that Draco has compressed; std::runtime_error when that fails.
std::vector<std::uint32_t> dracoIndices(const std::string& bytes);
/// The attribute of that unique id, one element per vertex. Integers come as they are.
std::vector<double> dracoAttribute(const std::string& bytes, std::uint32_t id, int components);

}  // namespace vexa::importer
