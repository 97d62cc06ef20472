#include "vexa/paths/XC3DPath.h"

#include <gtest/gtest.h>

#include "refhost/Path.h"
#include "tests/helpers/compare.h"

namespace {

using Norvel::Vexa::XC3DPath;
using Norvel::Vexa::XCZELPathInfo;

TEST(C3DPath, RefusesAPathWithoutAListOfPoints) {
  const std::string text = "XC3DPath::XC3DPath - probleme path ! ";
  vexa::refhost::Path path;
  path.mPoints.add();
  path.mHasPointList = false;
  const XCZELPathInfo listless(&path), pathless(nullptr);
  EXPECT_EQ(vexa::tests::whatOf([&] { XC3DPath bezier(&listless); }), text);
  EXPECT_EQ(vexa::tests::whatOf([&] { XC3DPath bezier(&pathless); }), text);
  EXPECT_EQ(vexa::tests::whatOf([&] { XC3DPath bezier(nullptr); }), text);
  path.mHasPointList = true;
  const XCZELPathInfo single(&path);
  EXPECT_TRUE(XC3DPath(&single).getCurves().empty());
}

}  // namespace
