// SPDX-License-Identifier: MIT
#include "report/outside_program.h"

#include "report/scratch_folder.h"

#include <pelmora/calibration/failure.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

extern char** environ;

namespace pelmora::report {
namespace {

using calibration::Unusable;

// Where the three standard streams of a program go.
class Streams {
 public:
  explicit Streams(const std::string& errors) {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addopen(&actions_, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions_, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions_, 2, errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0600);
  }
  ~Streams() { posix_spawn_file_actions_destroy(&actions_); }
  Streams(const Streams&) = delete;
  Streams& operator=(const Streams&) = delete;
  [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
};

}  // namespace

ProgramEnd runProgram(const std::vector<std::string>& arguments, const std::string& package) {
  const ScratchFolder folder;
  const Streams streams(folder.file("errors"));
  std::vector<char*> words;
  for (const std::string& argument : arguments)
    words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  pid_t child = 0;
  const int trouble =
      posix_spawnp(&child, words.front(), streams.get(), nullptr, words.data(), environ);
  if (trouble != 0) {
    const std::string program = "'" + arguments.front() + "'";
    if (trouble == ENOENT)
      throw Unusable({"the program " + program + " is not installed", "",
                      "install it; on Debian, the package " + package + " has it"});
    throw Unusable({"the program " + program + " cannot be started: " + std::strerror(trouble), "",
                    "check the package " + package});
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, folder.read("errors")};
}

}  // namespace pelmora::report
