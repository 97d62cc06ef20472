// uxs_array, uxs_reference, uxs_autoptr and SmallVector.
#include <gtest/gtest.h>
#include <numeric>
#include <random>
#include <vector>

#include "tests/helpers/compare.h"
#include "tests/helpers/vtable_slot.h"
#include "vexa/mesh/SmallVector.h"
#include "vexa/mesh/uxs_array.h"
#include "vexa/mesh/uxs_autoptr.h"
#include "vexa/mesh/uxs_reference.h"

using namespace UXS;
using Array = uxs_array<unsigned int, unsigned int>;

namespace {

Array numbers(unsigned int n) {
  Array a;
  for (unsigned int i = 0; i < n; ++i) a.push_back(i);
  return a;
}

/// Counts its own deletions.
struct Counted : uxs_reference {
  explicit Counted(int& outDeleted) : mDeleted(outDeleted) {}
  Counted(const Counted&) = default;
  ~Counted() override { ++mDeleted; }
  int& mDeleted;
};

}  // namespace

TEST(Array, GrowsByDoublingAndAppendsItsOwnElements) {
  Array a;
  const unsigned int capacities[] = {1, 2, 4, 4, 8};
  for (unsigned int i = 0; i < 5; ++i) {
    EXPECT_EQ(*a.push_back(i == 0 ? 7 : a[i - 1]), 7u);
    EXPECT_EQ(a.capacity(), capacities[i]);
  }
  EXPECT_EQ(Array::default_sizefunc(0), 1u);
  EXPECT_EQ(Array::default_sizefunc(0x80000000), 1u);
  EXPECT_EQ(Array::default_sizefunc(0x80000001), 2u);
}

TEST(Array, ReserveRefusesTheSameCapacityAndLessThanTheSize) {
  Array a = numbers(3);
  EXPECT_FALSE(a.reserve(4));
  EXPECT_FALSE(a.reserve(2));
  EXPECT_TRUE(a.reserve(3));
  EXPECT_EQ(a.capacity(), 3u);
  EXPECT_EQ(a[2], 2u);
  a.clear();
  EXPECT_TRUE(a.reserve(0));
  EXPECT_EQ(a.begin(), nullptr);
}

TEST(Array, CopiesRangesToTheSamePositions) {
  const Array source = numbers(10);
  Array a;
  EXPECT_EQ(a.copy(source, 10, 1), 0u);
  EXPECT_EQ(a.copy(source, 4, 3), 3u);
  EXPECT_EQ(a.size(), 7u);
  EXPECT_EQ(std::vector<unsigned int>(a.begin(), a.end()),
            (std::vector<unsigned int>{0, 0, 0, 0, 4, 5, 6}));
  EXPECT_EQ(a.copy(source, 1, 2), 2u);
  EXPECT_EQ(a.size(), 7u) << "a copy never shortens";
  EXPECT_EQ(a.copy(source, 8, 100), 2u);
  EXPECT_EQ(a.size(), 10u);
  EXPECT_FALSE(a.equals(source)) << "the gap stays zero";
  EXPECT_TRUE(a.copy(source));
  EXPECT_TRUE(a.equals(source));
  EXPECT_TRUE(a.copy(a));
  EXPECT_TRUE(a.equals(source));
  EXPECT_TRUE(a.copy(Array()));
  EXPECT_TRUE(a.equals(Array()));
}

TEST(Array, NewMatricesAreTheIdentity) {
  using Matrix = uxs_generic_mat4<float>;
  uxs_array<Matrix, unsigned int> one, gap;
  for (int i = 0; i < 2; ++i) one.push_back(Matrix{});
  EXPECT_EQ(gap.copy(one, 1, 1), 1u);
  EXPECT_TRUE(vexa::tests::sameBits(gap[0], Matrix{}));
}

