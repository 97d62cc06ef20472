// A cart on a circular path: it leaves slowly, rests in the middle and arrives slowly.
#include <cmath>
#include <cstdio>
#include <string>

#include "refhost/scenes/paths.h"
#include "vexa/vexa.h"

int main() {
  using namespace vexa::refhost::scenes;
  vexa::refhost::Scene scene = ride(circlePath(10));
  Norvel::Vexa::XIAnimationMgr* manager = Norvel::Vexa::XIAnimationMgr::Create();

  std::printf("frame        x        y   heading  | degrees around the circle\n");
  double before = 0;
  bool forward = true;
  for (int frame = 0; frame <= 100; frame += 5) {
    UxZel::CZelVector direction;
    double lookAhead = 0.5;  // face the place half a unit further on
    // The keys of this property hold fractions of the path's length, not coordinates.
    const auto place =
        manager->InterpolateValue(&scene, &scene.mProperties[0], frame, &direction, &lookAhead);
    const double degrees = 180 / 3.141592653589793;
    const double heading = std::atan2(direction.y, direction.x) * degrees;
    double around = std::atan2(place.mVector[1], place.mVector[0]) * degrees;
    // atan2 gives -180 to 180; the plot counts from 0 to 360.
    if (around < -0.001 || frame == 100) around += 360;
    std::printf("%5d  %7.3f  %7.3f  %8.2f  | %7.2f %s\n", frame, place.mVector[0], place.mVector[1],
                heading, around, std::string(std::size_t(around / 12), '*').c_str());
    forward = forward && around >= before - 0.01;
    before = around;
  }
  manager->Delete();
  return forward ? 0 : 1;
}
