#include "scene/scene_csv.h"

#include <initializer_list>

#include "formats/calendar.h"
#include "formats/number_text.h"
#include "scene/value_parts.h"

namespace vexa::scene {
namespace {

// A field in quotes where RFC 4180 asks for them; a quote inside is doubled. Names of values come
// from the scene file and may hold anything.
std::string field(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
  return quoted + "\"";
}

}  // namespace

std::string shortestNumber(double value) { return formats::shortestText(value); }

std::string valuesHeader(const refhost::Scene& scene) {
  // "colour.r", "colour.g", ...: a value that is one number has a plain name.
  std::string line = "frame";
  for (const refhost::Property& value : scene.mProperties) {
    for (const std::string& part : partNames(value)) {
      line += "," + field(part.empty() ? value.mName : value.mName + "." + part);
    }
  }
  return line + "\n";
}

std::string valuesRow(const ScenePlayer& player, int frame) {
  std::string line = std::to_string(frame);
  const auto& values = player.scene().mProperties;
  for (std::size_t i = 0; i < values.size(); ++i) {
    for (const double part : parts(values[i], player.samples()[i])) {
      // Dates are texts for people and spreadsheets; everything else reads back as the same number.
      line += "," + (isDate(values[i]) ? formats::dateOfSeconds(static_cast<std::int64_t>(part))
                                       : shortestNumber(part));
    }
  }
  return line + "\n";
}

std::string placementsHeader() {
  return "frame,instance,take,takeFrame,x,y,z,rotation,directionX,directionY,directionZ,"
         "anchorX,anchorY,anchorZ\n";
}

std::string placementsRows(const ScenePlayer& player, int frame) {
  std::string lines;
  for (const refhost::Instance& instance : player.scene().mInstances.mElements) {
    // As a host stores them: position and direction are in the space of the parent.
    lines += std::to_string(frame) + "," + field(instance.mName) + "," +
             std::to_string(instance.mState.mTakeIndex) + "," +
             std::to_string(instance.mState.mCurrentFrame);
    const auto& p = instance.mPosition;
    const auto& d = instance.mDirection;
    const auto& a = instance.mAnchor;
    for (const double number : {p.x, p.y, p.z, instance.mRotation, d.x, d.y, d.z, a.x, a.y, a.z}) {
      lines += "," + shortestNumber(number);
    }
    lines += "\n";
  }
  return lines;
}

}  // namespace vexa::scene
