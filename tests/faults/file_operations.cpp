// The life of a file path.
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

#include "tests/faults/operations.h"
#include "vexa/support/CChemin.h"

namespace vexa::faults {
namespace {

namespace fs = std::filesystem;
using Norvel::CChemin;
using Files = std::map<std::string, std::string>;

void write(const fs::path& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

// What is below a folder: the text of files, "/" for folders, the target of links.
Files filesIn(const fs::path& folder) {
  Files files;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    std::string& text = files[entry.path().lexically_relative(folder)];
    if (entry.is_symlink()) {
      text = "-> " + fs::read_symlink(entry.path()).string();
    } else if (entry.is_directory()) {
      text = "/";
    } else {
      std::ifstream file(entry.path(), std::ios::binary);
      text.assign(std::istreambuf_iterator<char>(file), {});
    }
  }
  return files;
}

// A folder with a file of some size, a tree with a link out of it, and an old target.
struct Scratch {
  Scratch() {
    fs::remove_all("paths");
    fs::create_directories("paths/tree/sub/deep");
    fs::create_directories("paths/to/sub");
    write("paths/from", std::string(200'000, 'v'));
    write("paths/old", "old");
    write("paths/tree/top", "1");
    write("paths/tree/sub/deep/low", "2");
    fs::create_symlink("../old", "paths/tree/link");
  }
  ~Scratch() {
    std::error_code ignored;
    fs::remove_all("paths", ignored);
  }
};

// Makes the call among these files. A failure leaves them as they were; success makes `expected`
// of them, which maps a path to its new text, "" for one that is gone.
template <class Call>
void changes(const Attempt& attempt, const Files& expected, Call call) {
  const Scratch scratch;
  const Files before = filesIn("paths");
  Files wanted = before;
  for (const auto& [name, text] : expected) {
    wanted[name] = text;
    if (text.empty()) wanted.erase(name);
  }
  bool isDone = false;
  std::string error;
  require(attempt([&] { isDone = call(&error); }), "a path throws");
  const int code = errno;
  require(filesIn("paths") == (isDone ? wanted : before), "other files than promised");
  require(isDone || !error.empty() || code == ENOMEM, "no error text");
}

// A fault in one entry of a tree is reported, does not stop the others, and leaves no other files.
template <class Call>
void walks(const Attempt& attempt, const char* changed, Call call) {
  const Scratch scratch;
  const Files before = filesIn("paths");
  std::string error;
  unsigned result = 0;
  require(attempt([&] { result = call(&error); }), "a tree throws");
  const int code = errno;
  const Files after = filesIn("paths");
  for (const auto& [name, text] : after) {
    const bool isInside = name.rfind(changed, 0) == 0;
    const auto known = before.find(name);
    require(known == before.end() ? isInside : known->second == text, "other files than promised");
    require(name.find(".vexa-") == std::string::npos, "a temporary file stays");
  }
  for (const auto& [name, text] : before) {
    require(after.count(name) != 0 || name.rfind(changed, 0) == 0, "a file is lost");
  }
  require(result == 0 || !error.empty() || code == ENOMEM, "no error text");
}

template <class Call>
void asks(const Attempt& attempt, Call call) {
  const Scratch scratch;
  const Files before = filesIn("paths");
  attempt([&] { call(CChemin("paths/from")); });
  require(filesIn("paths") == before, "files change");
}

}  // namespace

std::vector<Operation> fileOperations() {
  const auto url = [](const Attempt& attempt) {
    CChemin path("before");
    path.AjouteParametre("kept", "1");
    const bool isDone = attempt([&] { path.PrendsURL("file://paths/a%20b?x=1&y=2"); });
    require(isDone == (path.DonneParametre("kept").empty()), "half a URL");
  };
  return {
      {"take a URL", url},
      {"write a URL",
       [](const Attempt& a) {
         asks(a, [](CChemin path) {
           path.AjouteParametre("name", "a value beyond the short ones");
           CChemin(CChemin::kTypeURL, path.DonneURL().c_str()).DonneNomURL();
         });
       }},
      {"derive paths",
       [](const Attempt& a) {
         asks(a, [](const CChemin& path) {
           path.Ajoute("a name beyond the short ones")
               .ChangeExtension(".amo")
               .Remonte()
               .DonneChemin();
         });
       }},
      {"ask for entries",
       [](const Attempt& a) {
         asks(a, [](const CChemin& path) {
           std::string error;
           path.FichierExiste(&error), path.RepertoireExiste(&error), path.PlusRecent("paths/old");
           CChemin::Courant();
         });
       }},
      {"open a file",
       [](const Attempt& a) {
         asks(a, [](const CChemin& path) {
           std::string error;
           if (std::FILE* file = path.OpenRegularFile(&error)) std::fclose(file);
           if (std::FILE* file = path.OpenFile("r", &error)) std::fclose(file);
         });
       }},
      {"copy a file",
       [](const Attempt& a) {
         changes(a, {{"new", std::string(200'000, 'v')}}, [](std::string* error) {
           return CChemin("paths/from").CopierVers("paths/new", error);
         });
       }},
      {"copy over a file",
       [](const Attempt& a) {
         changes(a, {{"old", std::string(200'000, 'v')}}, [](std::string* error) {
           return CChemin("paths/from").CopierVers("paths/old", error);
         });
       }},
      {"make a folder",
       [](const Attempt& a) {
         changes(a, {{"new", "/"}}, [](std::string* error) {
           return CChemin("paths/new").CreerRepertoire(error) == 0;
         });
       }},
      {"make folders",
       [](const Attempt& a) {
         walks(a, "new", [](std::string*) {
           return unsigned(CChemin("paths/new/deep").CreerArborescenceDeRepertoire());
         });
       }},
      {"remove a file",
       [](const Attempt& a) {
         changes(a, {{"old", ""}}, [](std::string* error) {
           return CChemin("paths/old").DetruitFichier(error) == 0;
         });
       }},
      {"remove a folder",
       [](const Attempt& a) {
         changes(a, {{"to/sub", ""}}, [](std::string* error) {
           return CChemin("paths/to/sub").DetruitRepertoire(error) == 0;
         });
       }},
      {"rename a file",
       [](const Attempt& a) {
         changes(a, {{"old", ""}, {"new", "old"}},
                 [](std::string* error) { return CChemin("paths/old").RenameFile("new", error); });
       }},
      {"follow a link",
       [](const Attempt& a) {
         changes(a, {}, [](std::string* error) {
           CChemin link("paths/tree/link");
           const bool isDone = link.ResolveSymbolicLink(error);
           require(isDone != (link.c_str() == std::string("paths/tree/link")), "half a link");
           return isDone;
         });
       }},
      {"copy a tree",
       [](const Attempt& a) {
         walks(a, "to/", [](std::string* error) {
           return CChemin("paths/tree").CopierContenuRepertoire("paths/to", error);
         });
       }},
      {"empty a tree",
       [](const Attempt& a) {
         walks(a, "tree/", [](std::string* error) {
           return CChemin("paths/tree").DetruitContenuRepertoire(error);
         });
       }},
  };
}

}  // namespace vexa::faults
