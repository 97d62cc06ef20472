#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

namespace vexa::importer {

/// What a child process may use before it is ended.
struct ChildLimits {
  /// Address space in bytes, beyond what this process holds when the child starts.
  std::uint64_t mMemoryBytes = std::uint64_t{2} << 30;
  /// Processor time in seconds.
  unsigned mCpuSeconds = 60;
  /// Time by the clock.
  std::chrono::milliseconds mWallTime{120'000};
  /// Length of the result in bytes.
  std::uint64_t mResultBytes = std::uint64_t{1} << 30;
};

/// Runs `work` in a forked child process and returns the bytes that it returned there.
///
/// For code that may abort, loop or devour memory. Whatever becomes of the child, this process gets
/// the result or a std::runtime_error whose text is one line: that of the exception that left
/// `work`, else how the child ended or which limit it met. The child has no standard input, what it
/// writes to its standard streams is dropped, no destructor of this process runs in it, and it is
/// gone when this function returns.
std::string runInChild(const std::function<std::string()>& work, const ChildLimits& limits = {});

/// A text of foreign origin as one line: control characters become blanks, runs of blanks one, and
/// the end is cut off beyond 300 bytes.
std::string oneLine(const std::string& text);

}  // namespace vexa::importer
