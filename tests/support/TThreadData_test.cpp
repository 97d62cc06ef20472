#include "vexa/support/TThreadData.h"

#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <vector>

#include "tests/helpers/compare.h"
#include "tests/helpers/recording_reporter.h"
#include "vexa/support/XStPushReporter.h"

namespace {

using namespace Norvel;
using vexa::tests::whatOf;

/// The key that the next creation gives: the system hands out the lowest free one.
pthread_key_t nextKey() {
  pthread_key_t key;
  EXPECT_EQ(pthread_key_create(&key, nullptr), 0);
  pthread_key_delete(key);
  return key;
}

TEST(TThreadData, KeepsAValuePerThread) {
  TThreadData<int> number;
  number.SetValue(-5);
  std::thread([&] {
    EXPECT_EQ(number.GetValue(), 0);
    number.SetValue(8);
  }).join();
  EXPECT_EQ(number.GetValue(), -5);
}

TEST(TThreadData, ThrowsWhenAllKeysAreTakenAndWorksAgainAfterwards) {
  std::vector<std::unique_ptr<CBaseThreadData>> keys;
  const auto takeAll = [&] {
    for (;;) keys.push_back(std::make_unique<CBaseThreadData>());
  };
  EXPECT_EQ(whatOf(takeAll),
            "CBaseThreadData::CBaseThreadData - Can't get thread data (assertion failed)");
  const std::size_t all = keys.size();
  keys.clear();
  EXPECT_THROW(takeAll(), std::runtime_error);
  EXPECT_EQ(keys.size(), all);
}

// Somebody else deletes our key: both operations that can fail then do.
TEST(TThreadData, TellsWhenItsKeyIsGone) {
  vexa::tests::RecordingReporter reporter;
  const XStPushReporter scope(&reporter, false);
  const pthread_key_t key = nextKey();
  {
    CBaseThreadData data;
    pthread_key_delete(key);
    EXPECT_EQ(whatOf([&] { data.SetValue(&key); }), "CBaseThreadData::SetValue (assertion failed)");
  }
  EXPECT_EQ(reporter.lines,
            std::vector<std::string>{
                "0 CBaseThreadData::~CBaseThreadData - Error while deleting a thread data"});
}

}  // namespace
