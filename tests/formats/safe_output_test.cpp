// What is written appears whole or not at all, and nothing else is touched.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

#include "formats/OutputFolder.h"
#include "formats/printable.h"
#include "formats/write_file.h"
#include "tests/helpers/compare.h"
#include "tests/helpers/scratch_directory.h"

namespace {

namespace fs = std::filesystem;
using vexa::formats::OutputFolder;
using vexa::formats::writeFile;
using vexa::tests::ScratchDirectory;
using vexa::tests::textOf;
using vexa::tests::whatOf;

std::set<std::string> namesIn(const fs::path& folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.insert(entry.path().filename());
  return names;
}

TEST(WriteFile, ReplacesFilesAndLinksButNothingElse) {
  const ScratchDirectory folder;
  const std::string path = folder / "a", other = folder / "other";
  writeFile(other, "kept");
  fs::create_symlink("other", path);
  writeFile(path, "new");
  EXPECT_EQ(textOf(path) + textOf(other), "newkept");
  mkfifo((folder / "pipe").c_str(), 0600);
  EXPECT_EQ(whatOf([&] { writeFile(folder / "pipe", "x"); }),
            (folder / "pipe").string() + ": is no regular file");
  EXPECT_EQ(whatOf([&] { writeFile(folder.path(), "x"); }),
            folder.path().string() + ": Is a directory");
  EXPECT_EQ(namesIn(folder.path()), (std::set<std::string>{"a", "other", "pipe"}));
}

TEST(OutputFolder, FilesAppearTogetherAndOthersStay) {
  const ScratchDirectory folder;
  const std::string out = folder / "deep/er/out";
  for (const char* text : {"first", "second"}) {
    OutputFolder output(out + "/");
    writeFile(output.pathFor("a"), text);
    writeFile(output.pathFor(text), text);
    EXPECT_EQ(fs::exists(out + "/second"), false);
    output.publish();
  }
  EXPECT_EQ(namesIn(out), (std::set<std::string>{"a", "first", "second"}));
  EXPECT_EQ(textOf(out + "/a"), "second");
  EXPECT_EQ(namesIn(folder / "deep/er"), (std::set<std::string>{"out"}));
}

TEST(OutputFolder, AFailurePutsBackWhatStoodThere) {
  const ScratchDirectory folder;
  for (const char* name : {"a", "b", "c", "d"}) writeFile(folder / name, name);
  for (const std::string blocked : {"a", "b", "c", "d"}) {
    {
      OutputFolder output(folder.path());
      for (const char* name : {"a", "b", "c", "d", "e"}) writeFile(output.pathFor(name), "new");
      const std::string left = output.pathFor(blocked);
      unlink(left.c_str());
      fs::create_directory(left);  // no file can be replaced by it
      EXPECT_EQ(whatOf([&] { output.publish(); }).find((folder / blocked).string()), 0u);
    }
    for (const char* name : {"a", "b", "c", "d"}) EXPECT_EQ(textOf(folder / name), name);
    EXPECT_EQ(namesIn(folder.path()), (std::set<std::string>{"a", "b", "c", "d"}));
  }
  { OutputFolder output(folder / "x/y/z"); }
  EXPECT_EQ(namesIn(folder.path()).count("x"), 0u);
}

TEST(Printable, NothingReachesTheTerminalsControls) {
  using vexa::formats::printable;
  EXPECT_EQ(printable("plain \\ \xC3\xA9\xF0\x9F\x90\x83"), "plain \\ \xC3\xA9\xF0\x9F\x90\x83");
  EXPECT_EQ(printable("\x1b[31m\n\t\x7f"), "\\x1b[31m\\n\\t\\x7f");
  EXPECT_EQ(printable("\xC2\x9B"
                      "2J \xE2\x80\xAE"
                      "cod"),
            "\\x9b2J \\u202ecod");
  EXPECT_EQ(printable("\xC0\xAF \xED\xA0\x80 \xF5 \xC3"), "\\xc0\\xaf \\xed\\xa0\\x80 \\xf5 \\xc3");
}

}  // namespace
