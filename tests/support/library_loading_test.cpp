// Loads and unloads the library as a host's plug-in does; this program does not link it.
#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <pthread.h>
#include <string>
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

long openDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

long residentPages() {
  long all = 0, resident = 0;
  std::ifstream("/proc/self/statm") >> all >> resident;
  return resident;
}

// VEXA_ROUNDS asks for more rounds than those of a few seconds.
TEST(LibraryLoading, ComesAndGoesAndLeavesNothing) {
  const char* const wanted = std::getenv("VEXA_ROUNDS");
  const int rounds = wanted == nullptr ? 2000 : std::atoi(wanted);
  const std::vector<pthread_key_t> before = takeAllKeys();
  giveBack(before);
  for (int i = 0; i < 100; ++i) ASSERT_EQ(loadAndReport(), 2);
  const long descriptors = openDescriptors(), pages = residentPages();
  for (int i = 0; i < rounds; ++i) ASSERT_EQ(loadAndReport(), 2);
  EXPECT_EQ(openDescriptors(), descriptors);
  RecordProperty("pages more", std::to_string(residentPages() - pages));
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
  EXPECT_LT(residentPages() - pages, 250);  // a megabyte
#endif
  EXPECT_EQ(dlopen(VEXA_TEST_LIBRARY, RTLD_NOW | RTLD_NOLOAD), nullptr) << "never unloaded";
  const std::vector<pthread_key_t> after = takeAllKeys();
  giveBack(after);
  EXPECT_EQ(after.size(), before.size());
}

}  // namespace
