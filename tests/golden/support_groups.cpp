// Paths and URLs as texts. Names are of no file on any machine, since a URL asks what exists.
#include "tests/golden/Group.h"

namespace vexa::tests {

namespace {

using Norvel::CChemin;

std::string drawText(Numbers& n, std::uint32_t pieces) {
  const char* const kPieces[] = {"~q", "/",   "~Zz", ".",   "..",       "\\",  "%",
                                 "%7", "%41", "%2f", "%zZ", "?",        "=",   "&",
                                 " ",  "~",   "+",   "#",   "\xC3\xA9", ".~t", "%00x"};
  std::string text;
  for (std::uint32_t i = n.below(pieces); i > 0; --i) text += n.oneOf(kPieces);
  return text;
}

void runURLs(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 4000; ++i) {
    r.begin();
    std::string url = n.oneIn(12) ? drawText(n, 6) : "file:///~q" + drawText(n, 10);
    if (n.oneIn(2)) url += "?a=" + drawText(n, 4);
    if (n.oneIn(3)) url += "&~b=" + drawText(n, 4);
    if (n.oneIn(6)) url += "&a=2";
    r.in("url", url);
    CChemin path("~before");
    path.AjouteParametre("~k", "v");
    r.outOf([&] { path.PrendsURL(url.c_str()); });
    r.out(path.c_str(), path.DonneURL(), path.DonneNomURL(), path.DonneParametre("a"));
    r.out(path.DonneParametre("~b"), path.DonneParametre("~k"), path.DonneParametre(""));
    path.AjouteParametre("a", "new");
    path.DetruitParametre("~b");
    r.out(path.DonneURL());
    r.outOf([&] { return CChemin(CChemin::kTypeURL, url.c_str()).DonneURL(); });
  }
}

void runTexts(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 3000; ++i) {
    r.begin();
    const std::string text = n.oneIn(40) ? std::string(n.below(6) + 253, 'x') : drawText(n, 12);
    const std::string name = drawText(n, 4);
    r.in("path", text).in("name", name);
    CChemin path(text.c_str());
    r.out(path.DonneNom(), path.DonneNomSansExtension(), path.TestExtension(name.c_str()));
    r.out(path.TestExtension(".~T"), path.ChangeExtension(name.c_str()).c_str());
    r.outOf([&] { return std::string(path.Remonte().c_str()); });
    r.outOf([&] { return path.DonneChemin(); });
    r.out(path.Ajoute(name.c_str()).c_str());
    unsigned char mac[256] = {};
    r.outOf([&] { path.CheminMac(mac); });
    r.out(std::string(reinterpret_cast<const char*>(mac), sizeof(mac)));
    r.outOf([&] { path.RelatifMacVersWin(); });
    r.out(path.c_str());
    path.RelatifWinVersMac();
    r.out(path.c_str(), path.FichierExiste());
  }
}

}  // namespace

void addSupportGroups(Groups& out) {
  out.push_back({"urls", Kind::kArithmetic, runURLs});
  out.push_back({"path_texts", Kind::kArithmetic, runTexts});
}

}  // namespace vexa::tests
