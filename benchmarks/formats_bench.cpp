#include <benchmark/benchmark.h>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "benchmarks/torus.h"
#include "formats/obj.h"

namespace vexa::benchmarks {

namespace {

const std::string& path() {
  static const std::string sPath = std::filesystem::temp_directory_path() / "vexa_bench.obj";
  return sPath;
}

const formats::ObjModel& model() {
  static const formats::ObjModel sModel =
      formats::objOf(*makeTorus(torusSize(50000), Materials::kBands));
  return sModel;
}

void writeObj(benchmark::State& state) {
  model();
  for (auto _ : state) formats::writeObj(path(), model());
  std::filesystem::remove(path());
}

// The numbers of an OBJ file in the order in which they are written.
struct Numbers {
  std::vector<float> mReals;
  std::vector<unsigned int> mIndices;

  explicit Numbers(const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
      const bool isFace = line.rfind("f ", 0) == 0;
      if (!isFace && line.rfind('v', 0) != 0) continue;
      for (std::size_t at = line.find(' '); at != std::string::npos;
           at = line.find_first_of(" /", at + 1)) {
        const char* const number = line.c_str() + at + 1;
        if (isFace) {
          mIndices.push_back(unsigned(std::strtoul(number, nullptr, 10)));
        } else {
          mReals.push_back(std::strtof(number, nullptr));
        }
      }
    }
  }
};

void writeNumbers(benchmark::State& state) {
  const Numbers numbers(formats::formatObj(model()));
  std::vector<char> buffer(24 * (numbers.mReals.size() + numbers.mIndices.size()));
  char* const end = buffer.data() + buffer.size();
  for (auto _ : state) {
    char* to = buffer.data();
    const auto put = [&](auto number) {
      to = std::to_chars(to, end, number).ptr;
      *to++ = ' ';
    };
    for (const float real : numbers.mReals) put(real);
    for (const unsigned int index : numbers.mIndices) put(index);
    std::FILE* const file = std::fopen(path().c_str(), "wb");
    std::fwrite(buffer.data(), 1, std::size_t(to - buffer.data()), file);
    std::fclose(file);
  }
  std::filesystem::remove(path());
}

BENCHMARK(writeObj);
BENCHMARK(writeNumbers);

}  // namespace

}  // namespace vexa::benchmarks
