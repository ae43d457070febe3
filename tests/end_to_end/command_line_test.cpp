// The command line itself: help, version, usage errors, output.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

#include <regex>
#include <string>
#include <vector>

namespace pelmora::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class command_line : public CommandTest {
 protected:
  // The program lists its commands on the man page, one reference each: \fBpelmora\-show\fR(1)
  [[nodiscard]] std::vector<std::string> commands() const {
    const std::string page = done({"man"}).output;
    const std::string start = "\\fBpelmora\\-", end = "\\fR(1)";
    std::vector<std::string> names;
    for (auto at = page.find(start); at != std::string::npos; at = page.find(start, at)) {
      at += start.size();
      names.push_back(page.substr(at, page.find(end, at) - at));
      std::erase(names.back(), '\\');
    }
    EXPECT_GT(names.size(), 10U);
    return names;
  }
};

TEST_F(command_line, helps_and_tells_the_exit_codes) {
  const std::string help = done({"--help"}).output;
  for (const char* command : {"init", "import", "raw", "fit", "show", "calibrate", "delete",
                              "history", "restore", "doctor"}) {
    EXPECT_THAT(help, HasSubstr(command));
    EXPECT_THAT(done({command, "--help"}).output, HasSubstr("CURVES")) << command;
  }
  EXPECT_THAT(
      help, AllOf(HasSubstr("0 done"), HasSubstr("7 range outside"), HasSubstr("8 not confirmed")));
}

TEST_F(command_line, has_help_of_80_columns) {
  for (const Arguments& command : std::vector<Arguments>{{"--help"},
                                                         {"fit", "--help"},
                                                         {"calibrate", "--help"},
                                                         {"raw", "--help"},
                                                         {"import", "--help"},
                                                         {"delete", "--help"},
                                                         {"history", "--help"},
                                                         {"restore", "--help"},
                                                         {"doctor", "--help"}}) {
    std::istringstream lines(done(command).output);
    for (std::string line; std::getline(lines, line);)
      EXPECT_LE(line.size(), 80U) << command[0] << ": " << line;
  }
}

TEST_F(command_line, tells_its_version) {
  EXPECT_TRUE(
      std::regex_match(done({"--version"}).output, std::regex("pelmora \\d+\\.\\d+\\.\\d+\n")));
}

TEST_F(command_line, points_at_the_help_for_a_wrong_line) {
  EXPECT_THAT(trouble(2, {}), HasSubstr("see 'pelmora --help'"));
  EXPECT_THAT(trouble(2, {"frobnicate"}), HasSubstr("see 'pelmora --help'"));
  EXPECT_THAT(trouble(2, {"init"}), HasSubstr("see 'pelmora init --help'"));
  EXPECT_THAT(trouble(2, {"fit", curves, "--meter", "P"}),
              AllOf(HasSubstr("--series"), HasSubstr("pelmora fit --help")));
  EXPECT_THAT(trouble(2, {"show", curves, "--frob"}), HasSubstr("--frob"));
}

TEST_F(command_line, suggests_the_command_or_option_that_was_meant) {
  EXPECT_THAT(trouble(2, {"shwo", curves}), HasSubstr("did you mean 'show'?"));
  EXPECT_THAT(trouble(2, {"show", curves, "--metre", "P"}), HasSubstr("did you mean '--meter'?"));
}

TEST_F(command_line, names_what_it_does_not_know_rather_than_what_is_missing_for_it) {
  EXPECT_THAT(trouble(2, {"show", curves, "--metr", "P"}),
              HasSubstr("'pelmora show' has no option '--metr'; did you mean '--meter'?"));
  EXPECT_THAT(trouble(2, {"fit", curves, "--meter", "P", "--seris=X"}),
              HasSubstr("'pelmora fit' has no option '--seris'; did you mean '--series'?"));
  EXPECT_THAT(trouble(2, {"--vresion"}),
              HasSubstr("'pelmora' has no option '--vresion'; did you mean '--version'?"));
  EXPECT_THAT(trouble(2, {"show", curves, "P"}),
              HasSubstr("'P' is one argument too many for 'pelmora show'; see"));
}

TEST_F(command_line, has_colour_on_a_terminal_unless_the_user_wants_none) {
  const auto onTerminal = [&](const std::string& environment) {
    const std::string program =
        "env " + environment + " " + PELMORA_PROGRAM + " show " + scratch.file("none.db");
    const std::string line =
        "script -qec '" + program + "' " + scratch.file("terminal") + " >/dev/null 2>&1";
    EXPECT_NE(std::system(line.c_str()), 0);
    return bytesOf(scratch.file("terminal"));
  };
  EXPECT_THAT(onTerminal("-u NO_COLOR TERM=xterm"), HasSubstr("\033[1;31mpelmora: error:\033[0m"));
  EXPECT_THAT(onTerminal("NO_COLOR=1 TERM=xterm"), testing::Not(HasSubstr("\033[")));
  EXPECT_THAT(onTerminal("-u NO_COLOR TERM=dumb"), testing::Not(HasSubstr("\033[")));
}

