// The command `vexa`: arguments in, text out. Exit 0, 1 for bad input, 2 for bad usage.
#include <cstdio>
#include <exception>

#include "cli/commands.h"

int main(int argc, char** argv) {
  CLI::App app("Vexa: keyframes, paths and skinned animation at a frame", "vexa");
  app.require_subcommand(1);
  app.set_version_flag("--version", "vexa " VEXA_VERSION);
  vexa::cli::addRun(app);
  vexa::cli::addImport(app);
  vexa::cli::addInfo(app);
  vexa::cli::addSample(app);
  vexa::cli::addSun(app);
  vexa::cli::addPresets(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : 2;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "vexa: %s\n", error.what());
    return 1;
  }
  // A full disk behind standard output shows up here at the latest.
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    std::fprintf(stderr, "vexa: standard output: cannot write\n");
    return 1;
  }
  return 0;
}
