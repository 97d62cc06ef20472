#include "formats/interruption.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <stdexcept>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#ifdef __linux__
#include <sys/syscall.h>
#endif

#include "formats/file_error.h"

namespace vexa::formats {
namespace {

// How a signal and the threads that make files agree:
//
//   a thread in an Uninterrupted          the handler, in any thread
//   ++gSteps                              gIsEnding = true
//   take a slot, make the file            wait until gSteps is 0
//   --gSteps                              remove what the slots name, end by the signal
//
// A thread that starts its steps after gIsEnding gives its count back and stops for good. So the
// handler never sees a file without a slot, nor a slot that is half written.

// What a user, a job system and the end of a session send. SIGKILL cannot be caught, and after a
// crash (SIGSEGV and its kin) the slots themselves are not to be trusted.
constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

// What a signal handler reads, which may neither allocate nor lock.
struct Slot {
  std::atomic<bool> mIsTaken{false};  // by a thread, against the other threads
  std::atomic<bool> mIsSet{false};    // the rest is complete and may be read
  Doomed::Kind mKind = Doomed::Kind::kFile;
  std::atomic<int> mFolder{-1};
  char mPath[PATH_MAX] = {};
};
// A fixed number, in static memory: the handler may not allocate. No command comes near 64.
std::array<Slot, 64> gSlots;
std::atomic<int> gSteps{0};  // threads inside an Uninterrupted
std::atomic<bool> gIsEnding{false};
// A child that is forked inherits the slots, but the files are not its own.
pid_t gOwner = 0;
thread_local int tDepth = 0;

sigset_t signalSet() {
  sigset_t set;
  sigemptyset(&set);
  for (const int number : kSignals) sigaddset(&set, number);
  return set;
}

#ifdef __linux__
// As the kernel writes them.
struct Entry {
  std::uint64_t mInode;
  std::int64_t mOffset;
  std::uint16_t mLength;
  unsigned char mType;
  char mName[1];
};

// Empties a folder of its files and empty folders by system calls alone: also a signal handler may
// do that.
void removeFiles(int folder) {
  alignas(Entry) char block[4096];
  for (;;) {
    const long count = syscall(SYS_getdents64, folder, block, sizeof(block));
    if (count <= 0) return;
    for (long at = 0; at < count;) {
      Entry entry;
      std::memcpy(&entry, block + at, offsetof(Entry, mName));
      const char* const name = block + at + offsetof(Entry, mName);
      // By the open folder and not by a path: somebody may have put a link in its place. "." and
      // ".." fail both calls.
      if (unlinkat(folder, name, 0) != 0) unlinkat(folder, name, AT_REMOVEDIR);
      at += entry.mLength;
    }
  }
}

void removeFolder(int folder, const char* path) {
  // Another thread may put a file there meanwhile; once the folder is gone nothing comes any more.
  for (int attempt = 0; attempt < 1000; ++attempt) {
    if (folder >= 0) {
      lseek(folder, 0, SEEK_SET);
      removeFiles(folder);
    }
    if (rmdir(path) == 0 || errno == ENOENT || folder < 0) return;
  }
}
#else
void removeFolder(int /*folder*/, const char* path) { rmdir(path); }
#endif

void remove(Doomed::Kind kind, int folder, const char* path) {
  if (kind == Doomed::Kind::kFile) unlink(path);
  if (kind == Doomed::Kind::kFolder) removeFolder(folder, path);
  if (kind == Doomed::Kind::kEmptyFolder) rmdir(path);
}

void waitForOthers() {
  const timespec pause{0, 1'000'000};
  while (gSteps.load() > 0) nanosleep(&pause, nullptr);
}

void endBySignal(int number) {
  if (getpid() == gOwner) {
    // Another thread is at it already, and will end this one too.
    while (gIsEnding.exchange(true)) pause();
    waitForOthers();
    removeTemporaries();
  }
  // Raised again without a handler: the parent process shall see the same end as without us.
  std::signal(number, SIG_DFL);
  raise(number);
  const sigset_t set = signalSet();
  pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
  // Reached only when the signal does not end a process; the number is what a shell would report.
  _exit(128 + number);
}

int takeSlot(const std::string& path, Doomed::Kind kind) {
  if (path.size() >= sizeof(Slot::mPath)) failForFile(path, ENAMETOOLONG);
  for (std::size_t i = 0; i < gSlots.size(); ++i) {
    if (gSlots[i].mIsTaken.exchange(true)) continue;
    std::memcpy(gSlots[i].mPath, path.c_str(), path.size() + 1);
    gSlots[i].mKind = kind;
    gSlots[i].mFolder = -1;
    gSlots[i].mIsSet = true;
    return int(i);
  }
  throw std::runtime_error(path + ": too many temporary files at a time");
}

// In the reverse order of takeSlot: the handler stops reading before another thread may write.
void freeSlot(int slot) {
  if (slot < 0) return;
  gSlots[std::size_t(slot)].mIsSet = false;
  gSlots[std::size_t(slot)].mIsTaken = false;
}

}  // namespace

void removeTemporaries() {
  // A folder is removed after what it holds, which may have a later place.
  for (std::size_t pass = 0; pass < gSlots.size(); ++pass) {
    for (Slot& slot : gSlots) {
      if (slot.mIsSet.load()) remove(slot.mKind, slot.mFolder, slot.mPath);
    }
  }
}

void removeTemporariesOnSignals() {
  gOwner = getpid();
  struct sigaction action {};
  action.sa_handler = endBySignal;
  action.sa_mask = signalSet();
  for (const int number : kSignals) {
    struct sigaction before {};
    sigaction(number, nullptr, &before);
    if (before.sa_handler != SIG_IGN) sigaction(number, &action, nullptr);
  }
}

Uninterrupted::Uninterrupted() {
  const sigset_t set = signalSet();
  pthread_sigmask(SIG_BLOCK, &set, &mBefore);
  // Nested ones count once: the outer one has already kept the handler away.
  if (tDepth++ > 0) return;
  ++gSteps;
  if (!gIsEnding) return;
  --gSteps;
  for (;;) pause();  // the process is ending
}

Uninterrupted::~Uninterrupted() {
  if (--tDepth == 0) --gSteps;
  pthread_sigmask(SIG_SETMASK, &mBefore, nullptr);
}

Doomed::Doomed(std::string path, Kind kind)
    : mPath(std::move(path)), mKind(kind), mSlot(takeSlot(mPath, kind)) {}

Doomed::Doomed(Doomed&& other) noexcept
    : mPath(std::move(other.mPath)),
      mKind(other.mKind),
      mFolder(std::move(other.mFolder)),
      mSlot(std::exchange(other.mSlot, -1)) {}

Doomed::~Doomed() {
  if (mSlot >= 0) remove(mKind, mFolder.get(), mPath.c_str());
  spare();
}

bool Doomed::openFolder() {
  mFolder = openFile(mPath, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
  gSlots[std::size_t(mSlot)].mFolder = mFolder.get();
  return mFolder.isOpen();
}

void Doomed::spare() { freeSlot(std::exchange(mSlot, -1)); }

std::string randomPathIn(const std::string& folder) {
  constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz234567";
  std::array<unsigned char, 16> bytes{};
  if (getentropy(bytes.data(), bytes.size()) != 0) failForFile(folder);
  std::string path = folder.empty() ? "" : folder + "/";
  path += ".vexa-";
  for (const unsigned char byte : bytes) path += kLetters[byte % kLetters.size()];
  return path;
}

}  // namespace vexa::formats
