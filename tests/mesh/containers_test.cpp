// uxs_array, uxs_reference, uxs_autoptr and SmallVector.
#include <algorithm>
#include <gtest/gtest.h>
#include <new>
#include <vector>

#include "tests/helpers/vtable_slot.h"
#include "vexa/mesh/SmallVector.h"
#include "vexa/mesh/uxs_array.h"
#include "vexa/mesh/uxs_autoptr.h"
#include "vexa/mesh/uxs_reference.h"

using namespace UXS;
using Array = uxs_array<unsigned int, unsigned int>;
using Numbers = std::vector<unsigned int>;

namespace {

Numbers contents(const Array& a) { return {a.begin(), a.end()}; }

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

TEST(Array, AppendsItsOwnElementsAndForgetsWithClear) {
  Array a = numbers(4);
  a[0] = 7;
  EXPECT_EQ(*a.push_back(a[0]), 7u);
  a.clear();
  EXPECT_EQ(a.copy(numbers(10), 8, 1), 1u);
  EXPECT_EQ(contents(a), (Numbers{0, 0, 0, 0, 0, 0, 0, 0, 8})) << "nothing from before clear()";
}

TEST(Array, TheDefaultFunctionsRefuseNull) {
  unsigned int x = 1;
  EXPECT_FALSE(Array::default_copyfunc(nullptr, &x, 1) || Array::default_copyfunc(&x, nullptr, 1));
  EXPECT_FALSE(Array::default_equalfunc(nullptr, &x, 0) ||
               Array::default_equalfunc(&x, nullptr, 0));
  EXPECT_TRUE(Array::default_copyfunc(&x, &x, 0) && Array::default_equalfunc(&x, &x, 1));
}

// A hook that throws, and memory that is not there, leave the array alone.
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
  EXPECT_NE(a.push_back(7), nullptr);
  broken = true;
  EXPECT_EQ(a.push_back(8), nullptr);
  EXPECT_EQ(a.copy(numbers(9), 0, 9), 0u);
  EXPECT_EQ(a.copy(numbers(3), 0, 3), 0u);
  EXPECT_EQ(contents(a), (Numbers{5, 5, 6, 7}));
  struct Unavailable {
    Unavailable() { throw std::bad_alloc(); }
  };
  EXPECT_FALSE((uxs_array<Unavailable, unsigned int>().reserve(3)));
}

TEST(Reference, TheLastDecrementDeletesButForTheFinalRenderer) {
  EXPECT_EQ(vexa::tests::slotOf(&uxs_reference::increment), 0);
  EXPECT_EQ(vexa::tests::slotOf(&uxs_reference::decrement), 1);
  int deleted = 0;
  {
    auto* const object = new Counted(deleted);
    object->increment();
    uxs_autoptr<Counted> first(object), owner;
    owner = std::move(first);
    uxs_reference::_is_final_renderer = true;
    object->increment();
    object->increment();
    object->decrement();
    uxs_reference::_is_final_renderer = false;
    object->increment();
    object->decrement();
    EXPECT_EQ(owner->GetReferenceCount(), 1);
    EXPECT_EQ(Counted(*object).GetReferenceCount(), 0) << "a copy has no owner yet";
    EXPECT_EQ(deleted, 1) << "that copy";
  }
  EXPECT_EQ(deleted, 2);
}

TEST(SmallVector, IsAListThroughEveryGrowthAndMove) {
  std::vector<Oru::SmallVector<unsigned int, 4>> lists(1);
  Numbers expected;
  for (unsigned int i = 0; i < 100; ++i) {
    lists[0].push_back(i);
    expected.push_back(i);
    if (i == 3 || i == 4 || i == 99) lists.resize(lists.capacity() + 1);  // moves every list
    EXPECT_EQ(Numbers(lists[0].begin(), lists[0].end()), expected);
  }
  EXPECT_TRUE(lists[1].empty());
}
