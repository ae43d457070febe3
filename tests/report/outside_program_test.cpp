// SPDX-License-Identifier: MIT
#include "report/outside_program.h"

#include "report/scratch_folder.h"
#include "tests/support/complaint.h"

#include <pelmora/calibration/failure.h>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stop_token>
#include <string>
#include <thread>

namespace pelmora::report {
namespace {

TEST(outside_program, ends_with_its_code_and_its_errors) {
  const ProgramEnd end = runProgram({"sh", "-c", "echo out; echo trouble >&2; exit 7"}, "dash");
  EXPECT_EQ(end.exitCode, 7);
  EXPECT_EQ(end.errors, "trouble\n");
}

TEST(outside_program, gets_its_arguments_as_they_are) {
  const ProgramEnd end =
      runProgram({"sh", "-c", "printf %s \"$1\" >&2", "sh", "a 'b' $c;*"}, "dash");
  EXPECT_EQ(end.errors, "a 'b' $c;*");
}

TEST(outside_program, that_is_ended_by_a_signal_has_no_code) {
  EXPECT_EQ(runProgram({"sh", "-c", "kill -9 $$"}, "dash").exitCode, -1);
}

// A host may let the system reap its children: then nobody knows how a program ended.
TEST(outside_program, whose_end_is_unknown_has_not_succeeded) {
  const auto before = std::signal(SIGCHLD, SIG_IGN);
  EXPECT_EQ(pelmora::test::complaint([] {
              (void)runProgram({"sh", "-c", "exit 7"}, "dash");
            }),
            "nobody knows how the program 'sh' ended: this process ignores SIGCHLD, or something "
            "else in it has waited for the program; let SIGCHLD have its default action while the "
            "program runs");
  std::signal(SIGCHLD, before);
}

TEST(outside_program, inherits_no_files_and_no_signals_of_its_host) {
  const int file = open("/dev/null", O_RDONLY);  // without close-on-exec
  ASSERT_GT(file, 2);
  sigset_t blocked, before;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGUSR1);
  ASSERT_EQ(pthread_sigmask(SIG_BLOCK, &blocked, &before), 0);
  const auto ignored = std::signal(SIGUSR2, SIG_IGN);
  const std::string number = std::to_string(file);
  const ProgramEnd end = runProgram(
      {"sh", "-c",
       "test -e /proc/self/fd/" + number + " && echo open >&2; grep Sig /proc/self/status >&2"},
      "dash");
  std::signal(SIGUSR2, ignored);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  close(file);
  EXPECT_THAT(end.errors, testing::Not(testing::HasSubstr("open")));
  EXPECT_THAT(end.errors, testing::HasSubstr("SigBlk:\t0000000000000000"));
  const std::string name = "SigIgn:\t";
  const auto at = end.errors.find(name);
  ASSERT_NE(at, std::string::npos) << end.errors;
  // The system's library ignores signals of its own there.
  const auto set = std::stoull(end.errors.substr(at + name.size()), nullptr, 16);
  EXPECT_EQ(set >> (SIGUSR2 - 1) & 1U, 0U) << end.errors;
}

TEST(outside_program, ends_when_it_is_stopped) {
  std::stop_source stop;
  const ScratchFolder folder;
  const std::string started = folder.file("started");
  std::jthread impatient([&] {
    while (!std::filesystem::exists(started)) std::this_thread::yield();
    stop.request_stop();
  });
  // It would last longer than a test may.
  EXPECT_THROW((void)runProgram({"sh", "-c", "touch " + started + "; exec sleep 10000"}, "dash",
                                stop.get_token()),
               calibration::Cancelled);
  int status = 0;
  EXPECT_EQ(waitpid(-1, &status, WNOHANG), -1);  // nobody is left behind
}

TEST(outside_program, that_could_be_stopped_ends_as_usual) {
  const std::stop_source stop;
  EXPECT_EQ(runProgram({"sh", "-c", "exit 7"}, "dash", stop.get_token()).exitCode, 7);
}

TEST(outside_program, that_is_missing_is_named_with_its_package) {
  try {
    (void)runProgram({"pelmora-no-such-program"}, "some-package");
    FAIL() << "nothing was refused";
  } catch (const calibration::Unusable& failure) {
    EXPECT_STREQ(failure.what(), "the program 'pelmora-no-such-program' is not installed");
    EXPECT_THAT(failure.remedy(), testing::HasSubstr("some-package"));
  }
}

TEST(scratch_folder, that_cannot_be_made_is_named) {
  const char* const before = std::getenv("TMPDIR");
  const std::string kept = before == nullptr ? "" : before;
  setenv("TMPDIR", "/nowhere", 1);
  EXPECT_EQ(pelmora::test::complaint([] { const ScratchFolder folder; }),
            "temporary files cannot be written in the folder '/nowhere': No such file or "
            "directory; set TMPDIR to a folder that can be written");
  if (before == nullptr)
    unsetenv("TMPDIR");
  else
    setenv("TMPDIR", kept.c_str(), 1);
}

TEST(outside_program, has_a_folder_that_goes_with_its_object) {
  std::string path;
  {
    const ScratchFolder folder;
    path = folder.write("file", "text");
    EXPECT_EQ(folder.read("file"), "text");
    EXPECT_EQ(folder.read("other"), "");
  }
  EXPECT_FALSE(std::filesystem::exists(path));
}

}  // namespace
}  // namespace pelmora::report
