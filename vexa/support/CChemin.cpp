#include "vexa/support/CChemin.h"

#include <cctype>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <unistd.h>
#include <utility>

#include "vexa/support/file_system_internal.h"
#include "vexa/support/format_internal.h"

namespace Norvel {
namespace {

constexpr std::string_view kScheme = "file://";

bool exists(const std::string& path) { return access(systemPath(path), F_OK) == 0; }

// Required behaviour: 65 for a character that is not a hexadecimal digit.
unsigned int hexDigit(char character) {
  if (character >= '0' && character <= '9') return unsigned(character - '0');
  if (character >= 'A' && character <= 'F') return unsigned(character - 'A') + 10;
  if (character >= 'a' && character <= 'f') return unsigned(character - 'a') + 10;
  return 65;
}

// Replaces each '%' and two characters by the byte that they name. One with fewer
// than two characters after it stays. The mask keeps what a bad digit leaves of the byte.
std::string decoded(std::string_view text) {
  std::string path;
  path.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && text.size() - i > 2) {
      path += char((hexDigit(text[i + 1]) * 16 + hexDigit(text[i + 2])) & 0xffu);
      i += 2;
    } else {
      path += text[i];
    }
  }
  return path;
}

// Encodes what would end the path ('?'), what starts an encoded byte ('%') and the space. Other
// bytes stay, so that a path without these three reads the same as a URL.
std::string encoded(const std::string& path) {
  std::string text;
  for (const char character : path) {
    switch (character) {
      case '?':
        text += "%3F";
        break;
      case '%':
        text += "%25";
        break;
      case ' ':
        text += "%20";
        break;
      default:
        text += character;
    }
  }
  return text;
}

// The path on this system that a URL from another system or volume means. An existing file wins, so
// a URL of this system is never changed. The tries in order:
//
//   /name/rest     as it is
//   /Volumes/name/rest
//   /rest          without the first component, which may be a volume's name
std::string repaired(std::string path) {
  if (path.empty() || exists(path)) return path;
  std::string onVolume = "/Volumes" + path;
  if (exists(onVolume)) return onVolume;
  const std::size_t second = path.find('/', 1);
  if (second == std::string::npos || !exists(path.substr(second))) return path;
  return path.substr(second);
}

// name=value pieces between '&'. Of two with one name the first counts.
std::map<std::string, std::string> parametersOf(std::string_view query) {
  std::map<std::string, std::string> parameters;
  while (!query.empty()) {
    const std::size_t end = query.find('&');
    const std::string_view piece = query.substr(0, end);
    const std::size_t equals = piece.find('=');
    // An '&' at the end is followed by one more piece, which is empty.
    if (equals == std::string_view::npos || end + 1 == query.size()) {
      throw std::invalid_argument("URL parameter is invalid");
    }
    parameters.emplace(piece.substr(0, equals), piece.substr(equals + 1));
    query.remove_prefix(end == std::string_view::npos ? query.size() : end + 1);
  }
  return parameters;
}

// toupper takes values of unsigned char; a negative char is undefined behaviour.
char upper(char character) { return char(std::toupper(static_cast<unsigned char>(character))); }

std::size_t lastSlash(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) throw std::invalid_argument("Path doesn't contain '/'");
  return slash;
}

bool beginsWith(const std::string& path, std::string_view prefix) {
  return path.compare(0, prefix.size(), prefix) == 0;
}

}  // namespace

CChemin::CChemin(const char* path) : mPath(orEmpty(path)) {}

CChemin::CChemin(ETypeChemin /*type*/, const char* url) { PrendsURL(url); }

// Everything that can fail comes before the first assignment, so that a bad URL changes nothing.
// The last '?' starts the query: a path may hold others.
void CChemin::PrendsURL(const char* url) {
  std::string_view text = orEmpty(url);
  if (text.substr(0, kScheme.size()) != kScheme) throw std::invalid_argument("URL invalid");
  text.remove_prefix(kScheme.size());
  const std::size_t mark = text.rfind('?');
  const bool hasQuery = mark != std::string_view::npos;
  std::string path = repaired(decoded(text.substr(0, mark)));
  mParameters = parametersOf(hasQuery ? text.substr(mark + 1) : std::string_view());
  mPath = std::move(path);
}

