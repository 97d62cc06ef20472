#pragma once

#include <climits>

#include "vexa/Export.h"
#include "vexa/math/conversion.h"
#include "vexa/math/uxs_color.h"
#include "vexa/math/uxs_generic_vec3.h"

/// One value of a timed curve, without an object to keep. All take
///   (start time, end time, start value, end value, time)
/// and throw what the constructor and valueAt of the curve throw: std::runtime_error when the start
/// is not before the end, or the time is outside of the two. They allocate nothing.
namespace Norvel::Vexa {

/// A straight line; see XTLinearInterpolation. Long is `long` where that has 64 bits.
VEXA_EXPORT double Lerp(double t0, double t1, double a, double b, double t);
VEXA_EXPORT float Lerp(double t0, double t1, float a, float b, double t);
VEXA_EXPORT int Lerp(double t0, double t1, int a, int b, double t);
VEXA_EXPORT Long Lerp(double t0, double t1, Long a, Long b, double t);
VEXA_EXPORT UXS::uxs_generic_vec3<float> Lerp(double t0, double t1, UXS::uxs_generic_vec3<float> a,
                                              UXS::uxs_generic_vec3<float> b, double t);
VEXA_EXPORT UXS::uxs_color Lerp(double t0, double t1, UXS::uxs_color a, UXS::uxs_color b, double t);
#if LONG_MAX == INT_MAX
/// Computed in 64 bits, then cut to the low 32.
inline long Lerp(double t0, double t1, long a, long b, double t) {
  return long(wrapToInt(Lerp(t0, t1, Long(a), Long(b), t)));
}
#endif

/// Slow at both ends; see XTSinusInterpolation.
VEXA_EXPORT double Sinerp(double t0, double t1, double a, double b, double t);
VEXA_EXPORT float Sinerp(double t0, double t1, float a, float b, double t);
VEXA_EXPORT int Sinerp(double t0, double t1, int a, int b, double t);
VEXA_EXPORT UXS::uxs_generic_vec3<float> Sinerp(double t0, double t1,
                                                UXS::uxs_generic_vec3<float> a,
                                                UXS::uxs_generic_vec3<float> b, double t);
VEXA_EXPORT UXS::uxs_color Sinerp(double t0, double t1, UXS::uxs_color a, UXS::uxs_color b,
                                  double t);

/// Slow away from the start; see XTSquareInterpolation.
VEXA_EXPORT double Sqerp(double t0, double t1, double a, double b, double t);
VEXA_EXPORT float Sqerp(double t0, double t1, float a, float b, double t);
VEXA_EXPORT int Sqerp(double t0, double t1, int a, int b, double t);
VEXA_EXPORT UXS::uxs_generic_vec3<float> Sqerp(double t0, double t1, UXS::uxs_generic_vec3<float> a,
                                               UXS::uxs_generic_vec3<float> b, double t);
VEXA_EXPORT UXS::uxs_color Sqerp(double t0, double t1, UXS::uxs_color a, UXS::uxs_color b,
                                 double t);

/// Slow into the end; see XTOneMinusSquareInterpolation.
VEXA_EXPORT double OneMinSqerp(double t0, double t1, double a, double b, double t);
VEXA_EXPORT float OneMinSqerp(double t0, double t1, float a, float b, double t);
VEXA_EXPORT int OneMinSqerp(double t0, double t1, int a, int b, double t);
VEXA_EXPORT UXS::uxs_generic_vec3<float> OneMinSqerp(double t0, double t1,
                                                     UXS::uxs_generic_vec3<float> a,
                                                     UXS::uxs_generic_vec3<float> b, double t);
VEXA_EXPORT UXS::uxs_color OneMinSqerp(double t0, double t1, UXS::uxs_color a, UXS::uxs_color b,
                                       double t);

}  // namespace Norvel::Vexa
