// What a host does first: include everything, call a function, derive from an interface, catch
// what the library throws, and let the library call back.
#include <cstdio>
#include <stdexcept>
#include <string>

#include "vexa/vexa.h"

namespace {

class CountingReporter final : public Norvel::XIReporter {
 public:
  void ReportMsg(EMsgType, const char*) override { ++mCount; }
  int mCount = 0;
};

bool catchesWhatTheLibraryThrows() {
  try {
    Norvel::Vexa::ux_matrix44<double> flat;
    flat.scale(1, 0, 1);
    flat.inverse();
  } catch (const std::overflow_error& error) {
    return std::string(error.what()) == "ux_matrix44<Type>::invert() - Matrix cannot be inverted";
  }
  return false;
}

bool isCalledBack() {
  CountingReporter reporter;
  const Norvel::XStPushReporter scope(&reporter, false);
  Norvel::XCReporter::Warning("x=%d", 3);
  return reporter.mCount == 1;
}

}  // namespace

int main() {
  const double middle = Norvel::Vexa::Lerp(0.0, 10.0, 0.0, 10.0, 5.0);
  Norvel::Vexa::XIAnimationMgr* manager = Norvel::Vexa::XIAnimationMgr::Create();
  const bool works =
      middle == 5 && manager != nullptr && catchesWhatTheLibraryThrows() && isCalledBack();
  if (manager != nullptr) manager->Delete();
  std::puts(works ? "client: fine" : "client: broken");
  return works ? 0 : 1;
}
