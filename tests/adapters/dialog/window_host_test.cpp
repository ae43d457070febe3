// SPDX-License-Identifier: MIT
#include "adapters/dialog/window_host.h"

#include "tests/adapters/dialog/fake_helper.h"

#include <pelmora/error.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>

namespace pelmora::dialog {
namespace {

using std::chrono::milliseconds;
using test::patience;

class window_host : public test::FakeHelperTest {
 protected:
  WindowHost hostOf(const std::string& lines) {
    settings.helperProgram = readingHelper(lines);
    return WindowHost(settings);
  }
  void expectFailure(const std::string& lines, const std::string& why) {
    WindowHost windows = hostOf(lines);
    expectFailure(windows, why);
  }
  static void expectFailure(WindowHost& windows, const std::string& why) {
    try {
      static_cast<void>(windows.show(yesNo()));
      ADD_FAILURE() << why;
    } catch (const Error& error) {
      EXPECT_EQ(error.what(), why);
      EXPECT_EQ(static_cast<std::uint32_t>(error.number()), 0x80004005U);
    }
  }

  WindowSettings settings{.helperProgram = {}, .readyWithin = patience, .pump = {}};
};

TEST_F(window_host, gives_the_code_of_the_pressed_button) {
  EXPECT_EQ(hostOf("echo ready; echo answer 7").show(yesNo()), 7);
}

TEST_F(window_host, closed_window_has_no_code) {
  EXPECT_EQ(hostOf("echo ready; echo closed").show(yesNo()), std::nullopt);
}

TEST_F(window_host, helper_receives_the_request) {
  const std::string wire = toWire(yesNo());
  settings.helperProgram = helper("head -c " + std::to_string(wire.size()) + " >" + file("seen") +
                                  "; echo ready; echo closed");
  static_cast<void>(WindowHost(settings).show(yesNo()));
  EXPECT_EQ(contentsOf("seen"), wire);
}

TEST_F(window_host, signs_of_life_are_no_answer) {
  EXPECT_EQ(hostOf("echo ready; echo alive; sleep 0.1; echo alive; echo answer 6").show(yesNo()),
            6);
}

TEST_F(window_host, helper_that_opens_no_display_fails_at_once) {
  expectFailure("exit 1", "The window was lost");
}

TEST_F(window_host, helper_that_ends_before_it_reads_is_a_lost_window) {
  settings.helperProgram = helper("exit 1");
  EXPECT_THROW(static_cast<void>(WindowHost(settings).show(yesNo())), Error);
}

TEST_F(window_host, helper_that_crashes_is_a_lost_window) {
  expectFailure("echo ready; kill -SEGV $$", "The window was lost");
}

TEST_F(window_host, nonsense_is_no_answer) {
  expectFailure("echo hello", "The window answers nonsense");
  expectFailure("echo ready; echo hello", "The window answers nonsense");
  expectFailure("echo ready; echo answer", "The window answers nonsense");
  expectFailure("echo ready; echo 'answer 6x'", "The window answers nonsense");
}

TEST_F(window_host, code_of_no_button_is_no_answer) {
  expectFailure("echo ready; echo answer 1", "The window answers nonsense");
}

TEST_F(window_host, window_that_does_not_appear_is_given_up) {
  settings.readyWithin = milliseconds(200);
  const test::StopWatch watch;
  expectFailure("exec sleep 600", "The display does not answer");
  EXPECT_GE(watch.seconds(), 0.2);
}

TEST_F(window_host, display_that_did_not_answer_is_not_asked_again_for_a_while) {
  settings.readyWithin = milliseconds(200);
  settings.refusal = std::chrono::hours(1);
  WindowHost windows = hostOf("exec sleep 600");
  expectFailure(windows, "The display does not answer");
  expectFailure(windows, "The display did not answer a moment ago");
}

TEST_F(window_host, display_is_asked_again_after_that) {
  settings.readyWithin = milliseconds(200);
  settings.refusal = milliseconds(0);
  WindowHost windows = hostOf("exec sleep 600");
  expectFailure(windows, "The display does not answer");
  expectFailure(windows, "The display does not answer");
}

TEST_F(window_host, window_that_falls_silent_is_given_up) {
  settings.silenceLimit = milliseconds(300);
  expectFailure("echo ready; exec sleep 600", "The display no longer answers");
}

TEST_F(window_host, window_that_reports_alive_may_stay_open) {
  // Silence is counted in waits of 50 ms, twelve of which are too many here, and the host's
  // messages are pumped after each. Every fifth one has the helper say something, and the host goes
  // on when it has.
  settings.silenceLimit = milliseconds(600);
  const std::string turn = file("turn");
  int waits = 0;
  settings.pump = [&] {
    if (++waits % 5 != 0) return;
    std::ofstream{turn};
    while (std::filesystem::exists(turn)) std::this_thread::sleep_for(milliseconds(1));
  };
  const std::string untilAsked = "while [ ! -e " + turn + " ]; do sleep 0.01; done; ";
  EXPECT_EQ(hostOf("echo ready; for sign in alive alive alive alive 'answer 6'; do " + untilAsked +
                   "echo $sign; rm " + turn + "; done")
                .show(yesNo()),
            6);
  EXPECT_GE(waits, 25);
}

TEST_F(window_host, without_a_display_no_helper_is_started) {
  const std::string lines = "echo started >" + file("starts") + "; echo ready; echo closed";
  unsetenv("DISPLAY");
  expectFailure(lines, "There is no display");
  setenv("DISPLAY", "", 1);
  expectFailure(lines, "There is no display");
  EXPECT_EQ(contentsOf("starts"), "");
}

TEST_F(window_host, missing_helper_is_a_failure) {
  settings.helperProgram = "/nowhere/pelmora-dialog";
  EXPECT_THROW(static_cast<void>(WindowHost(settings).show(yesNo())), Error);
}

TEST_F(window_host, helper_that_is_nowhere_beside_the_library_is_a_failure) {
  // This test program stands for the library; no helper lies in its folder.
  settings.helperProgram.clear();
  EXPECT_THROW(static_cast<void>(WindowHost(settings).show(yesNo())), Error);
}

TEST_F(window_host, text_beyond_the_limit_is_refused) {
  WindowRequest request = yesNo();
  request.text.assign(wireBodyLimit, 'x');
  EXPECT_THROW(static_cast<void>(hostOf("echo ready; echo closed").show(request)), Error);
}

TEST_F(window_host, host_messages_are_pumped_while_the_window_is_open) {
  int pumped = 0;
  settings.pump = [&] {
    if (++pumped == 5) std::ofstream{file("pumped")};
  };
  const test::StopWatch watch;
  const std::string untilPumped = "while [ ! -e " + file("pumped") + " ]; do sleep 0.05; done; ";
  static_cast<void>(hostOf("echo ready; " + untilPumped + "echo closed").show(yesNo()));
  EXPECT_GE(pumped, 5);
  EXPECT_LE(pumped, 1 + watch.seconds() / 0.05);  // every 50 ms, and not as fast as it can
}

TEST_F(window_host, pump_that_throws_ends_the_window) {
  settings.pump = [] { throw std::runtime_error("host"); };
  EXPECT_THROW(static_cast<void>(hostOf("echo ready; exec sleep 600").show(yesNo())),
               std::runtime_error);
}

}  // namespace
}  // namespace pelmora::dialog
