// File path operations in any order inside a scratch folder: nothing outside changes, no descriptor
// stays open, and a copy that succeeds is whole.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/stat.h>

#include "formats/read_file.h"
#include "fuzz/scratch_folder.h"
#include "vexa/support/CChemin.h"
#include "vexa/support/XStPushReporter.h"

namespace {

namespace fs = std::filesystem;
using Norvel::CChemin;
using vexa::fuzz::require;
using vexa::fuzz::scratchFolder;

struct SilentReporter : Norvel::XIReporter {
  void ReportMsg(EMsgType /*type*/, const char* /*text*/) override {}
};

// A path below the root, up to three deep.
CChemin pathOf(std::uint8_t byte) {
  static const char* const kNames[] = {"a", "b", "c d", "b/../a", "."};
  std::string path = scratchFolder() / "root" / kNames[byte % 3];
  for (int rest = byte / 3; rest > 0; rest /= 8) path += std::string("/") + kNames[rest % 5];
  return path.c_str();
}

// Whether no link on the way leads out of the root.
bool isInside(const fs::path& path) {
  std::error_code error;
  return fs::weakly_canonical(path, error).string().rfind(scratchFolder() / "root", 0) == 0;
}

void copy(CChemin from, const CChemin& to) {
  if (!from.CopierVers(to)) return;
  require(vexa::formats::readFile(from.c_str()) == vexa::formats::readFile(to.c_str()));
}

void call(unsigned operation, CChemin path, const CChemin& to) {
  std::error_code error;
  const fs::path from = path.c_str(), target = to.c_str();
  if (operation == 0) path.CreerRepertoire();
  if (operation == 1) path.CreerArborescenceDeRepertoire();
  if (operation == 2) path.DetruitFichier();
  if (operation == 3) path.DetruitRepertoire();
  if (operation == 4) path.CopierContenuRepertoire(to);
  if (operation == 5) path.DetruitContenuRepertoire();
  if (operation == 6) path.RenameFile(to.DonneNom());
  if (operation == 7) copy(path, to);
  if (operation == 8) fs::create_symlink(target, from, error);
  if (operation == 9) fs::create_symlink(scratchFolder() / "outside", from, error);
  if (operation == 10) fs::create_hard_link(from, target, error);
  if (operation == 11) mkfifo(from.c_str(), 0600);
  if (operation > 11 && fs::is_directory(from.parent_path(), error) && !fs::exists(from, error)) {
    std::ofstream(from) << from;
  }
}

std::ptrdiff_t count(const fs::path& folder) {
  return std::distance(fs::directory_iterator(folder), {});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  SilentReporter silent;
  const Norvel::XStPushReporter scope(&silent, false);
  fs::create_directories(scratchFolder() / "root");
  fs::create_directories(scratchFolder() / "outside");
  std::ofstream(scratchFolder() / "outside/a") << "kept";
  const auto open = count("/proc/self/fd");
  const std::uint8_t* const end = data + std::min<std::size_t>(size / 3, 40) * 3;
  for (; data < end; data += 3) {
    const CChemin from = pathOf(data[1]), to = pathOf(data[2]);
    const fs::path parent = fs::path(from.c_str()).parent_path();
    if (isInside(parent) && isInside(to.c_str())) call(data[0] % 16, from, to);
  }
  require(count("/proc/self/fd") == open && count(scratchFolder()) == 2);
  require(count(scratchFolder() / "outside") == 1);
  require(vexa::formats::readFile(scratchFolder() / "outside/a") == "kept");
  fs::remove_all(scratchFolder() / "root");
  return 0;
}
