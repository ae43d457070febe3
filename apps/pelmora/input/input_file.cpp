// SPDX-License-Identifier: MIT
#include "apps/pelmora/input/input_file.h"

#include "apps/pelmora/interruption.h"
#include "apps/pelmora/trouble.h"

#include <pelmora/database.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <vector>

namespace pelmora::cli {
namespace {

Trouble bad(const std::string& what, const std::string& remedy) {
  return {ExitCode::badInput, what, remedy};
}

std::string kindOf(mode_t mode) {
  if (S_ISREG(mode)) return {};
  if (S_ISDIR(mode)) return "a folder";
  if (S_ISFIFO(mode)) return "a pipe";
  return S_ISSOCK(mode) ? "a socket" : "a device";
}

Trouble wrongKind(const std::string& path, const std::string& kind) {
  return bad("'" + path + "' is " + kind, kind == "a folder"
                                              ? "name a file in it"
                                              : "write its contents to a file and name that");
}

Trouble cannotBeRead(const std::string& path, int reason) {
  return bad("file '" + path + "' cannot be read: " + std::generic_category().message(reason),
             "check its permissions and its disk");
}

class OpenFile {
 public:
  // A pipe that took the file's place since it was looked at keeps nobody waiting.
  explicit OpenFile(const std::string& path)
      : path_(path), descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {
    if (descriptor_ < 0) throw cannotBeRead(path, errno);
  }
  ~OpenFile() { close(descriptor_); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  void requireRegular() const {
    struct stat status {};
    if (fstat(descriptor_, &status) != 0) throw cannotBeRead(path_, errno);
    if (!S_ISREG(status.st_mode)) throw wrongKind(path_, kindOf(status.st_mode));
  }
  [[nodiscard]] std::string text() const {
    std::string text;
    std::vector<char> block(1U << 16U);
    for (;;) {
      const ssize_t count = read(descriptor_, block.data(), block.size());
      if (count < 0 && errno != EINTR) throw cannotBeRead(path_, errno);
      requireNotInterrupted();
      if (count == 0) return text;
      if (count > 0) text.append(block.data(), static_cast<std::size_t>(count));
      if (text.size() > mostInputBytes) throw tooLarge(path_);
    }
  }
  static Trouble tooLarge(const std::string& path) {
    return bad(
        "file '" + path + "' is larger than " + std::to_string(mostInputBytes / 1'000'000) + " MB",
        "split it into smaller files");
  }

 private:
  const std::string& path_;
  int descriptor_;
};

}  // namespace

std::string otherKind(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 ? kindOf(status.st_mode) : std::string();
}

std::string readInputFile(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    if (errno != ENOENT && errno != ENOTDIR) throw cannotBeRead(path, errno);
    throw bad("there is no file '" + path + "'", "check the folder and the name");
  }
  if (!S_ISREG(status.st_mode)) throw wrongKind(path, kindOf(status.st_mode));
  if (isOpenAsDatabase(path)) {
    throw bad("'" + path + "' is the database that this command works on", "name another file");
  }
  if (static_cast<std::uintmax_t>(status.st_size) > mostInputBytes) throw OpenFile::tooLarge(path);
  const OpenFile file(path);
  file.requireRegular();
  std::string text = file.text();
  if (text.empty()) throw bad("file '" + path + "' is empty", "name a file that holds data");
  return text;
}

}  // namespace pelmora::cli
