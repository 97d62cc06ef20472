#include "vexa/support/XCReporter.h"

#include <cerrno>
#include <cstdio>
#include <gtest/gtest.h>
#include <pthread.h>
#include <string>
#include <thread>

#include "tests/helpers/recording_reporter.h"
#include "vexa/support/XStPushReporter.h"

namespace {

using namespace Norvel;
using vexa::tests::RecordingReporter;
using Lines = std::vector<std::string>;

template <class Call>
Lines reportedBy(Call call) {
  RecordingReporter reporter;
  const XStPushReporter scope(&reporter, false);
  call();
  return reporter.lines;
}

TEST(XCReporter, PrintsWhenThereIsNoReporterAndTheTypeHasAName) {
  testing::internal::CaptureStdout();
  for (int type = -1; type <= 7; ++type) {
    XCReporter::Message(static_cast<XIReporter::EMsgType>(type), "%d", type);
  }
  std::fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "XCReporter: Error(\"0\")\nXCReporter: Warning(\"1\")\nXCReporter: Message(\"2\")\n"
            "XCReporter: Trace(\"3\")\nXCReporter: Bench(\"4\")\nXCReporter: Memory(\"5\")\n"
            "XCReporter: NoMessage(\"6\")\n");
}

TEST(XCReporter, HandsOnTypeAndTextAndCutsOnlyFormattedTexts) {
  const std::string text(5000, 'x');
  const char* const t = text.c_str();
  const auto type = static_cast<XIReporter::EMsgType>(7);
  const Lines lines = reportedBy([=] {
    XCReporter::Error("%s", t);
    XCReporter::Warning("%s", t);
    XCReporter::Printf("%%");
    XCReporter::Message(type, "%s", t);
    XCReporter::Message(type, nullptr);
    XCReporter::SendMsg2Reporter(type, t);
    XCReporter::SendMsg2Reporter(type, nullptr);
  });
  EXPECT_EQ(lines, (Lines{"0 " + text.substr(0, 2047), "1 " + text.substr(0, 2047), "2 %",
                          "7 " + text.substr(0, 4095), "7 " + text, "7 "}));
}

TEST(XCReporter, ModesSwitchTheirOwnKindAndReportEverySwitch) {
  const auto sendAfterSwitch = [](bool on) {
    XCReporter::SetTraceInLog(on);
    XCReporter::SetBenchInLog(on);
    XCReporter::SetMemoryInLog(on);
    EXPECT_TRUE(XCReporter::GetTraceInLog() == on && XCReporter::GetMemoryInLog() == on);
    XCReporter::TraceInLog("t %d");
    XCReporter::BenchInLog("b %d", 1);
    XCReporter::MemoryInLog("m %d", 2);
  };
  Lines expected{"3 Trace mode is enabled",
                 "4 Bench mode is enabled",
                 "5 Memory mode is enabled",
                 "3 t %d",
                 "4 b 1",
                 "5 m 2"};
  EXPECT_EQ(reportedBy([&] { sendAfterSwitch(true); }), expected);
  expected = {"3 Trace mode is disabled", "4 Bench mode is disabled", "5 Memory mode is disabled"};
  for (int i = 0; i < 2; ++i) EXPECT_EQ(reportedBy([&] { sendAfterSwitch(false); }), expected);
}

TEST(XStPushReporter, ScopesNestPerThreadAndMayServeTheOthers) {
  RecordingReporter before, first, second;
  const auto fromBoth = [](const char* text) {
    XCReporter::Printf("%s", text);
    std::thread([text] { XCReporter::Printf("other %s", text); }).join();
  };
  XCReporter::defaultReporter = &before;
  {
    const XStPushReporter a(&first, false);
    {
      const XStPushReporter b(&second, true);
      fromBoth("inner");
    }
    fromBoth("outer");
  }
  fromBoth("none");
  XCReporter::defaultReporter = nullptr;
  EXPECT_EQ(second.lines, (Lines{"2 inner", "2 other inner"}));
  EXPECT_EQ(first.lines, (Lines{"2 outer"}));
  EXPECT_EQ(before.lines, (Lines{"2 other outer", "2 none", "2 other none"}));
}

/// A host's reporter that does something of its own.
template <class Act>
struct ActingReporter : RecordingReporter {
  explicit ActingReporter(Act act) : mAct(act) {}
  void ReportMsg(EMsgType type, const char* text) override {
    RecordingReporter::ReportMsg(type, text);
    mAct();
  }
  Act mAct;
};

TEST(XCReporter, WhatAReporterThrowsStaysInside) {
  ActingReporter throwing([] { throw "no disk"; });
  const XStPushReporter scope(&throwing, false);
  EXPECT_NO_THROW(XCReporter::Error("lost"));
}

TEST(XCReporter, AThreadMayBeCancelledWhileItReports) {
  ActingReporter cancelling([] {
    pthread_cancel(pthread_self());
    pthread_testcancel();
  });
  XCReporter::defaultReporter = &cancelling;
  pthread_t thread;
  const auto body = [](void*) -> void* { return XCReporter::Error("the last one"), nullptr; };
  ASSERT_EQ(pthread_create(&thread, nullptr, body, nullptr), 0);
  void* result = nullptr;
  pthread_join(thread, &result);
  XCReporter::defaultReporter = nullptr;
  EXPECT_EQ(result, PTHREAD_CANCELED);
}

TEST(XCReporter, NamesTheLastSystemError) {
  int code = 7;
  errno = ENOENT;
  EXPECT_EQ(XCReporter::GetLastSystemErrorEnglish(XIReporter::kMsgError, kSystemErrno, &code),
            "ERRNO [2] :No such file or directory");
  EXPECT_EQ(code, 2);
  EXPECT_EQ(XCReporter::GetLastSystemErrorEnglish(XIReporter::kMsgError, kSystemNone, &code), "");
  EXPECT_EQ(code, 0);
}

TEST(XCReporter, BenchmarksSumUpAndPairLabelsWithTimesByIndex) {
  const Lines lines = reportedBy([] {
    XCReporter::StopBenchmark("load");
    for (const char* label : {"", "second", "third"}) {
      XCReporter::StartBenchmark("load", label);
      XCReporter::StopBenchmark("load");
    }
    XCReporter::StartBenchmark("load", nullptr);  // still running: counts as its time of day
    for (const bool erases : {false, true, true}) XCReporter::FlushBenchmark("load", erases);
  });
  ASSERT_EQ(lines.size(), 6u);
  EXPECT_GT(std::stod(lines[0].substr(lines[0].find("load takes ") + 11)), 1.7e9);
  EXPECT_NE(lines[0].find(" seconds in 4 calls"), std::string::npos);
  const std::string second = "2       for second : ", third = "2       for third : ";
  EXPECT_EQ(lines[1].substr(0, second.size()), second);
  EXPECT_EQ(lines[2].substr(0, third.size()), third);
  EXPECT_LT(std::stod(lines[1].substr(second.size())), 60);  // not a time of day
}

TEST(XCReporter, AReporterMayFlushTheBenchmarkThatItIsToldOf) {
  ActingReporter flushing([] { XCReporter::FlushBenchmark("name", true); });
  const XStPushReporter scope(&flushing, false);
  XCReporter::StartBenchmark("name", "one");
  XCReporter::FlushBenchmark("name", true);
  EXPECT_EQ(flushing.lines.size(), 2u);
}

}  // namespace
