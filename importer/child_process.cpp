#include "importer/child_process.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <new>
#include <poll.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>
#ifdef __linux__
#include <sys/prctl.h>
#endif

#include "formats/Descriptor.h"
#include "importer/child_result_internal.h"

namespace vexa::importer {

namespace {

using Clock = std::chrono::steady_clock;
using formats::Descriptor;

// Why a child process: readers of foreign formats abort, loop, and take memory without end on
// damaged files, and none of that can be undone within a process.
//
//   this process                        the child
//   pipe, fork                          silent, limited, with default signals
//   wait for a message, not too long    work()
//   check it, reap the child     <---   one message, then _exit
//
// What goes through the pipe: one of these, the length in 8 bytes, then the result or error text.
constexpr char kResult = 'R';
constexpr char kError = 'E';

[[noreturn]] void failWithErrno(const char* what) {
  throw std::runtime_error(std::string(what) + ": " + std::strerror(errno));
}

// A child of this process; killed and reaped at the latest by the destructor.
class Child {
 public:
  explicit Child(pid_t pid) : mPid(pid) {}
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    if (mPid <= 0) return;
    kill(mPid, SIGKILL);
    // Also after an exception: no zombie and no running child stays behind.
    while (waitpid(mPid, nullptr, 0) < 0 && errno == EINTR) {
    }
  }

