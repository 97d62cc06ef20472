#pragma once

#include <CLI/CLI.hpp>

/// One function per command: adds it with its options, its help and what it does.
namespace vexa::cli {

void addRun(CLI::App& app);
void addMerge(CLI::App& app);
void addImport(CLI::App& app);
void addInfo(CLI::App& app);
void addSample(CLI::App& app);
void addSun(CLI::App& app);
void addPresets(CLI::App& app);
void addView(CLI::App& app);

}  // namespace vexa::cli
