// SPDX-License-Identifier: MIT
#include "adapters/os/child_program.h"

#include "programs/spawn_plan.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <thread>
#include <utility>

namespace pelmora::os {

ChildProgram::ChildProgram(const std::string& program, std::vector<std::string> arguments) {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
    throw std::system_error(errno, std::generic_category());
  SpawnPlan plan;
  plan.use(STDIN_FILENO, ends[1]);
  plan.use(STDOUT_FILENO, ends[1]);
  plan.open(STDERR_FILENO, "/dev/null", O_WRONLY);
  const int problem = plan.start(program, std::move(arguments), process_);
  close(ends[1]);
  if (problem != 0) {
    close(ends[0]);
    throw std::system_error(problem, std::generic_category(), program);
  }
  socket_ = ends[0];
}

ChildProgram::~ChildProgram() {
  close(socket_);
  // Killed only while it is known to be our child: a host that reaps every child itself may have
  // taken it already, and its number may be another's by now.
  if (process_ == -1 || waitpid(process_, nullptr, WNOHANG) != 0) return;
  kill(process_, SIGKILL);
  while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
  }
}

bool ChildProgram::waitFor(short events, Clock::time_point deadline) const {
  pollfd watched{socket_, events, 0};
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    const int ready = poll(&watched, 1, static_cast<int>(std::clamp<long>(left, 0, 60'000)));
    if (ready > 0) return true;
    if (ready < 0 && errno != EINTR) throw std::system_error(errno, std::generic_category());
    if (Clock::now() >= deadline) return false;
  }
}

int ChildProgram::endingSignal() {
  // A program that has closed its socket normally ends at once; one that goes on is not waited for
  // any longer than this.
  constexpr int mostTries = 200;
  constexpr std::chrono::milliseconds breath(5);
  int status = 0;
  for (int tries = 0; process_ != -1 && tries < mostTries; ++tries) {
    const pid_t reaped = waitpid(process_, &status, WNOHANG);
    if (reaped != 0) process_ = -1;
    if (reaped > 0) return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    if (reaped == 0) std::this_thread::sleep_for(breath);
  }
  return 0;
}

}  // namespace pelmora::os
