// A run that finds no memory, at whatever step: one line, exit code 1, nothing changed.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

namespace pelmora::test {
namespace {

using testing::HasSubstr;

class out_of_memory : public CommandTest {
 protected:
  // A calibration in which so many allocations succeed and all later ones fail. The shell that
  // starts it lets them succeed.
  CommandResult calibrateWith(long long allocations) const {
    ::setenv("LD_PRELOAD", PELMORA_FAILING_MEMORY, 1);
    ::setenv("PELMORA_TEST_ALLOCATIONS", std::to_string(allocations).c_str(), 1);
    CommandResult result = run(twoFluids());
    ::unsetenv("LD_PRELOAD");
    ::unsetenv("PELMORA_TEST_ALLOCATIONS");
    return result;
  }
};

TEST_F(out_of_memory, ends_in_order_wherever_it_happens) {
  if (std::string(PELMORA_FAILING_MEMORY).empty()) GTEST_SKIP() << "a sanitizer owns the memory";
  init();
  const std::string before = bytesOf(curves);
  // What is allocated before main() is no business of the program.
  long long allocations = 2000;
  int failures = 0;
  for (;; allocations += allocations / 4) {
    ASSERT_EQ(bytesOf(curves), before);
    const CommandResult result = calibrateWith(allocations);
    if (result.exitCode == 0) break;
    ++failures;
    ASSERT_EQ(result.exitCode, 1) << allocations << result.error;
    ASSERT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
    const bool isStored = result.error.find("the change is stored") != std::string::npos;
    ASSERT_THAT(result.error, HasSubstr("pelmora: error: out of memory: "));
    if (isStored) break;  // it was the table of what is stored that found none
    ASSERT_THAT(result.error, HasSubstr("nothing was stored"));
  }
  EXPECT_GT(failures, 5);
}

}  // namespace
}  // namespace pelmora::test
