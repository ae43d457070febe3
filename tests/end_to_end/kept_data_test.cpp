// What commands replace is kept with them; a dry run and a change that fails leave all as it was.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"
#include "tests/support/plain_database.h"

#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <set>

namespace pelmora::test {
namespace {

using testing::HasSubstr;

// Everything in the database but the history itself.
std::string dump(const std::string& location) {
  std::string text;
  const PlainDatabase database(location);
  for (const char* table : {"meter", "series", "raw1", "raw2", "raw3", "raw4", "merge", "curve",
                            "DataFitResults", "CalSetup", "CalDataPoint", "Fluids", "Operator"}) {
    text += std::string(table) + "\n";
    for (const std::string& row : database.rows("SELECT * FROM \"" + std::string(table) + "\""))
      text += row + "\n";
  }
  return text;
}

class kept_data : public CommandTest {
 protected:
  kept_data() {
    initCalibrated();
    done({"raw", curves, write("p.csv", "1,2\n3,4\n5,6\n"), "--meter", "P", "--register",
          "--series", "S"});
  }
  // Every command that replaces stored data here.
  [[nodiscard]] std::vector<Arguments> changes() const {
    return {{"raw", curves, write("q.csv", "1,3\n2,5\n"), "--meter", "P", "--series", "S"},
            {"fit", curves, "--meter", "M1", "--series", "Rotor A", "--band", "0.5"},
            twoFluids(),
            {"import", curves, "--meter", "M1", "--stand", data("stand-dual-rotor.csv"), "--job",
             "1002", "--fluid", "spirit"},
            {"import-curve", curves, write("r.txt", "a\r\nb\r\nc\r\n1 2\r\n2 3\r\n"), "--meter",
             "M1", "--series", "Rotor A"}};
  }
  static Arguments with(Arguments arguments, const std::string& option) {
    arguments.push_back(option);
    return arguments;
  }
};

TEST_F(kept_data, comes_back_bit_by_bit_after_every_command) {
  for (const Arguments& change : changes()) {
    const std::string before = dump(curves);
    const auto entries = done(with(change, "--json")).json()["historyEntries"];
    ASSERT_EQ(entries.size(), 1U) << change[0];
    EXPECT_NE(dump(curves), before) << change[0];
    done({"restore", curves, entries[0].dump()});
    // Rows that come back stand behind those of other series in the file.
    const auto sorted = [](const std::string& text) {
      std::multiset<std::string> lines;
      std::istringstream stream(text);
      for (std::string line; std::getline(stream, line);) lines.insert(line);
      return lines;
    };
    const auto ofCommand = sorted(dump(curves));
    auto expected = sorted(before);
    // A set-up's fluid and operator are names that stay known.
    EXPECT_TRUE(std::includes(ofCommand.begin(), ofCommand.end(), expected.begin(), expected.end()))
        << change[0];
    EXPECT_LE(ofCommand.size(), expected.size() + 2) << change[0];
  }
}

TEST_F(kept_data, is_told_where_a_command_ends) {
  const std::string text = done(changes()[0]).output;
  EXPECT_THAT(text, HasSubstr("What was there before is kept"));
  EXPECT_THAT(text, HasSubstr("pelmora restore"));
}

TEST_F(kept_data, is_none_where_nothing_was_replaced) {
  const auto value =
      done({"raw", curves, scratch.file("p.csv"), "--meter", "P", "--series", "New", "--json"})
          .json();
  EXPECT_EQ(value["historyEntries"].size(), 0U);
}

TEST_F(kept_data, dry_runs_say_the_same_and_change_nothing) {
  for (const Arguments& change : changes()) {
    const std::string before = PlainDatabase(curves).contents();
    const auto dry = done(with(with(change, "--dry-run"), "--json")).json();
    EXPECT_EQ(dry["dryRun"], true) << change[0];
    EXPECT_EQ(dry["historyEntries"].size(), 0U) << change[0];
    EXPECT_THAT(done(with(change, "--dry-run")).output,
                AllOf(HasSubstr("nothing was changed"), Not(HasSubstr("Stored"))))
        << change[0];
    EXPECT_EQ(PlainDatabase(curves).contents(), before) << change[0];
    auto wet = done(with(change, "--json")).json();
    wet["dryRun"] = true;
    wet["historyEntries"] = nlohmann::json::array();
    EXPECT_EQ(dry, wet) << change[0];
  }
}

TEST_F(kept_data, dry_run_leaves_a_result_file_where_it_is) {
  done(with(changes()[4], "--dry-run"));
  EXPECT_TRUE(std::filesystem::exists(scratch.file("r.txt")));
  EXPECT_FALSE(std::filesystem::exists(scratch.file("r.txt.sav")));
}

TEST_F(kept_data, is_kept_in_a_database_that_has_no_history_yet) {
  const PlainDatabase database(curves);
  for (const std::string& table : database.rows(
           "SELECT name FROM sqlite_master WHERE name LIKE 'pelmora_history%' AND type = 'table'"))
    database.run("DROP TABLE " + table);
  const std::string before = dump(curves);
  done({"raw", curves, write("q.csv", "9,9\n8,8\n"), "--meter", "P", "--series", "S"});
  done({"restore", curves, "1"});
  EXPECT_EQ(dump(curves), before);
}

// The program with a file size that may not grow: a disk without room.
TEST_F(kept_data, stays_as_it_was_where_the_disk_is_full) {
  const std::string before = dump(curves);
  std::string points;
  for (int i = 1; i < 20000; ++i) points += std::to_string(i) + ",2.5\n";
  const std::string file = write("big.csv", points);
  rlimit unlimited{};
  getrlimit(RLIMIT_FSIZE, &unlimited);
  const auto size = static_cast<rlim_t>(std::filesystem::file_size(curves));
  const rlimit full{size + 8192, unlimited.rlim_max};
  signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &full);
  const CommandResult result = run({"raw", curves, file, "--meter", "P", "--series", "S"});
  setrlimit(RLIMIT_FSIZE, &unlimited);
  signal(SIGXFSZ, SIG_DFL);
  EXPECT_EQ(result.exitCode, 3) << result.error;
  EXPECT_THAT(result.error, HasSubstr("nothing was changed"));
  EXPECT_EQ(dump(curves), before);
}

// The program killed at many moments of its run.
TEST_F(kept_data, stays_whole_where_the_program_is_killed) {
  const std::string before = dump(curves);
  const Arguments change = twoFluids();
  int killed = 0;
  for (int wait_us = 2000; wait_us < 400000; wait_us = wait_us * 4 / 3) {
    std::vector<char*> arguments{const_cast<char*>(PELMORA_PROGRAM)};
    for (const std::string& argument : change)
      arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    const pid_t process = fork();
    if (process == 0) {
      if (std::freopen("/dev/null", "w", stdout) == nullptr) _exit(1);
      execv(PELMORA_PROGRAM, arguments.data());
      _exit(127);
    }
    usleep(static_cast<useconds_t>(wait_us));
    kill(process, SIGKILL);
    int status = 0;
    waitpid(process, &status, 0);
    const auto history = done({"history", curves, "--json"}).json()["entries"];
    if (!history.empty()) break;  // it had finished
    ++killed;
    EXPECT_EQ(dump(curves), before) << wait_us;
  }
  EXPECT_GT(killed, 5);
}

}  // namespace
}  // namespace pelmora::test
