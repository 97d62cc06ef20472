#include "tests/helpers/recording_reporter.h"
#include "vexa/support/XCReporter.h"
#include "vexa/support/XStPushReporter.h"

// A host's plug-in, loaded by library_loading_test.cpp: brings the library in and uses it.
// Gives the number of messages that its two reporters receive, the default one's times 10.
extern "C" __attribute__((visibility("default"))) int reportTwice() {
  vexa::tests::RecordingReporter own, fallback;
  {
    const Norvel::XStPushReporter everybody(&fallback, true);
    const Norvel::XStPushReporter thisThread(&own, false);
    Norvel::XCReporter::Warning("one");
    Norvel::XCReporter::Warning("two");
  }
  return static_cast<int>(own.lines.size() + 10 * fallback.lines.size());
}
