// How another program is started from inside a host.
// SPDX-License-Identifier: MIT
#pragma once

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/types.h>
#include <unistd.h>

#include <string>
#include <vector>

extern char** environ;

namespace pelmora {

// The program gets the three standard streams that are stated here and the host's environment. It
// inherits nothing else: no open files, no blocked or ignored signals.
class SpawnPlan {
 public:
  SpawnPlan() {
    posix_spawn_file_actions_init(&files_);
    posix_spawnattr_init(&attributes_);
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setsigdefault(&attributes_, &all);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  ~SpawnPlan() {
    posix_spawn_file_actions_destroy(&files_);
    posix_spawnattr_destroy(&attributes_);
  }
  SpawnPlan(const SpawnPlan&) = delete;
  SpawnPlan& operator=(const SpawnPlan&) = delete;

  // The standard stream `stream` is this open file.
  void use(int stream, int file) { posix_spawn_file_actions_adddup2(&files_, file, stream); }
  // The standard stream `stream` is a file that is opened with these flags of open().
  void open(int stream, const char* path, int flags) {
    constexpr mode_t ownerOnly = 0600;
    posix_spawn_file_actions_addopen(&files_, stream, path, flags, ownerOnly);
  }

  // program: a path, or a name that is looked up in PATH.
  // arguments: without the program's own name.
  // Result: 0, or why it could not be started, as errno says it.
  [[nodiscard]] int start(std::string program, std::vector<std::string> arguments, pid_t& process) {
#if defined(__GLIBC__)
#if __GLIBC_PREREQ(2, 34)
    // Files that the host opened without close-on-exec; its locks and pipes are none of ours.
    posix_spawn_file_actions_addclosefrom_np(&files_, STDERR_FILENO + 1);
#endif
#endif
    std::vector<char*> words{program.data()};
    for (std::string& argument : arguments) words.push_back(argument.data());
    words.push_back(nullptr);
    return posix_spawnp(&process, program.c_str(), &files_, &attributes_, words.data(), environ);
  }

 private:
  posix_spawn_file_actions_t files_{};
  posix_spawnattr_t attributes_{};
};

}  // namespace pelmora
