// SPDX-License-Identifier: MIT
#include "apps/pelmora/lock_holder.h"

#include "apps/pelmora/interruption.h"
#include "apps/pelmora/output/progress.h"
#include "apps/pelmora/trouble.h"
#include "base/server_address.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <optional>
#include <sstream>

namespace pelmora::cli {
namespace {

// A line of /proc/locks: "1: POSIX  ADVISORY  WRITE 4711 fe:00:1095 1073741824 1073742335".
struct HeldLock {
  bool isForWriting = false;
  long process = 0;
};

// How /proc/locks names a file: "fe:00:10953022".
std::optional<std::string> fileKey(const std::string& path) {
  struct stat file {};
  if (stat(path.c_str(), &file) != 0) return std::nullopt;
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%02x:%02x:%llu", major(file.st_dev), minor(file.st_dev),
                static_cast<unsigned long long>(file.st_ino));
  return std::string(text.data());
}

std::optional<HeldLock> heldLock(const std::string& line, const std::string& key) {
  std::istringstream fields(line);
  std::string number, lockKind, advice, access, file;
  HeldLock lock;
  if (!(fields >> number >> lockKind >> advice >> access >> lock.process >> file))
    return std::nullopt;
  lock.isForWriting = access == "WRITE";
  // A waiting one has "->" in place of its kind; of a process elsewhere the number is not positive.
  const bool isOfAnother = lockKind == "POSIX" && lock.process > 0 && lock.process != getpid();
  return isOfAnother && file == key ? std::optional(lock) : std::nullopt;
}

}  // namespace

std::string lockHolder(const std::string& database) {
  const std::string unknown = "another program";
  const auto key = fileKey(database);
  std::ifstream locks("/proc/locks");
  std::optional<HeldLock> holder;
  for (std::string line; key && std::getline(locks, line);) {
    const auto lock = heldLock(line, *key);
    // Whoever writes keeps out more than one who reads.
    if (lock && (!holder || lock->isForWriting)) holder = lock;
  }
  if (!holder) return unknown;
  const std::string process = std::to_string(holder->process);
  std::ifstream file("/proc/" + process + "/comm");
  std::string name;
  std::getline(file, name);
  return "process " + process + (name.empty() ? "" : " (" + oneLine(name) + ")");
}

Patience patienceWith(const std::string& database, std::chrono::milliseconds wait,
                      Progress& progress) {
  using namespace std::chrono_literals;
  return {.limit = wait,
          .goesOn =
              [database, &progress, shown = -1LL](auto waited) mutable {
                if (isInterrupted()) return false;
                const auto seconds =
                    std::chrono::duration_cast<std::chrono::seconds>(waited).count();
                // Short waits are nobody's concern.
                if (waited < 500ms || seconds == shown) return true;
                shown = seconds;
                // Short: a terminal's line has no room for folders.
                progress.showWait("waiting for " + lockHolder(database) + " to unlock " +
                                  shortLocation(database) + " (" + std::to_string(seconds) + " s)");
                return true;
              },
          .stopRequested = isInterrupted};
}

}  // namespace pelmora::cli
