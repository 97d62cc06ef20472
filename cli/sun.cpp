#include <cmath>
#include <cstdio>
#include <ctime>
#include <memory>
#include <stdexcept>
#include <string>

#include "cli/commands.h"
#include "formats/calendar.h"
#include "vexa/tools/uxs_heliodon_tool.h"

namespace vexa::cli {
namespace {

struct Options {
  double latitude = 0;
  double longitude = 0;
  int timezone = 0;
  double north = 0;
  std::string date;
  bool summertime = false;
};

UXS::uxs_heliodon_tool::date clockDate(const Options& options) {
  const auto seconds = formats::secondsOfDate(options.date);
  if (!seconds) {
    throw std::runtime_error("\"" + options.date + "\": expected a date such as 2024-06-21T12:00");
  }
  const std::time_t time = *seconds;
  std::tm fields{};
  // The text is a local clock, which was read as if it were UTC: this only takes it apart again.
  // The time zone comes with the place.
  gmtime_r(&time, &fields);
  const auto number = [](int value) { return static_cast<std::uint32_t>(value); };
  return {number(fields.tm_year + 1900), number(fields.tm_mon + 1), number(fields.tm_mday),
          number(fields.tm_hour),        number(fields.tm_min),     options.summertime};
}

void sun(const Options& options) {
  // A range check of the arguments lets NaN pass.
  if (std::isnan(options.latitude + options.longitude + options.north)) {
    throw CLI::ValidationError("an angle is no number");
  }
  // The tool takes places in whole minutes of arc, about two kilometres.
  const auto minutes = [](double degrees) { return static_cast<int>(std::lround(degrees * 60)); };
  const UXS::uxs_heliodon_tool::place place{minutes(options.longitude), minutes(options.latitude),
                                            options.timezone, static_cast<float>(options.north)};
  const auto d = UXS::uxs_heliodon_tool::get_sun_direction(place, clockDate(options));
  constexpr double kDegreesPerRadian = 180 / 3.141592653589793;
  std::printf("direction to the sun  %.6f %.6f %.6f\n", double(d.x), double(d.y), double(d.z));
  std::printf("altitude              %.2f degrees\n",
              // A single-precision unit vector may be a little longer than 1.
              std::asin(std::fmin(1, std::fmax(-1, double(d.z)))) * kDegreesPerRadian);
}

}  // namespace

void addSun(CLI::App& app) {
  CLI::App* command = app.add_subcommand("sun", "Print the direction to the sun, +Z up");
  const auto options = std::make_shared<Options>();
  command->add_option("--latitude", options->latitude, "degrees, north positive")
      ->required()
      ->check(CLI::Range(-90.0, 90.0));
  command->add_option("--longitude", options->longitude, "degrees, east positive")
      ->required()
      ->check(CLI::Range(-180.0, 180.0));
  command->add_option("--timezone", options->timezone, "minutes ahead of universal time")
      ->check(CLI::Range(-1440, 1440));
  command->add_option("--date", options->date, "the local clock: 2024-06-21T12:00")->required();
  command->add_flag("--summertime", options->summertime, "the clock is on summer time");
  command->add_option("--north", options->north, "angle of the scene's north, degrees")
      ->check(CLI::Range(-360.0, 360.0));
  command->footer(
      "Example: vexa sun --latitude 48.85 --longitude 2.35 --timezone 60 --summertime "
      "--date 2024-06-21T14:00");
  command->callback([options] { sun(*options); });
}

}  // namespace vexa::cli
