#pragma once

#include <cstdio>
#include <map>
#include <string>

#include "vexa/Export.h"

namespace Norvel {

/// A POSIX path with named parameters, made from a plain path or from a "file://" URL.
///
/// A value: copies share nothing. Paths are bytes separated by '/'; null texts read as "". The
/// operations that give a new path give it without parameters.
///
/// File-system operations never throw. Those that take `error` fill it, when it is given and they
/// fail, with the system's text ("ERRNO [2] :No such file or directory"), else leave it alone. A
/// path with a zero byte in it names nothing.
class VEXA_EXPORT CChemin {
 public:
  /// The kind of a text. Required behaviour: it has no influence, every text is read as a URL.
  enum ETypeChemin : int { kTypeURL = 0 };

  /// The operations that have a name for error messages.
  enum FonctionErrorMessageType : int {
    kCreerFichier = 0,
    kCreerRepertoire = 1,
    kCopierFichier = 2,
    kCopierContenuRepertoire = 3,
    kDetruitFichier = 4,
    kDetruitRepertoire = 5,
    kDetruitContenuRepertoire = 6
  };

  /// The path is the text, unchanged.
  CChemin(const char* path);  // NOLINT(google-explicit-constructor): a text serves as a path
  /// Reads a URL; see PrendsURL.
  CChemin(ETypeChemin type, const char* url);
  CChemin(const CChemin& other) = default;
  CChemin& operator=(const CChemin& other) = default;
  virtual ~CChemin() = default;

  const char* c_str() const { return mPath.c_str(); }

  /// Takes path and parameters from "file://" PATH ["?" NAME "=" VALUE {"&" NAME "=" VALUE}].
  ///
  /// The query begins after the last '?'; the first of equal names wins. In the path each '%' with
  /// two characters behind it is one byte. Where nothing exists at the path, "/Volumes" before it
  /// and then the path without its first component are tried; the first that exists is taken.
  /// Required behaviour: a character that is not a hexadecimal digit counts as 65.
  /// Throws std::invalid_argument "URL invalid" or "URL parameter is invalid" (also for an empty
  /// piece between two '&') and then changes nothing.
  void PrendsURL(const char* url);
  /// The URL, in which '?', '%' and blanks of the path are escaped and nothing else; parameters
  /// follow unescaped, in the order of their names.
  std::string DonneURL() const;
  /// What follows the last '/' of the URL.
  std::string DonneNomURL() const;

  /// Writes one length byte, then the characters: at most 256 bytes, no zero at the end. Throws
  /// std::runtime_error "Path too long" for 256 characters or more.
  void CheminMac(unsigned char* out) const;
  /// Writes a relative path with backslashes and ".\" before it, unless it has ".\" or "..\"; an
  /// empty path stays. Throws std::runtime_error "Path must be relative" for one that begins with
  /// '/'.
  void RelatifMacVersWin();
  /// Required behaviour: does nothing.
  void RelatifWinVersMac();

  /// What follows the last '/', or the whole path; points into this object.
  const char* DonneNom() const;
  /// The name up to its last '.', if it has one.
  std::string DonneNomSansExtension() const;
  /// Whether the path ends with `ext`, whatever the case; "" always fits.
  bool TestExtension(const char* ext) const;
  /// The path up to its last '.', if it has one, then `ext`.
  /// Required behaviour: the '.' may be in a directory's name.
  CChemin ChangeExtension(const char* ext) const;
  /// The path up to its last '/', which is left out. Throws std::invalid_argument
  /// "Path doesn't contain '/'".
  CChemin Remonte() const;
  /// The path up to its last '/', included. Throws as Remonte does.
  std::string DonneChemin() const;
  /// The path, one '/' unless it ends with one, then `name`.
  CChemin Ajoute(const char* name) const;
  /// The process's current directory; empty when it has none or a name over 1,023 characters.
  static CChemin Courant();