TEST_F(command_line, offers_every_command_to_ask_nothing) {
  for (const std::string& command : commands())
    EXPECT_THAT(done({command, "--help"}).output, HasSubstr("--no-input")) << command;
}

// Without a configuration, the program leaves out the options of the other commands.
TEST_F(command_line, has_the_same_help_of_a_command_with_and_without_a_configuration) {
  for (const std::string& command : commands()) {
    EXPECT_EQ(done({command, "--help"}).output,
              done({"--config", "/dev/null", command, "--help"}).output);
    EXPECT_EQ(trouble(2, {command, "--unknown"}),
              trouble(2, {"--config", "/dev/null", command, "--unknown"}));
  }
  EXPECT_EQ(done({"--version"}).output, done({"--config", "/dev/null", "--version"}).output);
}

TEST_F(command_line, asks_nothing_at_a_terminal_that_wants_no_input) {
  init();
  done(
      {"raw", curves, write("p.csv", "1,2\n3,4\n"), "--meter", "P", "--register", "--series", "S"});
  const PseudoTerminal terminal;
  terminal.type("yes\n");
  const CommandResult result =
      runAt(terminal, {"delete", curves, "--meter", "P", "--series", "S", "--no-input"});
  EXPECT_EQ(result.exitCode, 2) << result.error;
  EXPECT_EQ(
      done({"show", curves, "--meter", "P", "--series", "S", "--json"}).json()["raw"][0].size(),
      2U);
}

TEST_F(command_line, names_an_option_with_a_wrong_value) {
  const Arguments fit{"fit", curves, "--meter", "P", "--series", "S"};
  const auto with = [&](const std::string& option, const std::string& value) {
    Arguments arguments = fit;
    arguments.insert(arguments.end(), {option, value});
    return trouble(2, arguments);
  };
  EXPECT_THAT(with("--min", "1,5"), AllOf(HasSubstr("--min"), HasSubstr("1.5")));
  EXPECT_THAT(with("--max", "nan"), HasSubstr("--max"));
  EXPECT_THAT(with("--points", "1"), AllOf(HasSubstr("--points"), HasSubstr("2 to 32767")));
  EXPECT_THAT(with("--points", "32768"), HasSubstr("--points"));
  EXPECT_THAT(with("--band=-1", "--json"), HasSubstr("--band"));
  EXPECT_THAT(with("--on-range", "maybe"), HasSubstr("--on-range"));
  EXPECT_THAT(trouble(2, {"show", curves, "--series", "S"}), HasSubstr("--meter"));
}

TEST_F(command_line, refuses_a_range_from_large_to_small) {
  init();
  done(
      {"raw", curves, write("p.csv", "1,2\n3,4\n"), "--meter", "P", "--register", "--series", "S"});
  EXPECT_THAT(
      trouble(2, {"fit", curves, "--meter", "P", "--series", "S", "--min", "3", "--max", "1"}),
      HasSubstr("--min 3 is not below --max 1"));
}

TEST_F(command_line, shows_an_empty_database) {
  const CommandResult made = done({"init", curves, "--json"});
  EXPECT_EQ(made.json()["database"], curves);
  EXPECT_THAT(done({"show", curves}).output, HasSubstr("No meter"));
  EXPECT_EQ(done({"show", curves, "--json"}).json()["meters"].size(), 0U);
}

TEST_F(command_line, shows_the_report_as_it_is_stored) {
  initCalibrated();
  const CommandResult text = done({"show", curves, "--meter", "M1", "--series", "Rotor A"});
  EXPECT_THAT(text.output,
              AllOf(HasSubstr("Meter Serial Number: M1"), HasSubstr("Band Percentage = 0.3%")));
  EXPECT_EQ(text.output.find('\r'), std::string::npos);
  const auto json = done({"show", curves, "--meter", "M1", "--series", "Rotor A", "--json"}).json();
  EXPECT_THAT(json["report"].get<std::string>(), HasSubstr("Meter Serial Number: M1\r\n"));
}

TEST_F(command_line, fails_where_its_output_cannot_be_written) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "there is no /dev/full";
  init();
  const std::string line = std::string("'") + PELMORA_PROGRAM + "' show '" + curves +
                           "' >/dev/full 2>'" + scratch.file("error.txt") + "'";
  const int status = std::system(line.c_str());
  EXPECT_EQ(WEXITSTATUS(status), 1);
  EXPECT_THAT(bytesOf(scratch.file("error.txt")), HasSubstr("cannot be written"));
}

}  // namespace
}  // namespace pelmora::test
