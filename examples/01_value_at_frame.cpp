// The value of a property at a frame: the lamp of the reference host, one property of each kind.
#include <cstdio>

#include "refhost/scenes/properties.h"
#include "vexa/vexa.h"

int main() {
  vexa::refhost::Scene lamp = vexa::refhost::scenes::lamp();
  Norvel::Vexa::XIAnimationMgr* manager = Norvel::Vexa::XIAnimationMgr::Create();
  // One call for every kind of value: the answer is a union, and the property knows its member.
  const auto at = [&](std::size_t property, int frame) {
    return manager->InterpolateValue(&lamp, &lamp.mProperties[property], frame, nullptr, nullptr);
  };

  std::printf("frame  brightness  colour       place              switches  mode  pulse\n");
  for (int frame = 0; frame <= 100; frame += 10) {
    const auto color = at(1, frame), place = at(2, frame);
    std::printf("%5d  %10.4f  %3d %3d %3d  %5.2f %5.2f %5.2f  %8d  %4u  %5.2f\n", frame,
                at(0, frame).mReal, color.mColor[0], color.mColor[1], color.mColor[2],
                place.mVector[0], place.mVector[1], place.mVector[2], at(3, frame).mInteger,
                at(4, frame).mStep, at(5, frame).mReal);
  }

  // A fault is one line on the standard error stream and a value of zero bytes.
  const bool isZero = at(0, -1).mReal == 0;
  manager->Delete();
  return isZero ? 0 : 1;
}
