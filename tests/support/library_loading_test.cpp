// Loads and unloads the library as a host's plug-in does; this program does not link it.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <vector>

namespace {

std::vector<pthread_key_t> takeAllKeys() {
  std::vector<pthread_key_t> keys;
  pthread_key_t key;
  while (pthread_key_create(&key, nullptr) == 0) keys.push_back(key);
  return keys;
}

void giveBack(const std::vector<pthread_key_t>& keys) {
  for (const pthread_key_t key : keys) pthread_key_delete(key);
}

/// Result of the plug-in's function; -1 when it could not be loaded.
int loadAndReport() {
  void* const module = dlopen(VEXA_TEST_MODULE, RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) return ADD_FAILURE() << dlerror(), -1;
  const auto report = reinterpret_cast<int (*)()>(dlsym(module, "reportTwice"));
  const int result = report();
  EXPECT_EQ(dlclose(module), 0);
  return result;
}

TEST(LibraryLoading, WithoutAFreeKeyEverythingGoesToTheDefaultReporter) {
  EXPECT_EQ(loadAndReport(), 2);
  const std::vector<pthread_key_t> keys = takeAllKeys();
  EXPECT_EQ(loadAndReport(), 20);
  giveBack(keys);
}

TEST(LibraryLoading, ComesAndGoesWithoutLeakingAKey) {
  const std::vector<pthread_key_t> before = takeAllKeys();
  giveBack(before);
  for (int i = 0; i < 2000; ++i) ASSERT_EQ(loadAndReport(), 2);
  EXPECT_EQ(dlopen(VEXA_TEST_LIBRARY, RTLD_NOW | RTLD_NOLOAD), nullptr) << "never unloaded";
  const std::vector<pthread_key_t> after = takeAllKeys();
  giveBack(after);
  EXPECT_EQ(after.size(), before.size());
}

}  // namespace
