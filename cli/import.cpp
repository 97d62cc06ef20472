#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

#include "cli/commands.h"
#include "formats/printable.h"
#include "importer/import_files.h"

namespace vexa::cli {
namespace {

struct Options {
  std::string model;
  std::string stem;
  std::string up;
  importer::ImportOptions import;
  std::vector<double> travel = {0, 0};
};

CLI::Validator aboveZero() {
  const auto faultOf = [](const std::string& text) {
    double value = 0;
    const bool isGood = CLI::detail::lexical_cast(text, value) && value > 0 && std::isfinite(value);
    return isGood ? std::string() : "\"" + text + "\" is not a number above 0";
  };
  return {faultOf, "POSITIVE"};
}

// "walk.amo" names the import whose files are walk.amo, walk.obj and walk.json.
std::string stemOf(const std::string& out) {
  const std::filesystem::path path = out;
  for (const char* ending : {".amo", ".obj", ".json"}) {
    if (path.extension() == ending) return std::filesystem::path(path).replace_extension().string();
  }
  return out;
}

importer::ImportedModel importOrSayWhichFile(const Options& options) {
  try {
    return importer::importModel(options.model, options.import);
  } catch (const std::exception& error) {
    throw std::runtime_error(options.model + ": " + error.what());
  }
}

void showProgress(std::size_t done, std::size_t count) {
  // A terminal takes longer for a line than the comparison of a pose does.
  const bool isRound = done % 100 == 0 || done == count;
  if (!isRound) return;
  // The carriage return writes over the former line.
  std::fprintf(stderr, "\r%zu of %zu poses compared%s", done, count, done == count ? "\n" : "");
}

// The terminal is told how far it is when the import takes long.
importer::ImportProgress progressFor(const importer::ImportedModel& model) {
  constexpr std::size_t kLong = 1000;
  std::size_t poses = 0;
  for (const auto& take : model.mTakes) poses += std::size_t(take.mFrameCount);
  if (poses < kLong || isatty(STDERR_FILENO) == 0) return nullptr;
  return showProgress;
}

// Before the work starts, so that it can be stopped.
void warnOfSize(const importer::ImportedModel& model) {
  constexpr double kLarge = 1073741824;
  // Per link 4 bytes of vertex and 8 of weight.
  double bytes = 0;
  for (const auto& node : model.mAnimation.mNodes) {
    bytes += double(node.mMatrices.size()) * double(sizeof(node.mMatrices[0])) +
             double(node.mLinks.size()) * 12;
  }
  if (bytes > kLarge) {
    std::fprintf(stderr,
                 "vexa: the animation file takes %.1f GiB; fewer clips or frames per second "
                 "make it smaller\n",
                 bytes / kLarge);
  }
}

// The notes on a clip stand below its take, the others at the end.
void printTakes(const importer::ImportedModel& model) {
  std::vector<std::string> others = model.mNotes;
  for (const auto& take : model.mTakes) {
    std::printf("take \"%s\": %d frames at %g per second\n", formats::printable(take.mName).c_str(),
                take.mFrameCount, take.mFramesPerSecond);
    // Every note on a clip starts so; those of the readers and those of the check.
    const std::string start = "clip '" + take.mName + "'";
    const auto isOn = [&](const std::string& note) { return note.rfind(start, 0) == 0; };
    for (const std::string& note : others) {
      if (isOn(note)) std::printf("  note: %s\n", formats::printable(note).c_str());
    }
    others.erase(std::remove_if(others.begin(), others.end(), isOn), others.end());
  }
  for (const std::string& note : others) {
    std::printf("note: %s\n", formats::printable(note).c_str());
  }
}

void importModelFile(const Options& options) {
  const importer::ImportedModel model = importOrSayWhichFile(options);
  warnOfSize(model);
  const importer::ImportFiles files =
      importer::writeImport(model, options.stem, progressFor(model));
  std::printf("%zu vertices, %zu triangles, %zu nodes\n", model.mMesh.points.size(),
              model.mMesh.triangles.size(), model.mAnimation.mNodes.size());
  printTakes(model);
  std::printf(
      "largest difference to the baked curves of the same file: %.3g of the model's size, in "
      "%zu poses\n",
      files.mCheck.mLargestDifference, files.mCheck.mPoseCount);
  for (const std::string& file : files.mFiles) std::puts(formats::printable(file).c_str());
}

}  // namespace

void addImport(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "import", "Turn a skinned model into an animation file, a rest mesh and a scene");
  const auto options = std::make_shared<Options>();
  command->add_option("MODEL", options->model, "a model: glTF, FBX, Collada, X, MDL ...")
      ->required();
  command->add_option("--out", options->stem, "writes STEM.amo, STEM.obj and STEM.json")
      ->required()
      ->type_name("STEM");
  command->add_option("--clip", options->import.mClips, "only this clip; may be repeated");
  command
      ->add_option("--motion", options->import.mMotions,
                   "a file of clips for the model's nodes; may be repeated")
      ->type_name("FILE");
  command->add_option("--fps", options->import.mFramesPerSecond, "frames per second")
      ->check(aboveZero())
      ->capture_default_str();
  command->add_option("--up", options->up, "the model's upward axis, whatever its file says")
      ->check(CLI::IsMember({"y", "z"}))
      ->option_text("y|z");
  command->add_option("--scale", options->import.mScale, "multiplies all lengths")
      ->check(aboveZero())
      ->capture_default_str();
  command
      ->add_option("--ticks-per-second", options->import.mTicksPerSecond,
                   "for files that count keys in ticks and state no speed, or a wrong one")
      ->check(aboveZero());
  command->add_flag("--strict", options->import.mStrict,
                    "refuse what cannot be shown exactly as the file means it");
  command
      ->add_option("--travel", options->travel,
                   "how far each take leads, for clips that walk in place")
      ->option_text("X,Y")
      ->expected(2)
      ->delimiter(',');
  command->footer("Example: vexa import bison.x --clip Walk --out walk");
  command->callback([options] {
    if (options->up == "y") options->import.mUp = importer::UpAxis::Y;
    if (options->up == "z") options->import.mUp = importer::UpAxis::Z;
    // A walk leads over the ground, so there is no third number.
    options->stem = stemOf(options->stem);
    options->import.mTravel = {options->travel[0], options->travel[1], 0};
    importModelFile(*options);
  });
}

}  // namespace vexa::cli
