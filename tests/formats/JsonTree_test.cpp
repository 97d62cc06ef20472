#include "formats/JsonTree.h"

#include <gtest/gtest.h>
#include <limits>
#include <stdexcept>

#include "tests/helpers/compare.h"
#include "tests/helpers/failing_new.h"

namespace {

using vexa::formats::JsonTree;
using vexa::formats::parseJson;
using vexa::tests::gMemory;

const char* const kText =
    R"({"z":[1,-2,0.5,1e+30,true,null],"a":{"long enough for memory of its own":"\"\\\n\u0007"},)"
    R"("b":[[],{},"\u00e9\ud83d\ude00"]})";

TEST(JsonTree, GivesBackWhatItRead) {
  EXPECT_EQ(parseJson(kText).dump(), kText);
  EXPECT_EQ(parseJson(R"({"a":1,"b":2,"a":3})")["a"].dump(), "3");
  EXPECT_EQ(parseJson("[18446744073709551615]").dump(), "[18446744073709551616.0]");
  const JsonTree tree = JsonTree::object()
                            .with("list", JsonTree::list(1, "t"))
                            .with("none", JsonTree::list())
                            .with("x", 2.0);
  EXPECT_EQ(tree.dump(JsonTree::Layout::kIndented),
            "{\n  \"list\": [\n    1,\n    \"t\"\n  ],\n  \"none\": [],\n  \"x\": 2.0\n}");
}

TEST(JsonTree, ForeignCharactersAndNumbersStayValid) {
  const JsonTree tree("\xC3\xA9\xFF\x7F");
  EXPECT_EQ(tree.dump(), R"("\u00e9\ufffd\u007f")");
  EXPECT_EQ(tree.dump(JsonTree::Layout::kOneLine, JsonTree::Characters::kUtf8),
            "\"\xC3\xA9\xEF\xBF\xBD\x7F\"");
  EXPECT_EQ(JsonTree(std::numeric_limits<double>::infinity()).dump(), "null");
}

TEST(JsonTree, SyntaxAndDepthAreChecked) {
  const auto fault = [](const std::string& text) {
    return vexa::tests::whatOf([&] { parseJson(text); });
  };
  EXPECT_EQ(fault("[1,\n 2,]").rfind("parse error at line 2, column 4: ", 0), 0u)
      << fault("[1,\n 2,]");
  EXPECT_NE(fault("[1e400]"), "");
  EXPECT_EQ(parseJson(std::string(100, '[') + std::string(100, ']')).size(), 1u);
  EXPECT_EQ(fault(std::string(1'000'000, '[')), "the JSON is nested over 100 deep");
}

// No destructor may ask for memory: the process would end.
TEST(JsonTree, WithoutMemoryThereIsAnExceptionAndNothingElse) {
  const std::vector<int> kNumbers = {1, 2};
  long failures = 0;
  for (const bool onwards : {false, true}) {
    long allocation = 0;
    do {
      const long before = gMemory.mBlocks;
      const bool thrown = vexa::tests::throwsAt(allocation++, onwards, [&] {
        const std::string text = parseJson(kText).dump();
        JsonTree built = JsonTree::object().with("formatVersion", 1);
        built["copy"] = JsonTree(built);
        built["list"].add(JsonTree::object().with("name", text).with("numbers", kNumbers));
      });
      EXPECT_EQ(thrown, gMemory.mFired) << allocation;
      EXPECT_EQ(gMemory.mBlocks, before) << allocation;
      failures += thrown ? 1 : 0;
    } while (gMemory.mFired);
  }
  EXPECT_GT(failures, 60);
}

}  // namespace
