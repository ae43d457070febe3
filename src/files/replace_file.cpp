// SPDX-License-Identifier: MIT
#include "files/replace_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <random>
#include <system_error>

namespace pelmora {
namespace {

namespace fs = std::filesystem;

// Written between two calls of goOn: some milliseconds of a slow disk.
constexpr std::size_t portion = std::size_t{1} << 20;
// As many as the system itself follows.
constexpr int mostLinks = 40;
constexpr int mostAttempts = 100;

CannotReplaceFile failureOf(int reason) {
  return CannotReplaceFile(std::generic_category().message(reason));
}

void require(bool isDone) {
  if (!isDone) throw failureOf(errno);
}

// Where the file lies that the path names, through symbolic links.
fs::path behindLinks(fs::path path) {
  for (int i = 0; i < mostLinks; ++i) {
    std::error_code ignored;
    if (!fs::is_symlink(fs::symlink_status(path, ignored))) return path;
    std::error_code code;
    const fs::path target = fs::read_symlink(path, code);
    if (code) throw failureOf(code.value());
    path = path.parent_path() / target;
  }
  throw failureOf(ELOOP);
}

// None if there is no file yet.
std::optional<struct stat> stateOf(const fs::path& target) {
  struct stat state {};
  if (stat(target.c_str(), &state) != 0) {
    require(errno == ENOENT);
    return std::nullopt;
  }
  if (S_ISDIR(state.st_mode)) throw CannotReplaceFile("it is a folder");
  if (!S_ISREG(state.st_mode)) throw CannotReplaceFile("it is not a regular file");
  return state;
}

// A new file that goes away unless it has taken its final name.
class Replacement {
 public:
  // Others get no rights before the file has those of an old one. Those of a new file are for the
  // system to say: to read the process's mask would mean to change it for all threads.
  Replacement(const fs::path& target, bool isNew) {
    std::random_device random;
    for (int i = 0; descriptor_ < 0; ++i) {
      std::array<char, 16> ending{};
      std::snprintf(ending.data(), ending.size(), ".new-%08x", random());
      path_ = target.string() + ending.data();
      descriptor_ = open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                         isNew ? mode_t{0666} : mode_t{0600});
      require(descriptor_ >= 0 || (errno == EEXIST && i < mostAttempts));
    }
  }
  ~Replacement() {
    close(descriptor_);
    if (!isNamed_) unlink(path_.c_str());
  }
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;

  void write(std::string_view content, const std::function<void()>& goOn) const {
    while (!content.empty()) {
      goOn();
      const std::string_view next = content.substr(0, portion);
      const ssize_t count = ::write(descriptor_, next.data(), next.size());
      if (count < 0 && errno == EINTR) continue;
      require(count >= 0);
      content.remove_prefix(static_cast<std::size_t>(count));
    }
  }
  // An owner that only an administrator could set is let go: the file is the writer's then. So is a
  // group; the writer's own group gets no more rights than everybody had.
  void takeRightsOf(const struct stat& old) const {
    struct stat own {};
    require(fstat(descriptor_, &own) == 0);
    const bool isOwned = own.st_uid == old.st_uid && own.st_gid == old.st_gid;
    const bool isOfGroup = isOwned || fchown(descriptor_, old.st_uid, old.st_gid) == 0 ||
                           fchown(descriptor_, static_cast<uid_t>(-1), old.st_gid) == 0;
    mode_t rights = old.st_mode & 0777U;
    if (!isOfGroup) rights &= ~mode_t{S_IRWXG} | (rights & S_IRWXO) << 3U;
    require((own.st_mode & 0777U) == rights || fchmod(descriptor_, rights) == 0);
  }
  void storeOnDisk() const { require(fsync(descriptor_) == 0); }
  void takePlaceOf(const fs::path& target) {
    require(std::rename(path_.c_str(), target.c_str()) == 0);
    isNamed_ = true;
  }

 private:
  std::string path_;
  int descriptor_ = -1;
  bool isNamed_ = false;
};

// The file has its name by now and is whole whether or not its folder can be stored: some file
// systems cannot, and a folder may be closed to readers.
void storeFolderOf(const fs::path& target) {
  const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
  const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  fsync(descriptor);
  close(descriptor);
}

}  // namespace

void replaceFile(const std::string& path, std::string_view content,
                 const std::function<void()>& goOn) {
  const fs::path target = behindLinks(path);
  const std::optional<struct stat> old = stateOf(target);
  Replacement replacement(target, !old);
  replacement.write(content, goOn);
  if (old) replacement.takeRightsOf(*old);
  replacement.storeOnDisk();
  goOn();
  replacement.takePlaceOf(target);
  storeFolderOf(target);
}

}  // namespace pelmora