// Hooks see every growth; one that throws, and memory that is not there, leave the array alone.
TEST(Array, FailureIsReportedAndChangesNothing) {
  static bool broken;
  broken = false;
  Array a([](unsigned int capacity) { return capacity + 2; },
          [](unsigned int* dst, const unsigned int* src, unsigned int n) {
            if (broken) throw 1;
            std::copy_n(src, n, dst);
            return false;
          });
  EXPECT_TRUE(a.assign(2, 5));
  EXPECT_NE(a.push_back(6), nullptr);
  EXPECT_EQ(a.capacity(), 4u);
  EXPECT_NE(a.push_back(7), nullptr);
  broken = true;
  EXPECT_EQ(a.push_back(8), nullptr);
  EXPECT_FALSE(a.reserve(100));
  EXPECT_EQ(a.copy(numbers(9), 0, 9), 0u);
  EXPECT_EQ(a.copy(numbers(3), 0, 3), 0u);
  EXPECT_EQ(a.size(), 4u);
  EXPECT_EQ(a[3], 7u);

  struct Huge {
    char bytes[1ull << 32];
  };
  using Huges = uxs_array<Huge, unsigned int>;
  Huges huge;
  EXPECT_FALSE(huge.reserve(0xFFFFFFFF));
  EXPECT_EQ(huge.capacity(), 0u);
}

TEST(Array, MovesTakeBufferAndHooks) {
  std::vector<Array> arrays(2);
  arrays[0] = numbers(3);
  const unsigned int* const buffer = arrays[0].begin();
  arrays.resize(50);
  EXPECT_EQ(arrays[0].begin(), buffer);
  EXPECT_EQ(arrays[1].size(), 0u);
}

TEST(Reference, SlotsAreFixed) {
  EXPECT_EQ(vexa::tests::slotOf(&uxs_reference::increment), 0);
  EXPECT_EQ(vexa::tests::slotOf(&uxs_reference::decrement), 1);
}

TEST(Reference, TheLastDecrementDeletes) {
  int deleted = 0;
  const auto* const object = new Counted(deleted);
  object->increment();
  object->increment();
  object->decrement();
  EXPECT_EQ(object->GetReferenceCount(), 1);
  EXPECT_EQ(Counted(*object).GetReferenceCount(), 0) << "a copy has no owner yet";
  deleted = 0;
  object->decrement();
  EXPECT_EQ(deleted, 1);
}

TEST(Reference, CountsNothingForTheFinalRenderer) {
  int deleted = 0;
  {
    const Counted object(deleted);
    object.increment();
    uxs_reference::_is_final_renderer = true;
    object.increment();
    object.decrement();
    object.decrement();
    uxs_reference::_is_final_renderer = false;
    EXPECT_EQ(object.GetReferenceCount(), 1);
  }
  EXPECT_EQ(deleted, 1);
}

TEST(Autoptr, GivesUpExactlyOneReference) {
  int deleted = 0;
  {
    auto* const object = new Counted(deleted);
    object->increment();
    uxs_autoptr<Counted> a(object);
    uxs_autoptr<Counted> b;
    b = std::move(a);
    EXPECT_FALSE(a);
    EXPECT_EQ(b.get(), object);
    EXPECT_EQ(object->GetReferenceCount(), 1);
    EXPECT_EQ(deleted, 0);
  }
  EXPECT_EQ(deleted, 1);
}

TEST(SmallVector, IsAListThroughEveryGrowthAndMove) {
  std::vector<Oru::SmallVector<unsigned int, 4>> lists(3);
  for (unsigned int i = 0; i < 100; ++i) {
    lists[0].push_back(i);
    if (i < 4) lists[1].push_back(10 * i);
    if (i == 3 || i == 4 || i == 99) lists.resize(lists.capacity() + 1);  // moves every list
  }
  std::vector<unsigned int> expected(100);
  std::iota(expected.begin(), expected.end(), 0u);
  EXPECT_TRUE(std::equal(lists[0].begin(), lists[0].end(), expected.begin(), expected.end()));
  EXPECT_EQ(lists[1].size(), 4u);
  EXPECT_EQ(lists[1][3], 30u);
  EXPECT_TRUE(lists[2].empty());
}
