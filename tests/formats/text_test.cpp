// Numbers, bytes and materials as text.
#include <gtest/gtest.h>
#include <string>

#include "formats/base64.h"
#include "formats/mtl.h"
#include "formats/number_text.h"
#include "formats/write_file.h"
#include "tests/helpers/scratch_directory.h"

using namespace vexa::formats;

// The examples of RFC 4648, and every bit set.
TEST(Base64, PadsWhatIsLeft) {
  const char* const kTexts[] = {"", "Zg==", "Zm8=", "Zm9v", "Zm9vYg==", "Zm9vYmE=", "Zm9vYmFy"};
  for (std::size_t n = 0; n < 7; ++n) {
    EXPECT_EQ(base64Of(std::string("foobar").substr(0, n)), kTexts[n]);
  }
  EXPECT_EQ(base64Of("\xFF\xFE\x3F"), "//4/");
}

TEST(NumberText, IsShortAndParsedWhole) {
  EXPECT_EQ(shortestText(0.1f), "0.1");
  EXPECT_EQ(shortestText(double(0.1f)), "0.10000000149011612");
  char text[kLongestNumber];
  EXPECT_EQ(std::string(text, writeShortest(text, -1.5f)), "-1.5");
  double number = 0;
  for (const char* bad : {"", " 1", "1 ", "+1", "0x10", "1,5", "1e999", "one"}) {
    EXPECT_FALSE(parseNumber(bad, number)) << bad;
  }
  EXPECT_TRUE(parseNumber("-2.5e3", number));
  EXPECT_EQ(number, -2500);
  float narrow = 0;
  EXPECT_FALSE(parseNumber("1e39", narrow));
  EXPECT_TRUE(parseNumber("16777217", narrow));
  EXPECT_EQ(narrow, 16777216.0f);
}

TEST(Mtl, ColoursAndTexturesComeBack) {
  const vexa::tests::ScratchDirectory folder;
  writeFile(folder / "a.mtl",
            formatMtl({{"red", {1, 0.25, 0}, ""}, {"brick", {1, 1, 0.5}, "wall.png"}}));
  writeFile(folder / "b.mtl", "newmtl last\nKd 0 0 1\n");
  const auto read = [&](const char* text) { return readMaterialsOf(text, folder / ""); };
  const auto all = read("v 0 0 0\nmtllib a.mtl\r\nmtllib gone.mtl\nmtllib  b.mtl\n");
  ASSERT_EQ(all.size(), 3u);
  EXPECT_EQ(all[0].name, "red");
  EXPECT_EQ(all[0].color, (std::array<double, 3>{1, 0.25, 0}));
  EXPECT_EQ(all[0].texture, "");
  EXPECT_EQ(all[1].texture, "wall.png");
  EXPECT_EQ(all[2].color, (std::array<double, 3>{0, 0, 1}));
  EXPECT_TRUE(read("# mtllib a.mtl\n").empty());
}
