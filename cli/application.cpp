#include "cli/application.h"

#include "cli/commands.h"

namespace vexa::cli {

void setUp(CLI::App& app) {
  app.name("vexa");
  app.description("Vexa: keyframes, paths and skinned animation at a frame");
  app.require_subcommand(1);
  app.set_version_flag("--version", "vexa " VEXA_VERSION);
  // The order is that of --help and of the manual page.
  addRun(app);
  addMerge(app);
  addImport(app);
  addInfo(app);
  addSample(app);
  addSun(app);
  addPresets(app);
  addView(app);
}

}  // namespace vexa::cli
