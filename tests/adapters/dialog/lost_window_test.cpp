// The real helper program losing its display, its life, its host.
// SPDX-License-Identifier: MIT
#include "adapters/dialog/form_window.h"
#include "tests/adapters/dialog/virtual_display.h"
#include "ui/show_message.h"

#include <pelmora/dialog.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>

namespace pelmora {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::chrono::hours patience{1};  // a test that waits so long fails by CTest's limit

class lost_window : public testing::Test {
 protected:
  lost_window() {
    platform() = {};
    platform().messageBox = [this](const std::string& text, int style, const std::string&) {
      box_ += text + "|" + std::to_string(style) + "\n";
      return 5;
    };
  }
  ~lost_window() override { platform() = {}; }

  static void useHelper(std::chrono::milliseconds readyWithin = patience) {
    useDialogs(platform(), {.helperProgram = PELMORA_HELPER, .readyWithin = readyWithin});
  }
  // Shows a message box while somebody else waits for its window and then does something.
  static int showWhile(test::VirtualDisplay& display, const std::function<void()>& mishap) {
    std::thread other([&] {
      EXPECT_NE(display.window("Question"), 0U);
      mishap();
    });
    const int answer = platform().messageBox("Go on?", 2, "Question");
    other.join();
    return answer;
  }
  // Number of the helper that this program has started; 0 if there is none.
  static pid_t helper() {
    const std::string found = test::outputOf("ps -o pid=,comm= --ppid " + std::to_string(getpid()) +
                                             " | awk '$2 == \"pelmora-dialog\" { print $1 }'");
    return found.empty() ? 0 : std::stoi(found);
  }

  std::string box_;
};

TEST_F(lost_window, helper_killed_in_the_middle) {
  test::VirtualDisplay display;
  if (!display.isRunning()) GTEST_SKIP() << "Xvfb or xdotool is not installed";
  useHelper();
  for (const int signal : {SIGKILL, SIGSEGV, SIGTERM}) {
    box_.clear();
    EXPECT_EQ(showWhile(display,
                        [=] {
                          const pid_t victim = helper();
                          ASSERT_GT(victim, 0);
                          kill(victim, signal);
                        }),
              5);
    EXPECT_EQ(box_, "Go on?|2\n");
    EXPECT_EQ(helper(), 0);  // not even as a zombie
  }
}

TEST_F(lost_window, form_whose_helper_is_killed_is_asked_again) {
  test::VirtualDisplay display;
  if (!display.isRunning()) GTEST_SKIP() << "Xvfb or xdotool is not installed";
  useHelper();
  std::thread other([&] {
    EXPECT_NE(display.window("Question"), 0U);
    kill(helper(), SIGKILL);
    // The message box that takes over bears no title of its own.
    display.type(display.window("adapters_dialog_window_test"), "r");
  });
  std::int32_t style = 5;
  EXPECT_EQ(showMessageForm("Go on?", style, "Question"), 4);
  other.join();
  EXPECT_EQ(box_, "");
}

TEST_F(lost_window, display_lost_in_the_middle) {
  test::VirtualDisplay display;
  if (!display.isRunning()) GTEST_SKIP() << "Xvfb or xdotool is not installed";
  useHelper();
  EXPECT_EQ(showWhile(display, [&] { display.kill(); }), 5);
  EXPECT_EQ(box_, "Go on?|2\n");
}

TEST_F(lost_window, helper_that_is_stopped_for_a_while_goes_on) {
  test::VirtualDisplay display;
  if (!display.isRunning()) GTEST_SKIP() << "Xvfb or xdotool is not installed";
  useHelper();
  EXPECT_EQ(showWhile(display,
                      [&] {
                        kill(helper(), SIGSTOP);
                        std::this_thread::sleep_for(milliseconds(1500));
                        kill(helper(), SIGCONT);
                        display.type(display.window("Question"), "a");
                      }),
            3);
  EXPECT_EQ(box_, "");
}

TEST_F(lost_window, display_that_is_not_there_is_known_at_once) {
  // Display numbers end at 59535 on a network, and no server is local to this one.
  setenv("DISPLAY", ":64999", 1);
  useHelper();
  EXPECT_EQ(platform().messageBox("Go on?", 2, "Question"), 5);
  EXPECT_EQ(box_, "Go on?|2\n");
}

// A server that takes connections and never says a word, as a hanging one does.
class DeafServer {
 public:
  DeafServer() : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (bind(socket_, generic, size) != 0 || listen(socket_, 8) != 0) return;
    getsockname(socket_, generic, &size);
    constexpr int firstPort = 6000;
    display_ = "127.0.0.1:" + std::to_string(ntohs(address.sin_port) - firstPort);
  }
  ~DeafServer() { close(socket_); }
  DeafServer(const DeafServer&) = delete;
  DeafServer& operator=(const DeafServer&) = delete;
  [[nodiscard]] const std::string& display() const { return display_; }
  // How many have called.
  [[nodiscard]] int calls() const {
    const int flags = fcntl(socket_, F_GETFL);
    fcntl(socket_, F_SETFL, flags | O_NONBLOCK);
    int count = 0;
    for (int caller = 0; (caller = accept(socket_, nullptr, nullptr)) >= 0; ++count) close(caller);
    return count;
  }

 private:
  int socket_;
  std::string display_;
};

TEST_F(lost_window, display_that_does_not_answer_is_waited_for_once) {
  const DeafServer deaf;
  ASSERT_FALSE(deaf.display().empty());
  setenv("DISPLAY", deaf.display().c_str(), 1);
  useHelper(milliseconds(2000));
  const auto start = steady_clock::now();
  std::int32_t style = 2;
  EXPECT_EQ(showMessageForm("Go on?", style, "Question"), 5);
  const auto waited = steady_clock::now() - start;
  EXPECT_GE(waited, milliseconds(2000));
  EXPECT_EQ(box_, "Go on?|2\n");
  EXPECT_EQ(deaf.calls(), 1);
  EXPECT_EQ(helper(), 0);
}

TEST_F(lost_window, window_does_not_outlive_its_host) {
  test::VirtualDisplay display;
  if (!display.isRunning()) GTEST_SKIP() << "Xvfb or xdotool is not installed";
  std::array<int, 2> ends{};
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
  const pid_t program = fork();
  if (program == 0) {
    dup2(ends[1], STDIN_FILENO);
    dup2(ends[1], STDOUT_FILENO);
    execl(PELMORA_HELPER, PELMORA_HELPER, static_cast<char*>(nullptr));
    _exit(127);
  }
  close(ends[1]);
  const std::string wire = dialog::toWire(dialog::windowOf("Go on?", 4, "Question"));
  EXPECT_EQ(write(ends[0], wire.data(), wire.size()), static_cast<ssize_t>(wire.size()));
  EXPECT_NE(display.window("Question"), 0U);
  close(ends[0]);  // as the system does for a host that was killed
  EXPECT_EQ(waitpid(program, nullptr, 0), program);  // for ever, were it not so
  EXPECT_FALSE(display.hasWindow("Question"));
}

}  // namespace
}  // namespace pelmora
