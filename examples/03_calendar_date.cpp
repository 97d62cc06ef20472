// A calendar date at a frame. Over weeks, date and time of day move apart: the sun does not race.
#include <cstdio>

#include "refhost/scenes/properties.h"
#include "vexa/vexa.h"

int main() {
  vexa::refhost::Scene scene = vexa::refhost::scenes::calendar();
  Norvel::Vexa::XIAnimationMgr* manager = Norvel::Vexa::XIAnimationMgr::Create();

  std::printf("frame  date (UTC)\n");
  for (int frame = 0; frame <= 210; frame += 21) {
    // Between two dates that are weeks apart, days go by evenly while the time of day moves on its
    // own.
    const auto date =
        manager->InterpolateValue(&scene, &scene.mProperties[0], frame, nullptr, nullptr);
    Norvel::Vexa::XCTimeImpl time;
    // The library writes into a time of the host's through an interface; this is one to use.
    UxZel::CKeyFrameTool::GetTime(date, &time);
    std::printf("%5d  %04d-%02d-%02d %02d:%02d\n", frame, time.getYear(), time.getMonth(),
                time.getDay(), time.getHour(), time.getMinute());
  }
  manager->Delete();
}
