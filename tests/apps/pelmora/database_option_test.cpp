// SPDX-License-Identifier: MIT
#include "apps/pelmora/options/database_option.h"

#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/options/program.h"

#include <gmock/gmock.h>

#include <string>

namespace pelmora::cli {
namespace {

using std::chrono::seconds;

// The help of --wait of a command that has this option.
std::string helpOfWait(DatabaseOption& curves) {
  Program program;
  Command command = program.add("show", "Show");
  addDatabase(command, curves);
  const ProgramDescription description = program.description();
  for (const OptionDescription& option : description.commands.at(0).options) {
    if (option.name() == "--wait") return option.help;
  }
  return "there is no --wait";
}

// Long enough for another program's import, short enough for a person who waits.
TEST(database_option, waits_for_a_lock_as_long_as_its_help_says) {
  DatabaseOption curves;
  EXPECT_EQ(curves.wait, seconds(30));
  EXPECT_THAT(helpOfWait(curves), testing::HasSubstr("(default 30)"));
}

}  // namespace
}  // namespace pelmora::cli
