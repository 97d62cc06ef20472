#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "cli/commands.h"
#include "cli/frames.h"
#include "cli/load_scene.h"
#include "formats/read_file.h"
#include "formats/write_file.h"
#include "scene/page.h"
#include "scene/scene_extent.h"

namespace vexa::cli {
namespace {

namespace fs = std::filesystem;

struct Options {
  std::string scene;
  std::string frames;
  std::string out;
  std::string pageTemplate;
};

// The template beside this program: as installed, or in the build folder.
std::string templateFile(const Options& options) {
  if (!options.pageTemplate.empty()) return options.pageTemplate;
  std::error_code error;
  // By the place of this program and not a fixed prefix: installed trees can be moved.
  const fs::path folder = fs::read_symlink("/proc/self/exe", error).parent_path();
  for (const char* place : {"../share/vexa/view.html", "../../web/share/vexa/view.html"}) {
    const fs::path file = (folder / place).lexically_normal();
    if (fs::is_regular_file(file, error)) return file.string();
  }
  throw std::runtime_error(
      "the page's template is not built: run scripts/web in the source folder");
}

std::string filled(const std::string& file, const std::string& data) {
  // The build leaves this word once in the template, inside a script element.
  const std::string marker = "@VEXA_PAGE_DATA@";
  std::string page = formats::readFile(file);
  const std::size_t place = page.find(marker);
  if (place == std::string::npos) throw std::runtime_error(file + ": is no template of a page");
  return page.replace(place, marker.size(), data);
}

void view(const Options& options) {
  // First, so that a missing template is reported before the scene is played.
  const std::string pageTemplate = templateFile(options);
  scene::ScenePlayer player = loadScene(options.scene);
  int first = 0, last = scene::lastFrame(player.scene());
  if (!options.frames.empty()) {
    const std::vector<int> frames = parseFrames(options.frames);
    // A step has no meaning for a page, which shows every frame.
    first = frames.front();
    last = frames.back();
  }
  formats::writeFile(options.out,
                     filled(pageTemplate, scene::pageData(options.scene, player, first, last)));
  std::puts(options.out.c_str());
}

}  // namespace

void addView(CLI::App& app) {
  CLI::App* command =
      app.add_subcommand("view", "Write a page that plays a scene in a browser, as one file");
  const auto options = std::make_shared<Options>();
  command->add_option("SCENE", options->scene, "a scene file (JSON)")->required();
  command->add_option("--out", options->out, "the page to write")
      ->required()
      ->type_name("PAGE.html");
  command->add_option("--frames", options->frames,
                      "A:B, both ends included; from 0 to the last key when missing");
  command->add_option("--template", options->pageTemplate, "another template of the page");
  command->footer("Example: vexa view bison.json --out bison.html");
  command->callback([options] { view(*options); });
}

}  // namespace vexa::cli
