#include "vexa/support/XStPushReporter.h"

#include "vexa/support/XCReporter.h"

namespace Norvel {

// The previous reporters are kept in the object, so that nested objects restore them in reverse
// order.
XStPushReporter::XStPushReporter(XIReporter* reporter, bool alsoDefault)
    : mAlsoDefault(alsoDefault) {
  if (XCReporter::tdReporter != nullptr) {
    mPreviousReporter = XCReporter::tdReporter->GetValue();
    XCReporter::tdReporter->SetValue(reporter);
  }
  if (mAlsoDefault) {
    mPreviousDefault = XCReporter::defaultReporter;
    XCReporter::defaultReporter = reporter;
  }
}

XStPushReporter::~XStPushReporter() {
  if (XCReporter::tdReporter != nullptr) XCReporter::tdReporter->SetValue(mPreviousReporter);
  if (mAlsoDefault) XCReporter::defaultReporter = mPreviousDefault;
}

}  // namespace Norvel
