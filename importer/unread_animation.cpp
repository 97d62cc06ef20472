#include "importer/unread_animation.h"

#include <cstdint>
#include <cstring>
#include <fstream>
#include <string_view>

namespace vexa::importer {
namespace {

// How a file begins, and where it counts its frames.
struct Format {
  std::string_view mStart;
  std::size_t mFramesAt;
};
constexpr Format kVertexFormats[] = {{"IDP2", 40}, {"IDP3", 76}, {"IDPC", 76}, {"IDPO", 68}};
constexpr Format kIqm{"INTERQUAKEMODEL", 92};
constexpr std::size_t kIqmJointsAt = 68, kHeaderBytes = 96;

}  // namespace

std::string unreadAnimation(const std::string& file) {
  std::string header(kHeaderBytes, '\0');
  if (!std::ifstream(file, std::ios::binary).read(header.data(), kHeaderBytes)) return "";
  const auto numberAt = [&header](std::size_t at) {
    std::uint32_t number;
    std::memcpy(&number, header.data() + at, sizeof(number));
    return number;
  };
  const auto isMoving = [&](const Format& format) {
    return header.compare(0, format.mStart.size(), format.mStart) == 0 &&
           numberAt(format.mFramesAt) > 1;
  };
  for (const Format& format : kVertexFormats) {
    if (isMoving(format)) return "it has vertex animation, not supported";
  }
  if (!isMoving(kIqm)) return "";
  return numberAt(kIqmJointsAt) > 0 ? "it has animation in IQM form, not supported"
                                    : "it has vertex animation, not supported";
}

}  // namespace vexa::importer