std::string CChemin::DonneURL() const {
  std::string url = std::string(kScheme) + encoded(mPath);
  char separator = '?';
  for (const auto& [name, value] : mParameters) {
    url.append(1, separator).append(name).append(1, '=').append(value);
    separator = '&';
  }
  return url;
}

std::string CChemin::DonneNomURL() const {
  const std::string url = DonneURL();
  return url.substr(url.rfind('/') + 1);  // npos + 1 is 0: the whole
}

// The length in one byte, then the bytes without an end: hence the limit of 255.
void CChemin::CheminMac(unsigned char* out) const {
  if (mPath.size() >= 256) throw std::runtime_error("Path too long");
  *out = static_cast<unsigned char>(mPath.size());
  std::memcpy(out + 1, mPath.data(), mPath.size());
}

void CChemin::RelatifMacVersWin() {
  if (beginsWith(mPath, "/")) throw std::runtime_error("Path must be relative");
  if (mPath.empty()) return;
  std::string windows = mPath;
  for (char& character : windows) {
    if (character == '/') character = '\\';
  }
  const bool isMarked = beginsWith(windows, ".\\") || beginsWith(windows, "..\\") ||
                        windows == "." || windows == "..";
  mPath = isMarked ? windows : ".\\" + windows;
}

void CChemin::RelatifWinVersMac() {}

const char* CChemin::DonneNom() const {
  return mPath.c_str() + (mPath.rfind('/') + 1);  // npos + 1 is 0: the whole
}

std::string CChemin::DonneNomSansExtension() const {
  const std::string name = mPath.substr(mPath.rfind('/') + 1);
  return name.substr(0, name.rfind('.'));
}

bool CChemin::TestExtension(const char* ext) const {
  const std::string_view end = orEmpty(ext);
  if (end.size() > mPath.size()) return false;
  const std::size_t start = mPath.size() - end.size();
  for (std::size_t i = 0; i < end.size(); ++i) {
    if (upper(mPath[start + i]) != upper(end[i])) return false;
  }
  return true;
}

CChemin CChemin::ChangeExtension(const char* ext) const {
  return fromPath(mPath.substr(0, mPath.rfind('.')) + orEmpty(ext));
}

CChemin CChemin::Remonte() const { return fromPath(mPath.substr(0, lastSlash(mPath))); }

std::string CChemin::DonneChemin() const { return mPath.substr(0, lastSlash(mPath) + 1); }

CChemin CChemin::Ajoute(const char* name) const {
  const bool endsWithSlash = !mPath.empty() && mPath.back() == '/';
  return fromPath(mPath + (endsWithSlash ? "" : "/") + orEmpty(name));
}

CChemin CChemin::Courant() {
  char path[1024];  // getcwd gives null for a longer path, which reads as ""
  return {getcwd(path, sizeof(path))};
}

void CChemin::AjouteParametre(const char* name, const char* value) {
  mParameters.insert_or_assign(orEmpty(name), orEmpty(value));
}

std::string CChemin::DonneParametre(const char* name) const {
  const auto found = mParameters.find(orEmpty(name));
  return found != mParameters.end() ? found->second : std::string();
}

void CChemin::DetruitParametre(const char* name) { mParameters.erase(orEmpty(name)); }

std::string CChemin::DonneMessageErreurFonction(FonctionErrorMessageType code) {
  switch (code) {
    case kCreerFichier:
      return "CChemin::CreerFichier";
    case kCreerRepertoire:
      return "CChemin::CreerRepertoire";
    case kCopierFichier:
      return "CChemin::CopierFichier";
    case kCopierContenuRepertoire:
      return "CChemin::CopierContenuRepertoire";
    case kDetruitFichier:
      return "CChemin::DetruitFichier";
    case kDetruitRepertoire:
      return "CChemin::DetruitRepertoire";
    case kDetruitContenuRepertoire:
      return "CChemin::DetruitContenuRepertoire";
  }
  return {};
}

CChemin CChemin::fromPath(std::string path) {
  CChemin result("");
  result.mPath = std::move(path);
  return result;
}

}  // namespace Norvel
