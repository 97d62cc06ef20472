#pragma once

#include <CLI/CLI.hpp>

namespace vexa::cli {

/// Adds the version and every command. The command, its manual page and its completion all read
/// the application that this sets up.
void setUp(CLI::App& app);

}  // namespace vexa::cli