  // The status once the child has ended by itself; false when it still runs at the deadline.
  bool wait(Clock::time_point deadline, int& outStatus) {
    for (;;) {
      const pid_t ended = waitpid(mPid, &outStatus, WNOHANG);
      // An error means that somebody else has reaped the child, such as a host that ignores
      // SIGCHLD.
      if (ended == mPid || (ended < 0 && errno != EINTR)) {
        mPid = -1;
        return true;
      }
      if (Clock::now() >= deadline) return false;
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }

 private:
  pid_t mPid;
};

void limitResource(decltype(RLIMIT_CORE) resource, std::uint64_t soft, std::uint64_t hard) {
  rlimit limit{};
  limit.rlim_cur = rlim_t(soft);
  limit.rlim_max = rlim_t(hard);
  setrlimit(resource, &limit);
}

// The child starts with the pages of this process, which count to its limit.
std::uint64_t addressSpaceInUse() {
  std::uint64_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  return pages * std::uint64_t(sysconf(_SC_PAGESIZE));
}

void applyLimits(const ChildLimits& limits) {
#ifdef __linux__
  // If this process is killed, nobody would be left to end a child that loops.
  prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
  // A crash is expected here; a core file of it would be of no use to anybody.
  limitResource(RLIMIT_CORE, 0, 0);
  // The hard limit is higher: at the soft one SIGXCPU comes, by which the parent knows the reason.
  limitResource(RLIMIT_CPU, limits.mCpuSeconds, std::uint64_t{limits.mCpuSeconds} + 1);
  const std::uint64_t space = addressSpaceInUse() + limits.mMemoryBytes;
  limitResource(RLIMIT_AS, space, space);
}

void silenceStandardStreams() {
  // Readers print warnings of their own, and the command's output is for programs, too.
  const int null = open("/dev/null", O_RDWR);
  if (null < 0) return;
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) dup2(null, stream);
}

// The host's handlers have no business in the child.
void restoreSignals() {
  for (const int number :
       {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTERM, SIGINT, SIGHUP, SIGXCPU, SIGPIPE}) {
    std::signal(number, SIG_DFL);
  }
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
}

void sendMessage(int fd, char kind, const char* bytes, std::size_t length) {
  std::array<char, 9> header{kind};
  const std::uint64_t count = length;
  std::memcpy(header.data() + 1, &count, sizeof(count));
  const bool isSent =
      formats::writeAll(fd, header.data(), header.size()) && formats::writeAll(fd, bytes, length);
  if (!isSent) _exit(1);
}

void sendError(int fd, const char* text) { sendMessage(fd, kError, text, std::strlen(text)); }

[[noreturn]] void runAsChild(int fd, const std::function<std::string()>& work,
                             const ChildLimits& limits) {
  silenceStandardStreams();
  restoreSignals();
  applyLimits(limits);
  try {
    // No destructor of the parent's objects may run here: they would remove its temporary files. So
    // the child never returns from this function; it ends by _exit.
    const std::string result = work();
    sendMessage(fd, kResult, result.data(), result.size());
  } catch (const std::bad_alloc&) {
    sendError(fd, "not enough memory");
  } catch (const std::exception& e) {
    sendError(fd, e.what());
  } catch (...) {
    sendError(fd, "unknown exception");
  }
  _exit(0);
}

std::string seconds(std::chrono::milliseconds time) {
  const auto count = time.count();
  return count % 1000 == 0 ? std::to_string(count / 1000) + " s" : std::to_string(count) + " ms";
}

[[noreturn]] void failForTime(const ChildLimits& limits) {
  throw std::runtime_error("it took longer than " + seconds(limits.mWallTime));
}

// Reads `count` bytes; false when the other end closes before.
bool readAll(int fd, char* bytes, std::size_t count, Clock::time_point deadline,
             const ChildLimits& limits) {
  while (count > 0) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    if (left.count() <= 0) failForTime(limits);
    pollfd waiting{fd, POLLIN, 0};
    // In pieces of a minute: poll takes an int of milliseconds.
    const int ready = poll(&waiting, 1, int(std::min<long long>(left.count(), 60'000)));
    if (ready < 0 && errno != EINTR) failWithErrno("poll");
    if (ready <= 0) continue;
    const ssize_t got = read(fd, bytes, count);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return false;
    bytes += got;
    count -= std::size_t(got);
  }
  return true;
}

[[noreturn]] void failForStatus(int status, const ChildLimits& limits) {
  if (WIFSIGNALED(status)) {
    const int number = WTERMSIG(status);
    if (number == SIGXCPU) {
      throw std::runtime_error("it took more than " + std::to_string(limits.mCpuSeconds) +
                               " s of processor time");
    }
    throw std::runtime_error("it was ended by signal " + std::to_string(number) + " (" +
                             strsignal(number) + ")");
  }
  throw std::runtime_error("it ended without a result (exit status " +
                           std::to_string(WEXITSTATUS(status)) + ")");
}

}  // namespace

std::optional<std::string> receiveResult(int fd, Clock::time_point deadline,
                                         const ChildLimits& limits) {
  std::array<char, 9> header{};
  if (!readAll(fd, header.data(), header.size(), deadline, limits)) return std::nullopt;
  std::uint64_t length = 0;
  std::memcpy(&length, header.data() + 1, sizeof(length));
  if (length > limits.mResultBytes) {
    throw std::runtime_error("its result is larger than " + std::to_string(limits.mResultBytes) +
                             " bytes");
  }
  std::string bytes(std::size_t(length), '\0');
  if (!readAll(fd, bytes.data(), bytes.size(), deadline, limits)) return std::nullopt;
  if (header[0] != kResult) throw std::runtime_error(oneLine(bytes));
  return bytes;
}

std::string runInChild(const std::function<std::string()>& work, const ChildLimits& limits) {
  const Clock::time_point deadline = Clock::now() + limits.mWallTime;
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) failWithErrno("pipe");
  Descriptor output(ends[0]), input(ends[1]);
  output = formats::aboveStandardStreams(std::move(output));
  input = formats::aboveStandardStreams(std::move(input));
  if (!output.isOpen() || !input.isOpen()) failWithErrno("pipe");
  const pid_t pid = fork();
  if (pid < 0) failWithErrno("fork");
  if (pid == 0) runAsChild(input.get(), work, limits);
  Child child(pid);
  // With the writing end open here, the pipe would never end.
  input.close();

  if (auto result = receiveResult(output.get(), deadline, limits)) return std::move(*result);
  int status = 0;
  if (!child.wait(deadline, status)) failForTime(limits);
  failForStatus(status, limits);
}

std::string oneLine(const std::string& text) {
  constexpr std::size_t kLongest = 300;
  std::string line;
  for (const char c : text) {
    const bool blank = static_cast<unsigned char>(c) <= ' ' || c == '\x7f';
    if (!blank) {
      line += c;
    } else if (!line.empty() && line.back() != ' ') {
      line += ' ';
    }
  }
  if (line.size() > kLongest) line = line.substr(0, kLongest) + "...";
  while (!line.empty() && line.back() == ' ') line.pop_back();
  return line;
}

}  // namespace vexa::importer
