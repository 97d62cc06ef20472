#include <cstdio>
#include <memory>
#include <string>

#include "cli/commands.h"
#include "cli/load_scene.h"
#include "formats/printable.h"
#include "scene/RunPart.h"

namespace vexa::cli {

void addMerge(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "merge", "Put the parts of a run together, to the bytes of a run by one process");
  const auto folder = std::make_shared<std::string>();
  command->add_option("DIR", *folder, "where vexa run --task has written its parts")->required();
  command->footer(
      "Example: vexa run bison.json --frames 0:999 --out out --task 0/2\n"
      "         vexa run bison.json --frames 0:999 --out out --task 1/2\n"
      "         vexa merge out");
  command->callback([folder] {
    // The parts state their scene; it is loaded again only where meshes need it.
    for (const std::string& line : scene::mergeParts(*folder, loadScene)) {
      std::puts(formats::printable(line).c_str());
    }
  });
}

}  // namespace vexa::cli
