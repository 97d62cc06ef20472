// Messages: every thread may have a reporter of its own; one reporter serves all others.
#include <cstdio>
#include <string>
#include <thread>
#include <utility>

#include "vexa/vexa.h"

using namespace Norvel;

// A host's log: keeps its lines together and prints them at the end.
class Log : public XIReporter {
 public:
  explicit Log(std::string name) : mName(std::move(name)) {}
  ~Log() override { std::printf("%s\n%s", mName.c_str(), mLines.c_str()); }

  void ReportMsg(EMsgType type, const char* text) override {
    mLines += std::string("  ") + (type == kMsgError ? "error: " : "") + text + "\n";
  }

 private:
  std::string mName, mLines;
};

// A job that looks for a file and reports to whoever listens on its thread.
void lookFor(const char* url) {
  std::string error;
  const CChemin path(CChemin::kTypeURL, url);
  if (path.FichierExiste(&error)) {
    XCReporter::Printf("%s is there", path.DonneNom());
  } else {
    XCReporter::Error("%s: %s", path.DonneNom(), error.c_str());
  }
}

int main() {
  Log everybody("the default reporter");
  // The second argument says: for all threads that have none of their own.
  const XStPushReporter fallback(&everybody, true);
  XCReporter::SetTraceInLog(true);

  std::thread worker([] {
    Log own("the worker's reporter");
    const XStPushReporter scope(&own, false);
    XCReporter::TraceInLog("the worker starts");
    lookFor("file:///no%20such/walk.amo?take=2");
  });
  worker.join();
  std::thread([] { lookFor("file:///usr"); }).join();  // has none of its own

  XCReporter::StartBenchmark("paths", "climbing");
  CChemin path("/a/b/c/d");
  while (*path.c_str() != '\0') path = path.Remonte();
  XCReporter::StopBenchmark("paths");
  XCReporter::FlushBenchmark("paths", true);
}
