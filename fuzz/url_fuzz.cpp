// A "file://" URL from outside. Only operations that read: nothing on disk is made or removed.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>

#include "vexa/support/CChemin.h"
#include "vexa/support/XStPushReporter.h"

namespace {

using Norvel::CChemin;

struct SilentReporter : Norvel::XIReporter {
  void ReportMsg(EMsgType /*type*/, const char* /*text*/) override {}
};

void require(bool holds) {
  if (!holds) std::abort();
}

template <class Exception, class Call>
void mayThrow(Call call) {
  try {
    call();
  } catch (const Exception&) {
    // The one kind that the operation may throw.
  }
}

// What is written is read back the same, unless a zero byte of the path cuts the text.
void checkRoundTrip(const CChemin& path) {
  const std::string url = path.DonneURL();
  if (url.find('\0') != std::string::npos) return;
  require(CChemin(CChemin::kTypeURL, url.c_str()).DonneURL() == url);
  require(url.compare(url.size() - path.DonneNomURL().size(), url.npos, path.DonneNomURL()) == 0);
}

void checkNames(const CChemin& path) {
  const CChemin below = path.Ajoute("x");
  require(below.DonneNomSansExtension() == "x" && below.TestExtension("/X"));
  // Going up must end somewhere: each step is shorter than the path.
  require(std::strlen(below.Remonte().c_str()) < below.DonneChemin().size());
  path.ChangeExtension(".amo");
  unsigned char pascal[256];
  mayThrow<std::runtime_error>([&] { path.CheminMac(pascal); });
  CChemin windows = path;
  mayThrow<std::runtime_error>([&] { windows.RelatifMacVersWin(); });
}

void checkFileSystem(CChemin path) {
  std::string error;
  require(path.FichierExiste(&error) == error.empty());
  require(!path.RepertoireExiste() || path.FichierExiste());
  require(path.PlusRecent(path));
  path.ResolveSymbolicLink();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  SilentReporter silent;
  const Norvel::XStPushReporter scope(&silent, false);
  const std::string text(reinterpret_cast<const char*>(data), size);
  mayThrow<std::invalid_argument>([&] {
    const CChemin path(CChemin::kTypeURL, text.c_str());
    checkRoundTrip(path);
    checkNames(path);
    checkFileSystem(path);
  });
  return 0;
}
