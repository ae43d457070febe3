// SPDX-License-Identifier: MIT
#include "report/outside_program.h"

#include "report/scratch_folder.h"

#include <pelmora/calibration/failure.h>

#include <gmock/gmock.h>

#include <filesystem>

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

TEST(outside_program, that_is_missing_is_named_with_its_package) {
  try {
    (void)runProgram({"pelmora-no-such-program"}, "some-package");
    FAIL() << "nothing was refused";
  } catch (const calibration::Unusable& failure) {
    EXPECT_STREQ(failure.what(), "the program 'pelmora-no-such-program' is not installed");
    EXPECT_THAT(failure.remedy(), testing::HasSubstr("some-package"));
  }
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
