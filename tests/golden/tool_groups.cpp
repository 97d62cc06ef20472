// Render options, the sun, cameras and panoramas.
#include <cmath>

#include "tests/golden/Group.h"

namespace vexa::tests {

namespace {

using V3 = UXS::uxs_generic_vec3<float>;
using Converter = UXS::uxs_final_options_converter;

constexpr int kUntouched = 777;

// Every pair of presets, every level and every value near one, of each engine and beyond.
void runOptions(Recorder& r) {
  const Converter converter;
  for (std::uint32_t e = 0; e < 5; ++e) {
    const auto engine = static_cast<Converter::engine>(e);
    for (std::uint32_t a = 0; a < 6; ++a) {
      for (std::uint32_t s = 0; s < 12; ++s) {
        r.begin();
        int levels[5] = {kUntouched, kUntouched, kUntouched, kUntouched, kUntouched};
        r.in("engine", e).in("ambiance", a).in("settings", s);
        converter.presets_to_options(engine, static_cast<Converter::ambiance>(a),
                                     static_cast<Converter::settings>(s), levels);
        r.out(levels[0], levels[1], levels[2], levels[3], levels[4]);
        Converter::ambiance ambiance{};
        Converter::settings settings{};
        converter.options_to_presets(engine, levels, ambiance, settings);
        r.out(ambiance, settings);
        ++levels[s % 5];
        converter.options_to_presets(engine, levels, ambiance, settings);
        r.out(ambiance, settings);
      }
    }
    for (int level = -20; level < 30; ++level) {
      r.begin();
      int levels[5] = {level, level, level, level, level};
      r.in("engine", e).in("level", level);
      converter.decode_options(engine, levels);
      r.out(levels[0], levels[1], levels[2], levels[3], levels[4]);
    }
    for (std::uint32_t option = 0; option < 18; ++option) {
      for (const int value : {-2147483647 - 1, -1, 2147483647, 1000000, 5000}) {
        r.begin();
        r.in("engine", e).in("option", option).in("value", value);
        r.out(converter.encode_option(engine, static_cast<Converter::options>(option), value));
      }
      r.begin();
      r.in("engine", e).in("option", option).in("values", "0 to 599");
      for (int value = 0; value < 600; ++value) {
        r.out(converter.encode_option(engine, static_cast<Converter::options>(option), value));
      }
    }
  }
}

V3 drawDirection(Numbers& n) {
  if (n.oneIn(3)) {  // at and around the limit where +Y takes the place of +Z
    const float c[] = {0.98f, std::nextafter(0.98f, 0.0f), std::nextafter(0.98f, 1.0f), -0.98f};
    const float z = n.oneOf(c);
    return V3(std::sqrt(1 - z * z), 0, z) * (n.oneIn(2) ? 1.0f : 3.0f);
  }
  if (n.oneIn(3)) return n.triple<V3>([&] { return float(n.between(-1, 1)); });
  return n.triple<V3>([&] { return n.any<float>(); });
}

void runViews(Recorder& r, bool rolls) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 3000; ++i) {
    r.begin();
    const V3 dir = drawDirection(n);
    V3 position = drawDirection(n), target = n.oneIn(3) ? position : drawDirection(n);
    const float steps[] = {0, 1e-7f, 1.2e-7f, 1.3e-7f, -1.2e-7f, 2.5e-7f};
    const float step = n.oneOf(steps);
    if (n.oneIn(2)) target.x += n.oneIn(2) ? step : step * position.x;
    const float angles[] = {90, 180, 45, -30, 360, 1e-3f};
    const float roll = !rolls ? 0 : n.oneIn(3) ? n.any<float>() : n.oneOf(angles);
    if (n.oneIn(20)) {  // as far apart as two places may be that count as one
      const bool isBehind = n.oneIn(2);
      position.x = 2 - (isBehind ? 0 : 2.3841858e-07f);
      target = position;
      target.x = 2 - (isBehind ? 2.3841858e-07f : 0);
    }
    r.in("dir", dir).in("position", position).in("target", target).in("roll", roll);
    V3 up, right;
    UXS::get_up_right_vectors(dir, roll, up, right);
    r.out(up, right, UXS::uxs_camera_tool::get_upvector(position, target, roll));
  }
}

void runPanoramas(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 1000; ++i) {
    r.begin();
    const V3 dir = drawDirection(n), given = drawDirection(n);
    const bool hasUp = n.oneIn(2);
    r.in("dir", dir).in("up", given).in("given", hasUp);
    for (std::uint32_t face = 0; face < 8; ++face) {
      V3 view(7, 7, 7), up = view, right = view;
      UXS::get_panorama_vectors(dir, hasUp ? &given : nullptr,
                                static_cast<UXS::uxs_panorama_face>(face), view, up, right);
      r.out(view, up, right);
    }
  }
}

void runSun(Recorder& r) {
  Numbers& n = r.numbers();
  using Sun = UXS::uxs_heliodon_tool;
  for (int i = 0; i < 5000; ++i) {
    r.begin();
    const int zone = n.oneIn(2) ? 0 : 30 * n.between(-24, 28);
    Sun::place p{};
    p.longitude = n.oneIn(3) ? 15 * zone : n.between(-10800, 10800);
    p.latitude = n.oneIn(5) ? n.between(-1, 1) * 5400 : n.between(-5400, 5400);
    p.timezone = zone;
    p.north = n.oneIn(3) ? 0 : n.oneIn(2) ? float(90 * n.between(-2, 4)) : n.plain<float>();
    Sun::date d{};
    const std::uint32_t years[] = {1600, 1900, 2000, 2023, 2024, 2100};
    d.year = n.oneOf(years);
    d.month = n.oneIn(20) ? n.below(15) : n.below(12) + 1;
    d.day = n.below(31) + 1;
    d.hour = n.oneIn(3) ? 12 * n.below(2) : n.below(24);
    d.minute = n.oneIn(3) ? 0 : n.below(60);
    d.summertime = n.oneIn(2);
    r.in("longitude", p.longitude).in("latitude", p.latitude).in("timezone", p.timezone);
    r.in("north", p.north).in("year", d.year).in("month", d.month).in("day", d.day);
    r.in("hour", d.hour).in("minute", d.minute).in("summertime", d.summertime);
    r.out(Sun::get_sun_direction(p, d));
    const double azimuth = n.plain<double>(), zenith = n.plain<double>() / 3;
    r.out(Sun::get_sun_direction(azimuth, zenith));
  }
}

// Around noon, where the azimuth turns over: every day of a year, every minute of arc.
void runNoons(Recorder& r) {
  for (std::uint32_t day = 0; day < 360; ++day) {
    r.begin();
    const std::uint32_t month = day / 30 + 1, date = day % 30 + 1;
    r.in("month", month).in("day", date);
    for (int longitude = -260; longitude <= 260; ++longitude) {
      r.out(UXS::uxs_heliodon_tool::get_sun_direction({longitude, 2931, 0, 0},
                                                      {2023, month, date, 12, 0, false}));
    }
  }
}

}  // namespace

void addToolGroups(Groups& out) {
  const auto add = [&](const char* name, Kind kind, auto run) { out.push_back({name, kind, run}); };
  add("render_options", Kind::kArithmetic, runOptions);
  add("cameras", Kind::kArithmetic, [](Recorder& r) { runViews(r, false); });
  add("cameras_rolled", Kind::kLibm, [](Recorder& r) { runViews(r, true); });
  add("panoramas", Kind::kArithmetic, runPanoramas);
  add("sun", Kind::kLibm, runSun);
  add("sun_at_noon", Kind::kLibm, runNoons);
}

}  // namespace vexa::tests
