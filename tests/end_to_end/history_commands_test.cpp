// The commands history, restore and delete.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"
#include "tests/support/plain_database.h"

namespace pelmora::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class history_commands : public CommandTest {
 protected:
  history_commands() {
    init();
    for (const char* points : {"1,2\n3,4\n", "5,6\n7,8\n9,10\n", "11,12\n"}) store(points);
  }
  CommandResult store(const std::string& points, const std::string& series = "S") const {
    return done(
        {"raw", curves, write("p.csv", points), "--meter", "P", "--register", "--series", series});
  }
  [[nodiscard]] nlohmann::json show(const std::string& series = "S") const {
    return done({"show", curves, "--meter", "P", "--series", series, "--json"}).json();
  }
  [[nodiscard]] nlohmann::json raw() const { return show()["raw"][0]; }
  [[nodiscard]] std::vector<int> entries(const Arguments& more = {}) const {
    Arguments arguments{"history", curves, "--json"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    std::vector<int> ids;
    const auto list = done(arguments).json();
    for (const auto& entry : list["entries"]) ids.push_back(entry["entry"]);
    return ids;
  }
  void expect80Columns(const std::string& text) const {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
      EXPECT_LE(line.size(), 80U + scratch.path().string().size()) << line;
  }
};

TEST_F(history_commands, list_what_was_replaced_newest_first) {
  const auto list = done({"history", curves, "--json"}).json()["entries"];
  ASSERT_EQ(list.size(), 2U);
  EXPECT_EQ(list[0]["rows"]["raw1"], 3);
  EXPECT_EQ(list[1]["rows"]["raw1"], 2);
  EXPECT_EQ(list[1]["command"], "raw");
  EXPECT_EQ(list[1]["meter"], "P");
  EXPECT_EQ(list[1]["series"], "S");
  EXPECT_THAT(list[1]["changedAt"].get<std::string>(),
              testing::MatchesRegex("....-..-..T..:..:..Z"));
  const std::string text = done({"history", curves}).output;
  EXPECT_THAT(text, AllOf(HasSubstr("Raw"), HasSubstr("pelmora restore")));
  expect80Columns(text);
}

// 1,001 entries, of which only the oldest belongs to the series 'Oldest'.
TEST_F(history_commands, list_the_newest_thousand_and_say_that_there_are_older_ones) {
  PlainDatabase database(curves);
  database.run("UPDATE pelmora_history_entry SET \"SeriesName\" = 'Oldest' WHERE \"ID\" = 1");
  database.run(
      "WITH RECURSIVE n(i) AS (SELECT 101 UNION ALL SELECT i + 1 FROM n WHERE i < 1099) "
      "INSERT INTO pelmora_history_entry (\"ID\", \"ChangedAt\", \"Command\", \"SerialNumber\", "
      "\"ReCalID\", \"MeterID\", \"SeriesID\", \"SeriesName\", \"KeptTables\") "
      "SELECT i, '2026-01-01T00:00:00Z', 'fit', 'P', 0, 1, 1, 'S', 'curve' FROM n");
  const auto count = [](const std::string& text, const std::string& word) {
    std::size_t found = 0;
    for (std::size_t at = 0; (at = text.find(word, at)) != std::string::npos; at += word.size())
      ++found;
    return found;
  };
  const std::string newest = done({"history", curves}).output;
  EXPECT_EQ(count(newest, "  P  "), 1000U);
  EXPECT_THAT(newest, AllOf(HasSubstr("--all"), Not(HasSubstr("Oldest"))));
  expect80Columns(newest);
  const std::string all = done({"history", curves, "--all"}).output;
  EXPECT_EQ(count(all, "  P  "), 1001U);
  EXPECT_THAT(all, AllOf(HasSubstr("Oldest"), Not(HasSubstr("--all"))));
  EXPECT_EQ(entries().size(), 1001U);
  EXPECT_THAT(trouble(2, {"history", curves, "--all", "--prune", "--keep", "1"}),
              HasSubstr("--all"));
  done({"history", curves, "--prune", "--keep", "1000", "--yes"});
  EXPECT_THAT(done({"history", curves}).output, Not(HasSubstr("--all")));
}

TEST_F(history_commands, list_the_entries_of_one_series) {
  store("1,1\n2,2\n", "T");
  store("1,2\n2,3\n", "T");
  EXPECT_THAT(entries({"--meter", "P", "--series", "T"}), ElementsAre(3));
  EXPECT_THAT(entries({"--meter", "P", "--series", "s"}), ElementsAre(2, 1));
  EXPECT_THAT(entries({"--meter", "P", "--calibration", "1"}), ElementsAre());
  EXPECT_THAT(trouble(2, {"history", curves, "--series", "T"}), HasSubstr("--meter"));
}

TEST_F(history_commands, restore_and_undo_the_restoring) {
  const auto now = raw();
  const auto value = done({"restore", curves, "1", "--json"}).json();
  EXPECT_EQ(raw().size(), 2U);
  EXPECT_EQ(value["restored"][0]["rows"]["raw1"]["replaced"], 1);
  EXPECT_EQ(value["restored"][0]["rows"]["raw1"]["restored"], 2);
  done({"restore", curves, value["historyEntries"][0].dump()});
  EXPECT_EQ(raw(), now);
}

TEST_F(history_commands, restore_in_a_dry_run_changes_nothing) {
  const std::string before = bytesOf(curves);
  EXPECT_THAT(done({"restore", curves, "1", "--dry-run"}).output,
              AllOf(HasSubstr("raw part 1"), HasSubstr("nothing was changed")));
  EXPECT_EQ(bytesOf(curves), before);
}

TEST_F(history_commands, restore_names_what_it_cannot_do) {
  EXPECT_THAT(trouble(4, {"restore", curves, "99"}), HasSubstr("no history entry 99"));
  EXPECT_THAT(trouble(2, {"restore", curves, "one"}), HasSubstr("ENTRY"));
  done({"delete", curves, "--meter", "P", "--series", "S", "--yes"});
  EXPECT_THAT(trouble(5, {"restore", curves, "1"}), HasSubstr("has been deleted"));
  store("1,2\n");
  EXPECT_THAT(trouble(5, {"restore", curves, "3"}), HasSubstr("exists again"));
  EXPECT_EQ(raw().size(), 1U);
}

TEST_F(history_commands, restore_several_entries_or_none) {
  done({"delete", curves, "--meter", "P", "--series", "S", "--yes"});
  trouble(4, {"restore", curves, "3", "99"});
  EXPECT_THAT(trouble(4, {"show", curves, "--meter", "P", "--series", "S"}),
              HasSubstr("no series"));
  done({"restore", curves, "3", "1"});
  EXPECT_EQ(raw().size(), 2U);
}

TEST_F(history_commands, delete_a_series_and_bring_it_back) {
  store("1,1\n2,2\n", "T");
  const auto before = show();
  EXPECT_THAT(done({"delete", curves, "--meter", "P", "--series", "S", "--yes"}).output,
              HasSubstr("Deleted."));
  EXPECT_THAT(trouble(4, {"show", curves, "--meter", "P", "--series", "S"}),
              HasSubstr("no series 'S'"));
  EXPECT_EQ(show("T")["raw"][0].size(), 2U);
  done({"restore", curves, "3"});
  EXPECT_EQ(show(), before);
}

TEST_F(history_commands, delete_a_calibration_or_a_whole_meter) {
  done(twoFluids());
  done(twoFluids({"--new-calibration"}));
  const auto all = done({"show", curves, "--json"}).json();
  done({"delete", curves, "--meter", "M1", "--calibration", "0", "--yes"});
  EXPECT_THAT(trouble(4, {"show", curves, "--meter", "M1", "--calibration", "0"}),
              HasSubstr("no calibration 0"));
  const auto gone =
      done({"delete", curves, "--meter", "M1", "--whole-meter", "--yes", "--json"}).json();
  EXPECT_EQ(gone["deleted"].size(), 1U);
  EXPECT_EQ(gone["deleted"][0]["rows"]["standPoints"], 48);
  EXPECT_THAT(trouble(4, {"show", curves, "--meter", "M1"}), HasSubstr("no meter"));
  done({"restore", curves, "3", "4"});
  EXPECT_EQ(done({"show", curves, "--json"}).json(), all);
}

TEST_F(history_commands, delete_says_what_would_go) {
  const std::string before = bytesOf(curves);
  const auto value =
      done({"delete", curves, "--meter", "P", "--series", "S", "--dry-run", "--json"}).json();
  EXPECT_EQ(value["deleted"][0]["rows"]["raw1"], 1);
  EXPECT_EQ(value["dryRun"], true);
  EXPECT_EQ(bytesOf(curves), before);
}

TEST_F(history_commands, delete_needs_to_be_told_what) {
  EXPECT_THAT(trouble(2, {"delete", curves, "--meter", "P"}), HasSubstr("--whole-meter"));
  EXPECT_THAT(trouble(2, {"delete", curves, "--meter", "P", "--whole-meter", "--series", "S"}),
              HasSubstr("--whole-meter deletes all"));
  EXPECT_THAT(trouble(4, {"delete", curves, "--meter", "P", "--series", "Sx", "--yes"}),
              HasSubstr("no series 'Sx'"));
}

// A terminal for the program; what is typed comes from `answer`.
class asked_on_a_terminal : public history_commands {
 protected:
  [[nodiscard]] int answerWith(const std::string& answer) const {
    const std::string command =
        std::string(PELMORA_PROGRAM) + " delete " + curves + " --meter P --series S";
    const std::string line = "printf '" + answer + "\\n' | script -qec '" + command + "' " +
                             scratch.file("terminal") + " >/dev/null 2>&1";
    const int status = std::system(line.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
};

TEST_F(asked_on_a_terminal, delete_goes_on_with_yes_alone) {
  const auto before = raw();
  EXPECT_EQ(answerWith("n"), 8);
  EXPECT_THAT(bytesOf(scratch.file("terminal")),
              AllOf(HasSubstr("Delete this? [y/N]"), HasSubstr("not confirmed")));
  EXPECT_EQ(answerWith(""), 8);
  EXPECT_EQ(raw(), before);
  EXPECT_EQ(answerWith("y"), 0);
  EXPECT_THAT(trouble(4, {"show", curves, "--meter", "P", "--series", "S"}),
              HasSubstr("no series"));
}

TEST_F(history_commands, delete_asks_nobody_who_is_not_there) {
  const std::string before = bytesOf(curves);
  for (const Arguments& more : std::vector<Arguments>{{}, {"--no-input"}}) {
    Arguments arguments{"delete", curves, "--meter", "P", "--series", "S"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    EXPECT_EQ(run(arguments).exitCode, 2);
  }
  EXPECT_THAT(trouble(2, {"delete", curves, "--meter", "P", "--series", "S", "--json"}),
              HasSubstr("--yes"));
  EXPECT_EQ(bytesOf(curves), before);
}

TEST_F(history_commands, prune_old_entries) {
  EXPECT_THAT(trouble(2, {"history", curves, "--prune"}), HasSubstr("--older-than"));
  EXPECT_THAT(trouble(2, {"history", curves, "--keep", "1"}), HasSubstr("add --prune"));
  EXPECT_EQ(run({"history", curves, "--prune", "--keep", "1"}).exitCode, 2);
  EXPECT_THAT(entries(), ElementsAre(2, 1));
  done({"history", curves, "--prune", "--older-than", "1", "--yes"});
  EXPECT_THAT(entries(), ElementsAre(2, 1));
  EXPECT_THAT(done({"history", curves, "--prune", "--keep", "1", "--dry-run"}).output,
              HasSubstr("Dry run"));
  EXPECT_THAT(entries(), ElementsAre(2, 1));
  EXPECT_EQ(done({"history", curves, "--prune", "--keep", "1", "--yes", "--json"})
                .json()["removed"]
                .size(),
            1U);
  EXPECT_THAT(entries(), ElementsAre(2));
  EXPECT_EQ(trouble(4, {"restore", curves, "1"}).empty(), false);
}

TEST_F(history_commands, prune_by_age) {
  setenv("SOURCE_DATE_EPOCH", "4102444800", 1);  // the first day of 2100
  done({"history", curves, "--prune", "--older-than", "30", "--yes"});
  unsetenv("SOURCE_DATE_EPOCH");
  EXPECT_THAT(entries(), ElementsAre());
}

TEST_F(history_commands, are_empty_where_nothing_was_replaced) {
  const std::string path = scratch.file("new.db");
  done({"init", path});
  EXPECT_THAT(done({"history", path}).output, HasSubstr("Nothing"));
  EXPECT_EQ(done({"history", path, "--json"}).json()["entries"].size(), 0U);
}

}  // namespace
}  // namespace pelmora::test
