// A run that a signal ends: undone, tidied up, and told in one line.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"
#include "tests/end_to_end/running_command.h"
#include "tests/support/held_database.h"
#include "tests/support/plain_database.h"

#include <algorithm>
#include <map>

namespace pelmora::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

std::string fortyPoints() {
  std::string text;
  for (int i = 1; i <= 40; ++i)
    text += std::to_string(i * 10) + "," + std::to_string(100 + i) + "\n";
  return text;
}

class interruption : public CommandTest {
 protected:
  interruption() {
    init();
    done({"raw", curves, write("s.csv", fortyPoints()), "--meter", "P", "--register", "--series",
          "S"});
    fs::create_directory(temporary);
    ::setenv("TMPDIR", temporary.c_str(), 1);
  }
  ~interruption() override { ::unsetenv("TMPDIR"); }

  // What there is among the temporary files.
  [[nodiscard]] std::ptrdiff_t entries() const {
    return std::distance(fs::directory_iterator(temporary), fs::directory_iterator());
  }
  // A fit that waits for an answer at the terminal.
  [[nodiscard]] RunningCommand waitingFit(const PseudoTerminal& terminal) const {
    return {{"fit", curves, "--meter", "P", "--series", "S", "--min", "1", "--max", "500"},
            {terminal.path(), "/dev/null", terminal.path()}};
  }
  static bool shows(const PseudoTerminal& terminal, const std::string& text) {
    std::string shown;
    return comesTrue([&] {
      shown += terminal.shown();
      return shown.find(text) != std::string::npos;
    });
  }
  static bool asks(const PseudoTerminal& terminal) { return shows(terminal, "[R]etry"); }

  const std::string temporary = scratch.file("temporary");
};

TEST_F(interruption, at_a_question_changes_nothing) {
  const std::map<int, int> codes{{SIGINT, 130}, {SIGTERM, 143}, {SIGHUP, 129}};
  for (const auto& [signal, code] : codes) {
    const PseudoTerminal terminal;
    RunningCommand command({"delete", curves, "--meter", "P", "--series", "S"},
                           {terminal.path(), "/dev/null", terminal.path()});
    ASSERT_TRUE(shows(terminal, "[y/N]"));
    command.send(signal);
    EXPECT_EQ(command.end(), code);
    EXPECT_THAT(terminal.shown(), HasSubstr("interrupted: nothing was stored"));
  }
  const auto shown = done({"show", curves, "--meter", "P", "--series", "S", "--json"}).json();
  EXPECT_EQ(shown["raw"][0].size(), 40U);
}

TEST_F(interruption, of_a_fit_changes_nothing) {
  const PseudoTerminal terminal;
  RunningCommand command = waitingFit(terminal);
  ASSERT_TRUE(asks(terminal));
  EXPECT_EQ(entries(), 0) << "a fit needs no temporary folder";
  command.send(SIGTERM);
  EXPECT_EQ(command.end(), 143);
  EXPECT_THAT(terminal.shown(), HasSubstr("interrupted: nothing was stored"));
}

TEST_F(interruption, of_a_wait_for_a_lock_changes_nothing) {
  const HeldDatabase other(curves, Held::againstAll);
  const PseudoTerminal terminal;
  RunningCommand command(
      {"raw", curves, scratch.file("s.csv"), "--meter", "P", "--series", "T", "--wait", "3600"},
      {terminal.path(), "/dev/null", terminal.path()});
  EXPECT_TRUE(shows(terminal, "waiting for"));
  command.send(SIGINT);
  EXPECT_EQ(command.end(), 130);
  EXPECT_THAT(terminal.shown(), HasSubstr("interrupted: nothing was stored"));
}

// Without an answer to the signal, the draws for all values would last longer than any test may.
TEST_F(interruption, of_a_monte_carlo_check_ends_it) {
  done({"fit", curves, "--meter", "P", "--series", "S", "--band", "5"});
  std::vector<std::string> arguments{"evaluate", curves, "--meter",       "P",
                                     "--series", "S",    "--monte-carlo", "100000000"};
  for (int i = 0; i < 20000; ++i) arguments.push_back(std::to_string(20 + i * 0.01));
  RunningCommand command(arguments, {});
  ASSERT_TRUE(comesTrue([&] { return command.processorSeconds() > 1; }));
  command.send(SIGINT);
  EXPECT_EQ(command.end(), 130);
}

TEST_F(interruption, that_comes_twice_ends_at_once) {
  const PseudoTerminal terminal;
  RunningCommand command = waitingFit(terminal);
  ASSERT_TRUE(asks(terminal));
  command.send(SIGSTOP);  // both come before it can act on the first
  command.send(SIGINT);
  command.send(SIGTERM);
  command.send(SIGCONT);
  const int code = command.end();
  EXPECT_TRUE(code == 130 || code == 143) << code;
  EXPECT_THAT(terminal.shown(), HasSubstr("ended at once"));
}

TEST_F(interruption, that_the_process_was_started_to_ignore_is_ignored) {
  const std::string script = write("ignore.sh",
                                   "trap '' HUP\n\"$1\" delete \"$2\" --meter P "
                                   "--series S --dry-run >/dev/null &\n"
                                   "kill -HUP $!\nwait $!\n");
  EXPECT_EQ(std::system(("sh '" + script + "' '" PELMORA_PROGRAM "' '" + curves + "'").c_str()), 0);
}

class refit_interruption : public CommandTest {
 protected:
  static constexpr int seriesCount = 3000;
  refit_interruption() {
    init();
    done({"raw", curves, write("s.csv", fortyPoints()), "--meter", "P", "--register", "--series",
          "S"});
    const PlainDatabase database(curves);
    database.run(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
        std::to_string(seriesCount - 1) +
        ") INSERT INTO series (name, meterid) SELECT 'S' || i, s.meterid FROM n, (SELECT meterid "
        "FROM series) s");
    database.run(R"(INSERT INTO raw1 ("seriesID", "Roshko", "Strouhal") )"
                 R"(SELECT series."ID", r."Roshko", r."Strouhal" )"
                 R"(FROM series, (SELECT * FROM raw1) r WHERE series.name <> 'S')");
  }
  [[nodiscard]] std::int64_t storedCurves() const {
    return PlainDatabase(curves).number(R"(SELECT count(DISTINCT "seriesID") FROM curve)");
  }
};

TEST_F(refit_interruption, tells_how_many_series_are_stored) {
  const std::string error = scratch.file("error");
  RunningCommand command({"refit", curves, "--all", "--jobs", "1"},
                         {"/dev/null", "/dev/null", error});
  ASSERT_TRUE(comesTrue([&] { return storedCurves() > 0; }));
  command.send(SIGTERM);
  EXPECT_EQ(command.end(), 143);
  const std::int64_t stored = storedCurves();
  EXPECT_LT(stored, seriesCount);
  EXPECT_EQ(bytesOf(error), "pelmora: error: interrupted: " + std::to_string(stored) + " of " +
                                std::to_string(seriesCount) +
                                " series are stored, the others are unchanged\n");
  if (isRunOnServer()) return;
  EXPECT_EQ(PlainDatabase(curves).rows("SELECT * FROM pragma_integrity_check"),
            std::vector<std::string>{"ok"});
}

}  // namespace
}  // namespace pelmora::test
