// A series drawn in the terminal.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

namespace pelmora::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

std::size_t columnsOf(const std::string& line) {
  return static_cast<std::size_t>(std::count_if(line.begin(), line.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
  }));
}

class plot_command : public CommandTest {
 protected:
  plot_command() {
    init();
    done({"import", curves, "--meter", "M1", "--stand", data("stand-dual-rotor.csv"), "--job",
          "1001", "--fluid", "spirit", "--job", "1002", "--fluid", "glycol", "--operator", "Ada"});
  }
  std::string plot(const Arguments& more = {}) const {
    Arguments arguments{"plot", curves, "--meter", "M1", "--series", "Rotor A"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return done(arguments).output;
  }
};

TEST_F(plot_command, draws_the_points_of_each_fluid_without_colours_where_nobody_looks) {
  EXPECT_THAT(plot(), AllOf(HasSubstr("● spirit"), HasSubstr("▲ glycol"), Not(HasSubstr("\033["))));
}

TEST_F(plot_command, draws_curve_residuals_and_excluded_points) {
  done({"exclude", curves, "--meter", "M1", "--series", "Rotor A", "--part", "1", "--point", "12",
        "--reason", "trial"});
  ASSERT_EQ(run({"fit", curves, "--meter", "M1", "--series", "Rotor A", "--json"}).exitCode, 0);
  EXPECT_THAT(plot(), AllOf(HasSubstr("× excluded"), HasSubstr("Off the curve, %, band 0.3 %"),
                            HasSubstr("⠤")));
}

TEST_F(plot_command, fits_into_the_window) {
  setenv("COLUMNS", "61", 1);
  setenv("LINES", "30", 1);
  std::istringstream lines(plot());
  unsetenv("COLUMNS");
  unsetenv("LINES");
  std::size_t rows = 0;
  for (std::string line; std::getline(lines, line); ++rows) {
    if (rows > 0 && line.find("Series") == std::string::npos) {
      EXPECT_LE(columnsOf(line), 61U) << line;
    }
  }
  EXPECT_LE(rows, 30U);
  EXPECT_GE(rows, 25U);
}

TEST_F(plot_command, in_ascii_uses_nothing_else) {
  const std::string text = plot({"--ascii"});
  EXPECT_TRUE(std::all_of(text.begin(), text.end(), [](char c) {
    return c == '\n' || (c >= ' ' && c <= '~');
  })) << text;
  EXPECT_THAT(text, AllOf(HasSubstr("o spirit"), HasSubstr("x glycol")));
}

TEST_F(plot_command, says_that_the_curve_is_older_than_its_points) {
  ASSERT_EQ(run({"fit", curves, "--meter", "M1", "--series", "Rotor A", "--json"}).exitCode, 0);
  done({"exclude", curves, "--meter", "M1", "--series", "Rotor A", "--part", "1", "--point", "12",
        "--reason", "trial"});
  const CommandResult result = run({"plot", curves, "--meter", "M1", "--series", "Rotor A"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.error, HasSubstr("older than its raw points"));
}

}  // namespace
}  // namespace pelmora::test
