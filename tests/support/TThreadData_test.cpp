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

TEST(TThreadData, KeepsAValuePerThread) {
  TThreadData<int> number;
  number.SetValue(-5);
  std::thread([&] {
    EXPECT_EQ(number.GetValue(), 0);
    number.SetValue(8);
  }).join();
  EXPECT_EQ(number.GetValue(), -5);
}

TEST(TThreadData, ThrowsWhenAllKeysAreTaken) {
  std::vector<std::unique_ptr<CBaseThreadData>> keys;
  EXPECT_EQ(whatOf([&] {
              for (;;) keys.push_back(std::make_unique<CBaseThreadData>());
            }),
            "CBaseThreadData::CBaseThreadData - Can't get thread data (assertion failed)");
  keys.clear();
  EXPECT_NO_THROW(CBaseThreadData());
}

// Somebody else deletes our key: both operations that can fail then do.
TEST(TThreadData, TellsWhenItsKeyIsGone) {
  vexa::tests::RecordingReporter reporter;
  const XStPushReporter scope(&reporter, false);
  pthread_key_t key;  // the system hands out the lowest free one, so the next is the same
  ASSERT_EQ(pthread_key_create(&key, nullptr), 0);
  pthread_key_delete(key);
  {
    CBaseThreadData data;
    pthread_key_delete(key);
    EXPECT_EQ(whatOf([&] { data.SetValue(&key); }), "CBaseThreadData::SetValue (assertion failed)");
  }
  ASSERT_EQ(reporter.lines.size(), 1u);
  EXPECT_EQ(reporter.lines[0],
            "0 CBaseThreadData::~CBaseThreadData - Error while deleting a thread data");
}

}  // namespace
