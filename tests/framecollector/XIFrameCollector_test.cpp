#include "vexa/framecollector/XIFrameCollector.h"

#include <gtest/gtest.h>

#include "tests/helpers/vtable_slot.h"

namespace Norvel::Vexa {
namespace {

using vexa::tests::slotOf;

// Positions 0 and 1 are the destructors.
TEST(XIFrameCollector, OperationsHaveTheirPositions) {
  using I = XIFrameCollector;
  using Point = Oru::TVector3D<float>;
  Point (I::*byAddress)(const Point*, unsigned, unsigned) const = &I::TransformPoint;
  Point (I::*byIndex)(unsigned, unsigned, unsigned) const = &I::TransformPoint;
  EXPECT_EQ(slotOf(&I::AddTransformation), 2);
  EXPECT_EQ(slotOf(&I::SetGlobalTransformation), 3);
  EXPECT_EQ(slotOf(&I::GetGlobalTransformation), 4);
  EXPECT_EQ(slotOf(&I::GetTransformation), 5);
  EXPECT_EQ(slotOf(&I::AddLink), 6);
  EXPECT_EQ(slotOf(&I::GetVertexTransformation), 7);
  EXPECT_EQ(slotOf(byAddress), 8);
  EXPECT_EQ(slotOf(byIndex), 9);
  EXPECT_EQ(slotOf(&I::GetCurrentDefinition), 10);
  EXPECT_EQ(slotOf(&I::GetSize), 11);
  EXPECT_EQ(slotOf(&I::CreateTake), 12);
}

}  // namespace
}  // namespace Norvel::Vexa
