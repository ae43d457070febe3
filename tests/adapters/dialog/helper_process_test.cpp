// SPDX-License-Identifier: MIT
#include "adapters/dialog/helper_process.h"

#include "tests/adapters/dialog/fake_helper.h"

#include <pelmora/error.h>

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <string>
#include <thread>

namespace pelmora::dialog {
namespace {

using std::chrono::milliseconds;
using test::patience;
using Clock = HelperProcess::Clock;

class helper_process : public test::FakeHelperTest {};

TEST_F(helper_process, talks_both_ways) {
  HelperProcess process(helper("read line; echo \"got $line\"; echo last"));
  process.send("hello\n", Clock::now() + patience);
  EXPECT_EQ(process.receiveLine(Clock::now() + patience), "got hello");
  EXPECT_EQ(process.receiveLine(Clock::now() + patience), "last");
}

TEST_F(helper_process, waits_no_longer_than_the_deadline) {
  HelperProcess process(helper("exec sleep 600"));
  const test::StopWatch watch;
  EXPECT_EQ(process.receiveLine(Clock::now() + milliseconds(100)), std::nullopt);
  EXPECT_GE(watch.seconds(), 0.1);
}

TEST_F(helper_process, end_of_the_program_is_an_error) {
  HelperProcess process(helper("exit 1"));
  EXPECT_THROW(static_cast<void>(process.receiveLine(Clock::now() + patience)), Error);
}

TEST_F(helper_process, line_before_the_end_is_still_received) {
  HelperProcess process(helper("echo last words"));
  EXPECT_EQ(process.receiveLine(Clock::now() + patience), "last words");
  EXPECT_THROW(static_cast<void>(process.receiveLine(Clock::now() + patience)), Error);
}

TEST_F(helper_process, endless_line_is_an_error) {
  HelperProcess process(helper("exec cat /dev/zero"));
  EXPECT_THROW(static_cast<void>(process.receiveLine(Clock::now() + patience)), Error);
}

TEST_F(helper_process, sending_to_a_program_that_ended_is_an_error_and_no_signal) {
  struct sigaction byDefault {};
  byDefault.sa_handler = SIG_DFL;  // a SIGPIPE would end this test
  struct sigaction before {};
  sigaction(SIGPIPE, &byDefault, &before);
  {
    HelperProcess process(helper("exit 0"));
    EXPECT_THROW(static_cast<void>(process.receiveLine(Clock::now() + patience)), Error);
    EXPECT_THROW(process.send("hello\n", Clock::now() + patience), Error);
  }
  sigaction(SIGPIPE, &before, nullptr);
}

TEST_F(helper_process, sending_to_a_program_that_does_not_read_is_bounded) {
  HelperProcess process(helper("exec sleep 600"));
  try {
    process.send(std::string(8U << 20U, 'x'), Clock::now() + milliseconds(100));
    ADD_FAILURE() << "sent";
  } catch (const Error& error) {
    EXPECT_EQ(error.what(), std::string("The window does not read its message"));
  }
}

TEST_F(helper_process, program_that_ignores_requests_to_end_is_killed) {
  // It would go on for ever; that this test ends, with no child left, says that it was killed.
  HelperProcess process(helper("trap '' TERM HUP INT PIPE; echo on; while :; do sleep 1; done"));
  EXPECT_EQ(process.receiveLine(Clock::now() + patience), "on");
}

TEST_F(helper_process, program_that_is_not_there_is_an_error) {
  EXPECT_THROW(HelperProcess("/nowhere/pelmora-dialog"), Error);
  EXPECT_THROW(HelperProcess(file(".")), Error);
}

TEST_F(helper_process, program_inherits_no_open_files) {
  const int left = open("/dev/null", O_RDONLY);  // without close-on-exec, as careless hosts do
  const int high = fcntl(left, F_DUPFD, 200);
  // The shell reads its lines from a file of its own, so another program looks.
  HelperProcess process(helper("exec ls /proc/self/fd"));
  std::string files;
  try {
    for (;;) files += process.receiveLine(Clock::now() + patience).value_or("timeout") + " ";
  } catch (const Error&) {
  }
  EXPECT_EQ(files, "0 1 2 3 ");  // 3 is the folder that ls reads
  close(left);
  close(high);
}

TEST_F(helper_process, leaves_no_open_files_behind) {
  const auto openFiles = [] {
    int count = 0;
    for ([[maybe_unused]] const auto& entry :
         std::filesystem::directory_iterator("/proc/self/fd")) {
      ++count;
    }
    return count;
  };
  const int before = openFiles();
  { HelperProcess process(helper("echo on")); }
  EXPECT_THROW(HelperProcess("/nowhere/pelmora-dialog"), Error);
  EXPECT_EQ(openFiles(), before);
}

TEST_F(helper_process, signals_that_the_host_blocks_or_ignores_work_in_the_program) {
  sigset_t blocked;
  sigset_t before;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &blocked, &before);
  const auto ignored = signal(SIGALRM, SIG_IGN);
  {
    // The last 31 bits are the classic signals; the C library keeps some of the others for itself.
    HelperProcess process(
        helper("sed -n 's/^Sig\\(Blk\\|Ign\\):.*\\(........\\)$/\\1 \\2/p' /proc/self/status"));
    const auto classicBits = [](const std::optional<std::string>& line) {
      return std::stoul(line.value_or("").substr(4), nullptr, 16) & 0x7fffffffU;
    };
    const auto blockedThere = process.receiveLine(Clock::now() + patience);
    const auto ignoredThere = process.receiveLine(Clock::now() + patience);
    EXPECT_EQ(classicBits(blockedThere), 0U) << *blockedThere;
    EXPECT_EQ(classicBits(ignoredThere), 0U) << *ignoredThere;
  }
  signal(SIGALRM, ignored);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

TEST_F(helper_process, host_that_lets_the_system_reap_is_served_too) {
  const auto before = signal(SIGCHLD, SIG_IGN);
  {
    HelperProcess process(helper("echo on; exec sleep 600"));
    EXPECT_EQ(process.receiveLine(Clock::now() + patience), "on");
  }
  signal(SIGCHLD, before);
}

TEST_F(helper_process, interrupted_waits_go_on) {
  struct sigaction noting {};
  noting.sa_handler = [](int) {};  // without SA_RESTART
  struct sigaction before {};
  sigaction(SIGUSR1, &noting, &before);
  {
    HelperProcess process(helper("sleep 0.4; echo on"));
    const pthread_t self = pthread_self();
    std::thread disturber([self] {
      for (int i = 0; i < 10; ++i) {
        std::this_thread::sleep_for(milliseconds(20));
        pthread_kill(self, SIGUSR1);
      }
    });
    EXPECT_EQ(process.receiveLine(Clock::now() + patience), "on");
    disturber.join();
  }
  sigaction(SIGUSR1, &before, nullptr);
}

}  // namespace
}  // namespace pelmora::dialog
