// The default message box where standard input is a terminal.
// SPDX-License-Identifier: MIT
#include "tests/support/pseudo_terminal.h"

#include <gtest/gtest.h>
#include <pelmora/platform.h>

#include <array>
#include <utility>

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

TEST(message_box_by_default, never_asks_at_a_terminal) {
  const PseudoTerminal terminal;
  const StandardInput input(terminal.device());
  terminal.type("i\n");
  for (const auto& [style, harmless] : {std::pair{0, 1}, {1, 2}, {2, 3}, {3, 2}, {4, 7}, {5, 2}}) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(platform().messageBox("Out of range", style, "Fit"), harmless);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Fit: Out of range\n");
  }
}

TEST(message_box_by_default, leaves_what_was_typed_to_the_host) {
  const PseudoTerminal terminal;
  const StandardInput input(terminal.device());
  terminal.type("i\n");
  testing::internal::CaptureStderr();
  EXPECT_EQ(platform().messageBox("Out of range", 2, ""), 3);
  testing::internal::GetCapturedStderr();
  std::array<char, 8> line{};
  ASSERT_EQ(read(STDIN_FILENO, line.data(), line.size()), 2);
  EXPECT_EQ(line[0], 'i');
}

}  // namespace
}  // namespace pelmora::test
