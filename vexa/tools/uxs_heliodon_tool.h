#pragma once

#include <cstdint>

#include "vexa/Export.h"
#include "vexa/math/uxs_generic_vec3.h"

namespace UXS {

/// The direction towards the sun, as a unit vector in the scene's frame (+Z up).
///
/// A compact model of its own; stored scenes were lit with its constants and the order of its
/// steps. Nothing is checked or signalled. Has no state.
class VEXA_EXPORT uxs_heliodon_tool {
 public:
  struct place {
    std::int32_t longitude;  ///< minutes of arc, east positive
    std::int32_t latitude;   ///< minutes of arc, north positive
    std::int32_t timezone;   ///< standard time minus universal time, in minutes
    float north;             ///< angle of the scene's north, in degrees
  };

  /// A date of the Gregorian calendar and the time that a local clock shows.
  struct date {
    std::uint32_t year;
    std::uint32_t month;  ///< 1 to 12; a higher one has the day number of December
    std::uint32_t day;    ///< from 1
    std::uint32_t hour;
    std::uint32_t minute;
    bool summertime;  ///< the clock is an hour ahead; counts from April to October only
  };

  /// The sun over a place at a date.
  /// Required behaviour: the day number leaves January out of the sum of the months and counts a
  /// leap day from February on.
  static uxs_generic_vec3<float> get_sun_direction(const place& p, const date& d);

  /// (-cos a sin b, sin a sin b, cos b) for the azimuth angle a and the zenith angle b in radians.
  static uxs_generic_vec3<float> get_sun_direction(double azimuthAngle, double zenithAngle);
};

}  // namespace UXS