  /// Replaces a parameter of the same name.
  void AjouteParametre(const char* name, const char* value);
  /// "" for an absent one.
  std::string DonneParametre(const char* name) const;
  void DetruitParametre(const char* name);

  /// Whether there is an entry of any kind. A link counts when its target exists.
  bool FichierExiste(std::string* error = nullptr) const;
  /// Whether there is a directory. A failure other than its absence is also reported as a warning.
  bool RepertoireExiste(std::string* error = nullptr) const;
  /// Whether this entry was modified in the same second as the other one, or later. An absent
  /// entry counts as modified at second 0.
  bool PlusRecent(const CChemin& other) const;
  /// The file as a stream, which the caller closes; null on failure. The modes are fopen's.
  std::FILE* OpenFile(const char* mode, std::string* error = nullptr) const;
  /// The same for reading bytes of a regular file; anything else is refused. Never waits, as
  /// OpenFile does for a named pipe.
  std::FILE* OpenRegularFile(std::string* error = nullptr) const;
  /// Makes the directory, open to all (0777); 0, or -1.
  int CreerRepertoire(std::string* error = nullptr) const;
  /// Makes the directory and those above it, as far as they are missing; 0 whatever happens.
  /// Required behaviour: a directory directly under the root is never made, nor one without '/'.
  int CreerArborescenceDeRepertoire() const;
  /// Removes an entry other than a directory; 0 on success.
  int DetruitFichier(std::string* error = nullptr) const;
  /// Removes the empty directory; 0 on success.
  int DetruitRepertoire(std::string* error = nullptr) const;
  /// Copies a regular file: data, times and extended attributes; the copy is open to all (0777).
  ///
  /// `target` names the copy. An existing file is replaced when the copy is complete and
  /// stays when something fails; so does a link, which is not followed. Refused with EINVAL: a
  /// file onto itself under any name, and a source or target that is not a regular file. A source
  /// that is absent gives the error "Input file does not exist".
  bool CopierVers(CChemin target, std::string* error = nullptr) const;
  /// Copies what this directory holds into the directory `target`, which exists.
  ///
  /// Directories (0777) and regular files are copied; links and other kinds are left out, and so is
  /// `target` where it lies inside this directory. A fault in one entry does not stop the others;
  /// `error` holds the first one.
  /// Returns 0, or -1 (unsigned) when one of the two cannot be opened, when they are the same
  /// directory, or when a name below grew over 1,023 characters, which is left out.
  /// Required behaviour: 0 also when an entry could not be copied.
  unsigned int CopierContenuRepertoire(const CChemin& target, std::string* error = nullptr) const;
  /// Removes the directories and regular files that this directory holds; the directory stays.
  ///
  /// Links are not followed and stay, like all other kinds, and so does a directory that holds
  /// one. A path that is itself a link is refused. Faults and result as of
  /// CopierContenuRepertoire.
  unsigned int DetruitContenuRepertoire(std::string* error = nullptr) const;
  /// Gives the entry another name in its directory; this path stays as it is.
  bool RenameFile(const char* newName, std::string* error = nullptr) const;
  /// Follows one symbolic link: the path becomes the link's text, relative to the link's
  /// directory. False, with the path unchanged, for an entry that is no link and for a text of 512
  /// characters or more.
  bool ResolveSymbolicLink(std::string* error = nullptr);
  /// The same for texts; `resolved` becomes `path` where nothing was followed.
  static bool ResolveSymbolicLink(const std::string& path, std::string& resolved,
                                  std::string* error = nullptr);

  /// The operation's name, such as "CChemin::CreerRepertoire"; "" for other codes.
  static std::string DonneMessageErreurFonction(FonctionErrorMessageType code);

 private:
  static CChemin fromPath(std::string path);  // whole, whatever bytes it holds

  std::string mPath;
  std::map<std::string, std::string> mParameters;  // by name
};

}  // namespace Norvel
