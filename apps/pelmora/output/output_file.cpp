// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/output_file.h"

#include "apps/pelmora/interruption.h"
#include "apps/pelmora/last_words.h"
#include "apps/pelmora/trouble.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace pelmora::cli {
namespace {

namespace fs = std::filesystem;

Trouble cannotWrite(const std::string& path, int reason) {
  return {ExitCode::unexpected,
          "'" + path + "' cannot be written: " + std::generic_category().message(reason),
          "check the folder's permissions and the disk's room; what was there is unchanged"};
}

fs::path targetOf(const std::string& path) {
  std::error_code code;
  const fs::path target = fs::canonical(path, code);
  return code ? fs::path(path) : target;
}

// A new file that goes away unless it has taken its final name.
class UnfinishedFile {
 public:
  explicit UnfinishedFile(const fs::path& target) : path_(target.string() + ".new-XXXXXX") {
    descriptor_ = mkstemp(path_.data());
  }
  ~UnfinishedFile() {
    if (descriptor_ < 0) return;
    close(descriptor_);
    if (!isFinished_) unlink(path_.c_str());
  }
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;

  // Each of the following returns whether it worked; errno tells why not.
  [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }
  [[nodiscard]] bool write(const std::string& content) const {
    for (std::size_t done = 0; done < content.size();) {
      const ssize_t count = ::write(descriptor_, content.data() + done, content.size() - done);
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) return false;
      done += static_cast<std::size_t>(count);
    }
    return fsync(descriptor_) == 0;
  }
  // The rights of the file that is replaced, or those of any new file.
  [[nodiscard]] bool takeRights(const fs::path& target) const {
    struct stat old {};
    if (stat(target.c_str(), &old) == 0) return fchmod(descriptor_, old.st_mode & 07777U) == 0;
    const mode_t mask = umask(0);
    umask(mask);
    return fchmod(descriptor_, 0666U & ~mask) == 0;
  }
  [[nodiscard]] bool takePlaceOf(const fs::path& target) {
    isFinished_ = std::rename(path_.c_str(), target.c_str()) == 0;
    return isFinished_;
  }

 private:
  std::string path_;
  int descriptor_ = -1;
  bool isFinished_ = false;
};

}  // namespace

void requireOutputFile(const std::string& path, const std::string& database) {
  const auto refuse = [&](const std::string& why, const std::string& remedy) {
    throw Trouble(ExitCode::usage, "'" + path + "' " + why, remedy);
  };
  std::error_code code;
  const fs::file_status status = fs::status(path, code);
  if (fs::is_directory(status)) refuse("is a folder", "name a file in it");
  if (fs::exists(status) && !fs::is_regular_file(status))
    refuse("is not a regular file", "name a file, or - for standard output");
  if (fs::exists(status) && fs::equivalent(path, database, code))
    refuse("is the curve database", "name another file");
  const fs::path folder = fs::path(path).parent_path();
  if (!folder.empty() && !fs::is_directory(folder, code))
    refuse("lies in a folder that is not there", "make the folder first");
}

void writeOutputFile(const std::string& path, const std::string& content) {
  requireNotInterrupted();
  const fs::path target = targetOf(path);
  UnfinishedFile file(target);
  const bool isDone =
      file.isOpen() && file.write(content) && file.takeRights(target) && file.takePlaceOf(target);
  if (!isDone) throw cannotWrite(path, errno);
  noteFileWritten();
}

}  // namespace pelmora::cli
