// The default message box where standard input is a terminal.
// SPDX-License-Identifier: MIT
#include "tests/support/pseudo_terminal.h"

#include <gtest/gtest.h>
#include <pelmora/platform.h>

namespace pelmora::test {
namespace {

// Standard input of this program while it lives.
class StandardInput {
 public:
  explicit StandardInput(int descriptor) : before_(dup(STDIN_FILENO)) {
    dup2(descriptor, STDIN_FILENO);
  }
  ~StandardInput() {
    dup2(before_, STDIN_FILENO);
    close(before_);
  }
  StandardInput(const StandardInput&) = delete;
  StandardInput& operator=(const StandardInput&) = delete;

 private:
  int before_;
};

int boxed(int style) {
  testing::internal::CaptureStderr();
  const int answer = platform().messageBox("Out of range", style, "");
  EXPECT_EQ(testing::internal::GetCapturedStderr().substr(0, 13), "Out of range\n");
  return answer;
}

TEST(terminal_question, is_answered_by_the_operator) {
  const PseudoTerminal terminal;
  const StandardInput input(terminal.device());
  terminal.type("i\n");
  EXPECT_EQ(boxed(2), 5);
  terminal.type("Yes\n");
  EXPECT_EQ(boxed(4), 6);
}

TEST(terminal_question, end_of_input_is_harmless_and_not_for_ever) {
  const PseudoTerminal terminal;
  const StandardInput input(terminal.device());
  terminal.type("\x04");
  EXPECT_EQ(boxed(2), 3);
  terminal.type("r\n");
  EXPECT_EQ(boxed(2), 4);
}

TEST(terminal_question, is_not_asked_where_input_is_a_file) {
  const int nothing = open("/dev/null", O_RDONLY);
  {
    const StandardInput input(nothing);
    EXPECT_EQ(boxed(2), 3);
  }
  close(nothing);
}

}  // namespace
}  // namespace pelmora::test
