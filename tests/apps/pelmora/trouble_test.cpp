// SPDX-License-Identifier: MIT
#include "apps/pelmora/trouble.h"

#include <gtest/gtest.h>

namespace pelmora::cli {
namespace {

TEST(one_line, turns_line_breaks_into_one_blank) {
  EXPECT_EQ(oneLine("Error in X\r\nwhy\n\n\tso\n"), "Error in X why so");
}

TEST(one_line, makes_control_characters_harmless) {
  EXPECT_EQ(oneLine("a\x1b[31mb\x7f"), "a?[31mb?");
}

TEST(error_line, joins_what_and_remedy) {
  EXPECT_EQ(errorLine({ExitCode::badInput, "the file is empty.", "name another"}),
            "pelmora: error: the file is empty; name another");
}

TEST(error_line, ends_without_a_remedy_where_there_is_none) {
  EXPECT_EQ(errorLine({ExitCode::unexpected, "what.", ""}), "pelmora: error: what.");
}

TEST(exit_codes, keep_their_numbers) {
  EXPECT_EQ(static_cast<int>(ExitCode::ok), 0);
  EXPECT_EQ(static_cast<int>(ExitCode::unexpected), 1);
  EXPECT_EQ(static_cast<int>(ExitCode::usage), 2);
  EXPECT_EQ(static_cast<int>(ExitCode::database), 3);
  EXPECT_EQ(static_cast<int>(ExitCode::unknownName), 4);
  EXPECT_EQ(static_cast<int>(ExitCode::badInput), 5);
  EXPECT_EQ(static_cast<int>(ExitCode::notFitted), 6);
  EXPECT_EQ(static_cast<int>(ExitCode::rangeRefused), 7);
}

}  // namespace
}  // namespace pelmora::cli
