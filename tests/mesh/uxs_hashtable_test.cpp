#include "vexa/mesh/uxs_hashtable.h"

#include <gtest/gtest.h>

using namespace UXS;
using V3 = Oru::TVector3D<float>;
using Positions = uxs_hashtable<V3, unsigned int>;
using Boxes = uxs_hashtable<unsigned int, Oru::TBox3D<float>>;

namespace {

/// A value that cannot be made while `broken` is set.
struct Fragile {
  static inline bool broken = false;
  int mValue;
  Fragile(int inValue = 0) : mValue(inValue) {
    if (broken) throw std::bad_alloc();
  }
};
using Fragiles = uxs_hashtable<int, Fragile>;

unsigned int hashOfInt(const int& key) { return static_cast<unsigned int>(key); }
bool equalInts(const int& a, const int& b) { return a == b; }

}  // namespace

TEST(Hashtable, TheNewestOfEqualKeysIsFound) {
  for (const unsigned int buckets : {0u, 1024u}) {
    Positions table(buckets);
    for (const unsigned int value : {1u, 2u}) table.link_cell({1, 2, 3}, &value);
    EXPECT_EQ(*table.find({1, 2, 3}), 2u);
    EXPECT_EQ(table.link_cell({4, 5, 6}, nullptr)->value, 0u);
    EXPECT_EQ(table.bucketCount(), buckets == 0 ? 1 : buckets);
  }
  Boxes boxes(1024);
  EXPECT_FALSE(boxes[7].mIsValid) << "an unknown key gets an empty box";
  boxes[7].mIsValid = true;
  EXPECT_TRUE(boxes[7].mIsValid);
  EXPECT_EQ(boxes.count(), 1u);
  boxes.clear();
  EXPECT_EQ(boxes.find(7), nullptr);
}

TEST(Hashtable, AFailedGrowthPointsTheBucketAtTheLastEntry) {
  Fragiles table(8, hashOfInt, equalInts);
  const Fragile first(100), last(200);
  table.link_cell(1, &first);
  for (int i = 1; i < 1024; ++i) table.link_cell(2, &last);
  Fragile::broken = true;
  EXPECT_EQ(table.link_cell(9, &first), nullptr);  // the bucket of 1
  EXPECT_THROW(table[3], std::bad_alloc);
  Fragile::broken = false;
  EXPECT_EQ(table.count(), 1026u);
  EXPECT_EQ(table.cells().size(), 1024u);
  EXPECT_EQ(table.find(1), nullptr) << "required: the bucket's old chain is lost";
  EXPECT_EQ(table.find(3), nullptr);
  EXPECT_EQ(table.find(2)->mValue, 200);
  table[1] = 5;
  EXPECT_EQ(table.find(1)->mValue, 5);
}
