#include "vexa/support/CChemin.h"

#include <chrono>
#include <csignal>
#include <functional>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/helpers/compare.h"
#include "tests/helpers/recording_reporter.h"
#include "tests/helpers/scratch_directory.h"
#include "vexa/support/XStPushReporter.h"

namespace {

/// Runs after the library has made a directory, with its name.
std::function<void(const char*)> afterMkdirat;

}  // namespace

// Takes the place of the system's for this program and the library in it.
extern "C" int mkdirat(int folder, const char* name, mode_t mode) {
  const int result = int(syscall(SYS_mkdirat, folder, name, mode));
  if (result == 0 && afterMkdirat) afterMkdirat(name);
  return result;
}

namespace {

namespace fs = std::filesystem;
using namespace Norvel;
using namespace vexa::tests;

constexpr unsigned int kFailed = 0xffffffffu;

CChemin fromURL(const std::string& url) { return CChemin(CChemin::kTypeURL, url.c_str()); }

auto entriesIn(const fs::path& folder) {
  return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

/// For what happens to files: a scratch directory and an error text.
class CCheminFiles : public testing::Test {
 protected:
  const ScratchDirectory scratch;
  std::string error;
  CChemin at(const std::string& name) const { return CChemin((scratch / name).c_str()); }
};

TEST(CChemin, ReadsAndWritesURLs) {
  CChemin path = fromURL("file:///no where/x%20y?b=2&a=1&a=3&c=");
  EXPECT_STREQ(path.c_str(), "/no where/x y");
  EXPECT_EQ(path.DonneURL(), "file:///no%20where/x%20y?a=1&b=2&c=");
  EXPECT_EQ(path.DonneParametre("b"), "2");
  EXPECT_EQ(whatOf([&] { path.PrendsURL("FILE:///a"); }), "URL invalid");
  EXPECT_STREQ(path.c_str(), "/no where/x y") << "as it was";
}

TEST_F(CCheminFiles, AURLMayNameAVolumeOrHostThatIsNotHere) {
  const std::string file = (scratch / "f").string();
  EXPECT_EQ(fromURL("file:///Disk" + file).c_str(), "/Disk" + file);
  writeText(file, "");
  EXPECT_EQ(fromURL("file:///Disk" + file).c_str(), file);
  EXPECT_EQ(fromURL("file://localhost" + file).c_str(), file);
  EXPECT_STREQ(fromURL("file:///usr/../usr").c_str(), "/usr/../usr");
  EXPECT_EQ(fromURL("file:///two/disks" + file).c_str(), "/two/disks" + file);
}

TEST_F(CCheminFiles, OpensMakesAndRemoves) {
  EXPECT_EQ(CChemin::Courant().c_str(), fs::current_path());
  std::FILE* const file = at("f").OpenFile("wb");
  ASSERT_NE(file, nullptr);
  std::fputs("text", file);
  std::fclose(file);
  EXPECT_EQ(textOf(scratch / "f"), "text");
  EXPECT_NE(at("f").DetruitRepertoire(&error), 0) << "a file is no directory";
  EXPECT_EQ(at("f").DetruitFichier(), 0);
  EXPECT_FALSE(fs::exists(scratch / "f"));
  const auto code = CChemin::FonctionErrorMessageType(6);
  EXPECT_EQ(CChemin::DonneMessageErreurFonction(code), "CChemin::DetruitContenuRepertoire");
}

TEST_F(CCheminFiles, FailuresGiveTheSystemsText) {
  const CChemin absent = at("absent"), folder = at("");
  const std::function<bool(std::string*)> failures[] = {
      [&](auto* e) { return !absent.FichierExiste(e); },
      [&](auto* e) { return !absent.RepertoireExiste(e); },
      [&](auto* e) { return !absent.OpenFile("rb", e) && !absent.OpenRegularFile(e); },
      [&](auto* e) { return absent.Ajoute("x").CreerRepertoire(e) != 0; },
      [&](auto* e) { return absent.DetruitFichier(e) != 0; },
      [&](auto* e) { return absent.DetruitRepertoire(e) != 0; },
      [&](auto* e) { return absent.CopierContenuRepertoire(folder, e) == kFailed; },
      [&](auto* e) { return folder.CopierContenuRepertoire(absent, e) == kFailed; },
      [&](auto* e) { return absent.DetruitContenuRepertoire(e) == kFailed; },
      [&](auto* e) { return !absent.RenameFile("x", e); }};
  for (const auto& fails : failures) {
    error.clear();
    EXPECT_TRUE(fails(&error));
    EXPECT_EQ(error, "ERRNO [2] :No such file or directory");
  }
}

// Another user of a shared folder replaces the new directory by a link to a private file.
TEST_F(CCheminFiles, ALinkPutInThePlaceOfANewDirectoryIsNotFollowed) {
  writeText(scratch / "private", "");
  fs::permissions(scratch / "private", fs::perms::owner_read);
  afterMkdirat = [this](const char* name) {
    ASSERT_STREQ(name, "new");
    fs::remove(scratch / "new");
    fs::create_symlink(scratch / "private", scratch / "new");
  };
  EXPECT_NE(at("new").CreerRepertoire(&error), 0);
  EXPECT_EQ(error.find("ERRNO ["), 0u);
  fs::remove(scratch / "new");
  EXPECT_EQ(at("new/").CreerArborescenceDeRepertoire(), 0);
  afterMkdirat = nullptr;
  EXPECT_EQ(fs::status(scratch / "private").permissions(), fs::perms::owner_read);
}

TEST_F(CCheminFiles, OnlyAFolderThatCannotBeLookedAtIsReported) {
  writeText(scratch / "f", "");
  RecordingReporter reporter;
  const XStPushReporter scope(&reporter, false);
  EXPECT_TRUE(at("").RepertoireExiste());
  for (const char* name : {"f", "absent", "f/d"}) {
    EXPECT_FALSE(at(name).RepertoireExiste());
  }
  ASSERT_EQ(reporter.lines.size(), 1u);
  EXPECT_EQ(reporter.lines[0], "1 CChemin::RepertoireExiste stat(" + (scratch / "f/d").string() +
                                   ") returned  errno = 20\n");
}

// Cut at the zero byte it would be the name of something that exists.
TEST_F(CCheminFiles, APathWithAZeroByteNamesNothing) {
  writeText(scratch / "f", "text");
  const CChemin file = fromURL("file://" + (scratch / "f").string() + "%00x");
  EXPECT_FALSE(file.FichierExiste() || file.DetruitFichier() == 0);
  EXPECT_FALSE(at("f").CopierVers(file));
  const CChemin folder = fromURL("file://" + scratch.path().string() + "%00/x").Remonte();
  EXPECT_EQ(folder.DetruitContenuRepertoire(), kFailed);
  EXPECT_EQ(textOf(scratch / "f"), "text");
}

TEST_F(CCheminFiles, MakesMissingFoldersButNoneUnderTheRoot) {
  EXPECT_EQ(at("a/b//c").CreerArborescenceDeRepertoire(), 0);
  EXPECT_EQ(at("d").CreerRepertoire(), 0);
  for (const char* made : {"a", "a/b/c", "d"}) {
    EXPECT_EQ(fs::status(scratch / made).permissions(), fs::perms::all) << made;
  }
  const std::string absent = "/" + scratch.path().filename().string();
  EXPECT_EQ(CChemin(absent.c_str()).CreerArborescenceDeRepertoire(), 0);
  EXPECT_EQ(CChemin((absent + "/b").c_str()).CreerArborescenceDeRepertoire(), 0);
  EXPECT_FALSE(fs::exists(absent));
}

// Six folders reach over the longest joined name, 1,023; 100,000 parts over the system's longest.
TEST_F(CCheminFiles, NamesThatGrowTooLongAreLeftOutAndTold) {
  fs::path deep = scratch / "tree";
  for (int i = 0; i < 6; ++i) deep /= std::string(200, 'd');
  std::string parts = deep.string();
  for (int i = 0; i < 100000; ++i) parts += "/.";
  EXPECT_EQ(CChemin(parts.c_str()).CreerArborescenceDeRepertoire(), 0);
  EXPECT_TRUE(fs::is_directory(deep));
  EXPECT_EQ(at("tree").DetruitContenuRepertoire(&error), kFailed);
  EXPECT_EQ(error, "ERRNO [36] :File name too long");
  EXPECT_TRUE(fs::is_directory(deep));
}

TEST_F(CCheminFiles, CopiesAWholeFile) {
  const CChemin from = at("from"), to = at("to");
  EXPECT_FALSE(from.CopierVers(to, &error));
  EXPECT_EQ(std::exchange(error, ""), "Input file does not exist");
  writeText(scratch / "from", std::string(200000, 'v'));
  writeText(scratch / "to", "old");
  writeText(scratch / "other", "");
  fs::last_write_time(scratch / "from", fs::file_time_type::clock::now() - std::chrono::hours(9));
  EXPECT_FALSE(from.PlusRecent(to));
  const auto second = [](int seconds) {  // of the epoch of the files' clock, rounded
    return fs::file_time_type(std::chrono::seconds(seconds));
  };
  fs::last_write_time(scratch / "other", second(1001));
  fs::last_write_time(scratch / "to", second(1000));
  EXPECT_FALSE(to.PlusRecent(at("other")));
  EXPECT_TRUE(at("other").PlusRecent(to) && to.PlusRecent(to));
  EXPECT_TRUE(from.CopierVers(to, &error));
  EXPECT_EQ(error, "");
  EXPECT_EQ(textOf(scratch / "to"), textOf(scratch / "from"));
  EXPECT_EQ(fs::status(scratch / "to").permissions(), fs::perms::all);
  EXPECT_TRUE(from.PlusRecent(to));
}

TEST_F(CCheminFiles, CopiesNothingOntoItselfNorOntoOrFromWhatIsNoFile) {
  writeText(scratch / "f", "text");
  fs::create_hard_link(scratch / "f", scratch / "hard");
  fs::create_symlink("f", scratch / "soft");
  fs::create_directory(scratch / "d");
  ASSERT_EQ(mkfifo((scratch / "pipe").c_str(), 0600), 0);
  const struct {
    const char *from, *to, *error;
  } cases[] = {{"f", "f", "22"},    {"f", "hard", "22"}, {"f", "soft", "22"}, {"soft", "f", "22"},
               {"f", "pipe", "22"}, {"pipe", "x", "22"}, {"f", "d", "21"},    {"d", "x", "21"},
               {"f", "no/x", "2"},  {"f", "d/", "2"},    {"f", "f/x", "20"}};
  for (const auto& c : cases) {
    error.clear();
    EXPECT_FALSE(at(c.from).CopierVers(at(c.to), &error));
    EXPECT_EQ(error.rfind("ERRNO [" + std::string(c.error) + "] :", 0), 0u) << c.from << c.to;
  }
  EXPECT_EQ(at("pipe").OpenRegularFile(), nullptr);
  EXPECT_EQ(textOf(scratch / "f"), "text");
  EXPECT_EQ(entriesIn(scratch.path()), 5);
}

// While this process may write files of 1,000 bytes at most.
TEST_F(CCheminFiles, AFailedCopyLeavesTheOldTarget) {
  writeText(scratch / "from", std::string(5000, 'v'));
  writeText(scratch / "to", "old");
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const rlimit small{1000, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  EXPECT_FALSE(at("from").CopierVers(at("to")));
  setrlimit(RLIMIT_FSIZE, &before);
  EXPECT_EQ(textOf(scratch / "to"), "old");
  EXPECT_EQ(entriesIn(scratch.path()), 2);
}

/// tree/ with a file at the top and one below, a pipe, and a link to outside/; an empty to/.
class CCheminTree : public CCheminFiles {
 protected:
  CCheminTree() {
    for (const char* folder : {"tree/sub/deep", "outside", "to"}) {
      fs::create_directories(scratch / folder);
    }
    writeText(scratch / "outside/precious", "kept");
    writeText(scratch / "tree/top", "1");
    writeText(scratch / "tree/sub/deep/low", "2");
    fs::create_directory_symlink(scratch / "outside", scratch / "tree/link");
    EXPECT_EQ(mkfifo((scratch / "tree/pipe").c_str(), 0600), 0);
  }
  const CChemin tree = at("tree"), to = at("to");
};

TEST_F(CCheminTree, IsCopiedWithoutLinksAndPipes) {
  EXPECT_EQ(tree.CopierContenuRepertoire(to, &error), 0u);
  EXPECT_EQ(error, "");
  EXPECT_EQ(textOf(scratch / "to/top") + textOf(scratch / "to/sub/deep/low"), "12");
  EXPECT_EQ(fs::status(scratch / "to/sub").permissions(), fs::perms::all);
  EXPECT_EQ(entriesIn(scratch / "to"), 2);
}

TEST_F(CCheminTree, IsNotCopiedIntoItselfNorThroughALinkInTheTarget) {
  EXPECT_EQ(tree.CopierContenuRepertoire(tree), kFailed);
  EXPECT_EQ(tree.CopierContenuRepertoire(at("tree/sub")), 0u);
  EXPECT_EQ(textOf(scratch / "tree/sub/top"), "1");
  EXPECT_FALSE(fs::exists(scratch / "tree/sub/sub"));
  fs::create_directory_symlink(scratch / "outside", scratch / "to/sub");
  EXPECT_EQ(tree.CopierContenuRepertoire(to, &error), 0u);
  EXPECT_NE(error, "");
  EXPECT_EQ(textOf(scratch / "to/top"), "1");
  EXPECT_EQ(entriesIn(scratch / "outside"), 1);
}

TEST_F(CCheminTree, IsEmptiedWithoutFollowingLinks) {
  fs::create_directory_symlink(scratch / "tree", scratch / "door");
  EXPECT_EQ(at("door").DetruitContenuRepertoire(), kFailed);
  EXPECT_TRUE(fs::exists(scratch / "tree/top"));
  EXPECT_EQ(tree.DetruitContenuRepertoire(&error), 0u);
  EXPECT_EQ(error, "");
  EXPECT_EQ(entriesIn(scratch / "tree"), 2);
  EXPECT_TRUE(fs::is_symlink(scratch / "tree/link") && fs::is_fifo(scratch / "tree/pipe"));
  EXPECT_EQ(textOf(scratch / "outside/precious"), "kept");
}

TEST_F(CCheminFiles, RenamesInItsFolder) {
  writeText(scratch / "a", "text");
  EXPECT_TRUE(at("a").RenameFile("b"));
  EXPECT_FALSE(at("b").RenameFile(nullptr) || CChemin("no folder").RenameFile("b"));
  EXPECT_EQ(textOf(scratch / "b"), "text");
}

TEST_F(CCheminFiles, FollowsOneLink) {
  const CChemin link = at("link");
  const std::string beside = (scratch / "beside").string(), self = link.c_str();
  const std::pair<std::string, std::string> cases[] = {
      {"beside", beside}, {"/absolute/x", "/absolute/x"}, {std::string(512, 'x'), self}};
  CChemin path = link;
  EXPECT_FALSE(path.ResolveSymbolicLink());
  for (const auto& [text, expected] : cases) {
    fs::create_symlink(text, scratch / "link");
    path = link;
    EXPECT_EQ(path.ResolveSymbolicLink(), expected != self);
    EXPECT_EQ(path.c_str(), expected);
    fs::remove(scratch / "link");
  }
}

}  // namespace
