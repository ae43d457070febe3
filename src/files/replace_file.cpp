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

// Bytes written between two calls of goOn: a few milliseconds even on a slow disk.
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

// The file that the path refers to once all symbolic links are followed.
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

// Empty if the file does not exist yet.
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

// A new file that is removed again unless it takes its final name.
class Replacement {
 public:
  // While it replaces an old file, only the writer may open it until it has the old permissions.
  // Otherwise the system sets them: reading the process's umask would change it for all threads.
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
  // If the old owner or group cannot be kept, the writer's own take their place. The writer's group
  // then gets no more rights than everybody had.
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

// By now the file is complete and has its name, whether or not its folder can be synced: some file
// systems cannot do that, and the folder may be unreadable.
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
