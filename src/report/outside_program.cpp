// SPDX-License-Identifier: MIT
#include "report/outside_program.h"

#include "programs/spawn_plan.h"
#include "report/scratch_folder.h"

#include <pelmora/calibration/failure.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace pelmora::report {
namespace {

using calibration::Unusable;

// What wait() says of a program that has ended.
//
// Errors: Unusable if the system has forgotten it, as it does where SIGCHLD is ignored.
int endOf(pid_t child, const std::string& program) {
  int status = 0;
  for (;;) {
    if (waitpid(child, &status, 0) == child) return status;
    if (errno == EINTR) continue;
    throw Unusable({"nobody knows how the program " + program +
                        " ended: this process ignores SIGCHLD, or something else in it has waited "
                        "for the program",
                    "", "let SIGCHLD have its default action while the program runs"});
  }
}

}  // namespace

ProgramEnd runProgram(const std::vector<std::string>& arguments, const std::string& package) {
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
  const int status = endOf(child, program);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, folder.read("errors")};
}

}  // namespace pelmora::report
