#include <cstdio>
#include <stdexcept>
#include <string>

#include "cli/commands.h"
#include "formats/printable.h"
#include "importer/describe_model.h"
#include "scene/describe.h"

namespace vexa::cli {
namespace {

std::string asText(const scene::Description& value);

// "walk (seconds 1.5, keys 20)": the name, then the rest of an object.
std::string asFacts(const scene::Description& object) {
  std::string name, rest;
  for (const auto& [key, value] : *object.members()) {
    if (key == "name") {
      name = asText(value);
    } else {
      rest += (rest.empty() ? "" : ", ") + key + " " + asText(value);
    }
  }
  return name + " (" + rest + ")";
}

std::string asText(const scene::Description& value) {
  if (value.text() != nullptr) return formats::printable(*value.text());
  if (value.members() != nullptr) return asFacts(value);
  if (value.elements() == nullptr) return value.dump();
  std::string text;
  for (const auto& element : *value.elements()) {
    text += (text.empty() ? "" : ", ") + asText(element);
  }
  return text;
}

void printText(const scene::Description& description) {
  for (const auto& [name, value] : *description.members()) {
    // These come last, one a line; the version is for programs.
    if (name == "notes" || name == "faults" || name == "formatVersion") continue;
    std::printf("%-26s %s\n", name.c_str(), asText(value).c_str());
  }
  for (const auto& note : *description["notes"].elements())
    std::printf("note: %s\n", asText(note).c_str());
  for (const auto& fault : *description["faults"].elements())
    std::printf("fault: %s\n", asText(fault).c_str());
}

// Everything that is known is printed first. Faults then make the exit status 1, so that a script
// can check a file.
void info(const std::string& file, bool json) {
  const scene::Description description =
      importer::isModelFile(file) ? importer::describeModel(file) : scene::describeFile(file);
  if (json) {
    std::puts(description.dump(scene::Description::Layout::kIndented).c_str());
  } else {
    printText(description);
  }
  // Also with --json, so that the exit status means the same.
  const std::size_t faults = description["faults"].size();
  if (faults > 0) {
    throw std::runtime_error(file + ": " + std::to_string(faults) +
                             (faults == 1 ? " fault" : " faults"));
  }
}

struct Options {
  std::string file;
  bool json = false;
};

}  // namespace

void addInfo(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "info",
      "Say what is in an animation file, a scene, a mesh or a model, and what is wrong with it");
  const auto options = std::make_shared<Options>();
  command->add_option("FILE", options->file, "an .amo, .json or .obj file, or a model")->required();
  command->add_flag("--json", options->json, "print JSON");
  command->footer("Example: vexa info bison.amo --json");
  command->callback([options] { info(options->file, options->json); });
}

}  // namespace vexa::cli
