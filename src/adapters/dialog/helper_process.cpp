// SPDX-License-Identifier: MIT
#include "adapters/dialog/helper_process.h"

#include "base/run_time_error.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

extern char** environ;

namespace pelmora::dialog {

Error windowFailure(const std::string& what) { return {genericFailure, "Pelmora:dialog", what}; }

namespace {

constexpr std::size_t longestLine = 256;

Error socketFailure() {
  const bool isLost = errno == EPIPE || errno == ECONNRESET;
  return windowFailure(isLost ? "The window was lost" : std::strerror(errno));
}

// The two tables that posix_spawn wants, released together.
class SpawnPlan {
 public:
  explicit SpawnPlan(int socket) {
    posix_spawn_file_actions_init(&files_);
    posix_spawnattr_init(&attributes_);
    posix_spawn_file_actions_adddup2(&files_, socket, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&files_, socket, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&files_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
#if defined(__GLIBC__)
#if __GLIBC_PREREQ(2, 34)
    // Files that the host opened without close-on-exec; its locks and pipes are none of ours.
    posix_spawn_file_actions_addclosefrom_np(&files_, STDERR_FILENO + 1);
#endif
#endif
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

  int start(const std::string& program, pid_t& process) {
    std::string name = program;
    std::array<char*, 2> arguments{name.data(), nullptr};
    return posix_spawn(&process, program.c_str(), &files_, &attributes_, arguments.data(), environ);
  }

 private:
  posix_spawn_file_actions_t files_{};
  posix_spawnattr_t attributes_{};
};

}  // namespace

HelperProcess::HelperProcess(const std::string& program) {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    throw windowFailure(std::strerror(errno));
  }
  const int problem = SpawnPlan(ends[1]).start(program, process_);
  close(ends[1]);
  if (problem != 0) {
    close(ends[0]);
    throw windowFailure(program + ": " + std::strerror(problem));
  }
  socket_ = ends[0];
}

HelperProcess::~HelperProcess() {
  close(socket_);
  // Killed only while it is known to be our child: a host that reaps every child itself may have
  // taken it already, and its number may be another's by now.
  if (waitpid(process_, nullptr, WNOHANG) != 0) return;
  kill(process_, SIGKILL);
  while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
  }
}

bool HelperProcess::waitFor(short events, Clock::time_point deadline) const {
  pollfd watched{socket_, events, 0};
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    const int ready = poll(&watched, 1, static_cast<int>(std::clamp<long>(left, 0, 60'000)));
    if (ready > 0) return true;
    if (ready < 0 && errno != EINTR) throw windowFailure(std::strerror(errno));
    if (Clock::now() >= deadline) return false;
  }
}

void HelperProcess::send(std::string_view bytes, Clock::time_point deadline) {
  while (!bytes.empty()) {
    // MSG_NOSIGNAL: a helper that is gone must be an error here, not a SIGPIPE that ends the host.
    const ssize_t sent = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(sent));
    } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
      if (!waitFor(POLLOUT, deadline)) throw windowFailure("The window does not read its message");
    } else if (errno != EINTR) {
      throw socketFailure();
    }
  }
}

std::optional<std::string> HelperProcess::receiveLine(Clock::time_point deadline) {
  for (;;) {
    const std::size_t end = received_.find('\n');
    if (end != std::string::npos) {
      std::string line = received_.substr(0, end);
      received_.erase(0, end + 1);
      return line;
    }
    if (received_.size() > longestLine) throw windowFailure("The window answers nonsense");
    if (!waitFor(POLLIN, deadline)) return std::nullopt;
    std::array<char, longestLine> buffer{};
    const ssize_t size = recv(socket_, buffer.data(), buffer.size(), MSG_DONTWAIT);
    if (size > 0) {
      received_.append(buffer.data(), static_cast<std::size_t>(size));
    } else if (size == 0) {
      throw windowFailure("The window was lost");
    } else if (errno != EINTR && errno != EAGAIN && errno != EWOULDBLOCK) {
      throw socketFailure();
    }
  }
}

}  // namespace pelmora::dialog
