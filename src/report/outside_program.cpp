// SPDX-License-Identifier: MIT
#include "report/outside_program.h"

#include "programs/spawn_plan.h"
#include "report/scratch_folder.h"

#include <pelmora/calibration/failure.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

namespace pelmora::report {
namespace {

using calibration::Unusable;

// How often a program that may be stopped is looked at.
constexpr std::chrono::milliseconds betweenLooks{10};

// What wait() says of a program that has ended. On a stop, the program is ended.
//
// Errors: Unusable if the system has forgotten it, as it does where SIGCHLD is ignored.
int endOf(pid_t child, const std::string& program, const std::stop_token& stop) {
  int status = 0;
  for (bool mayRun = stop.stop_possible();;) {
    const pid_t ended = waitpid(child, &status, mayRun ? WNOHANG : 0);
    if (ended == child) return status;
    if (ended == 0 && !stop.stop_requested()) {
      std::this_thread::sleep_for(betweenLooks);
      continue;
    }
    if (ended == 0) {
      kill(child, SIGKILL);
      mayRun = false;
      continue;
    }
    if (errno == EINTR) continue;
    throw Unusable({"nobody knows how the program " + program +
                        " ended: this process ignores SIGCHLD, or something else in it has waited "
                        "for the program",
                    "", "let SIGCHLD have its default action while the program runs"});
  }
}

}  // namespace

ProgramEnd runProgram(const std::vector<std::string>& arguments, const std::string& package,
                      const std::stop_token& stop) {
  const ScratchFolder folder;
  const std::string errors = folder.file("errors");
  SpawnPlan plan;
  plan.open(STDIN_FILENO, "/dev/null", O_RDONLY);
  plan.open(STDOUT_FILENO, "/dev/null", O_WRONLY);
  plan.open(STDERR_FILENO, errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC);
  pid_t child = 0;
  const int trouble =
      plan.start(arguments.front(), {arguments.begin() + 1, arguments.end()}, child);
  const std::string program = "'" + arguments.front() + "'";
  if (trouble != 0) {
    if (trouble == ENOENT)
      throw Unusable({"the program " + program + " is not installed", "",
                      "install it; on Debian, the package " + package + " has it"});
    throw Unusable({"the program " + program + " cannot be started: " + std::strerror(trouble), "",
                    "check the package " + package});
  }
  const int status = endOf(child, program, stop);
  if (stop.stop_requested())
    throw calibration::Cancelled({"the program " + program + " was ended: cancelled", "", ""});
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, folder.read("errors")};
}

}  // namespace pelmora::report
