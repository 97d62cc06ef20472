// Feeds a fuzz target every file of a folder: the seeds, and what the fuzzer once found.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// A target with a mutator of its own refers to the fuzzer's; nothing is mutated here.
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* /*data*/, std::size_t size,
                                        std::size_t /*largest*/) {
  return size;
}

int main(int count, char** arguments) {
  if (count != 2) return std::fprintf(stderr, "usage: %s FOLDER\n", arguments[0]), 2;
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(arguments[1])) {
    std::ifstream file(entry.path(), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    // Before the call: the last name on the screen is that of the file that crashed.
    std::printf("%s\n", entry.path().filename().c_str());
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    ++files;
  }
  // An empty folder is a wrong path, which must not look like success.
  return files > 0 ? 0 : 1;
}
