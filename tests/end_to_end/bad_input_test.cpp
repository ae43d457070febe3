// Bad input of every kind: one line, the right exit code, nothing changed.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"
#include "tests/support/plain_database.h"

#include <unistd.h>

namespace pelmora::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class bad_database : public CommandTest {
 protected:
  // What every command says of a database that cannot be used.
  void expectRefused(const std::string& path, const std::string& why) const {
    const std::string points = write("points.csv", "1,2\n3,4\n");
    for (const Arguments& command : std::vector<Arguments>{
             {"show", path},
             {"fit", path, "--meter", "M1", "--series", "S"},
             {"raw", path, points, "--meter", "M1", "--register", "--series", "S"},
             {"import", path, "--meter", "M1", "--stand", data("stand-dual-rotor.csv"), "--job",
              "1001", "--fluid", "f"}}) {
      EXPECT_THAT(trouble(3, command), AllOf(HasSubstr(path), HasSubstr(why))) << command[0];
    }
  }
};

TEST_F(bad_database, that_is_missing_is_not_made) {
  expectRefused(curves, "Could not find file");
  EXPECT_FALSE(std::filesystem::exists(curves));
}

TEST_F(bad_database, that_is_empty) { expectRefused(write("curves.db", ""), "the file is empty"); }

TEST_F(bad_database, that_is_no_database) {
  expectRefused(write("curves.db", "hello, world\n"), "not an SQLite database");
}

TEST_F(bad_database, that_is_a_folder) { expectRefused(scratch.path().string(), "it is a folder"); }

TEST_F(bad_database, that_belongs_to_another_program) {
  PlainSqlite(curves).run("CREATE TABLE notes (text)");
  expectRefused(curves, "meter");
}

TEST_F(bad_database, that_exists_already_is_not_made_anew) {
  init();
  done({"raw", curves, write("p.csv", "1,2\n"), "--meter", "P", "--register", "--series", "S"});
  EXPECT_THAT(trouble(3, {"init", curves}), HasSubstr("exists already"));
  EXPECT_EQ(done({"show", curves, "--json"}).json()["meters"].size(), 1U);
}

TEST_F(bad_database, whose_folder_is_missing_is_not_made) {
  EXPECT_THAT(trouble(3, {"init", scratch.file("none/curves.db")}),
              HasSubstr("folder does not exist"));
}

TEST_F(bad_database, that_may_not_be_written) {
  init();
  if (geteuid() == 0) GTEST_SKIP() << "root may write everything";
  std::filesystem::permissions(curves, std::filesystem::perms::owner_read);
  EXPECT_THAT(trouble(3, {"raw", curves, write("p.csv", "1,2\n"), "--meter", "P", "--register",
                          "--series", "S"}),
              HasSubstr("cannot be written"));
}

class unknown_name : public CommandTest {
 protected:
  unknown_name() {
    init();
    done({"raw", curves, write("p.csv", "1,2\n3,4\n"), "--meter", "Known", "--register", "--series",
          "Points"});
  }
};

TEST_F(unknown_name, of_a_meter_lists_the_meters) {
  for (const Arguments& command : std::vector<Arguments>{
           {"show", curves, "--meter", "Other"},
           {"fit", curves, "--meter", "Other", "--series", "Points"},
           {"raw", curves, scratch.file("p.csv"), "--meter", "Other", "--series", "Points"}}) {
    EXPECT_THAT(trouble(4, command), AllOf(HasSubstr("no meter 'Other'"), HasSubstr("'Known'")))
        << command[0];
  }
}

TEST_F(unknown_name, of_a_series_lists_the_series) {
  EXPECT_THAT(trouble(4, {"fit", curves, "--meter", "Known", "--series", "Pints"}),
              AllOf(HasSubstr("no series 'Pints'"), HasSubstr("did you mean 'Points'?")));
  EXPECT_THAT(trouble(4, {"show", curves, "--meter", "Known", "--series", "Pints"}),
              HasSubstr("no series 'Pints'"));
}

TEST_F(unknown_name, of_a_meter_suggests_the_nearest) {
  EXPECT_THAT(trouble(4, {"show", curves, "--meter", "Knwon"}), HasSubstr("did you mean 'Known'?"));
}

TEST_F(unknown_name, of_a_calibration) {
  EXPECT_THAT(trouble(4, {"show", curves, "--meter", "Known", "--calibration", "3"}),
              HasSubstr("no calibration 3"));
}

TEST_F(unknown_name, may_differ_in_case) {
  done({"show", curves, "--meter", "KNOWN", "--series", "points"});
}

TEST_F(unknown_name, that_would_break_a_statement_is_refused) {
  EXPECT_THAT(trouble(2, {"show", curves, "--meter", "x' or '1'='1"}), HasSubstr("apostrophe"));
  EXPECT_THAT(trouble(2, {"fit", curves, "--meter", "Known", "--series", "O'Hara"}),
              HasSubstr("apostrophe"));
}

class bad_points : public CommandTest {
 protected:
  bad_points() {
    init();
    done({"raw", curves, write("good.csv", "1,2\n3,4\n"), "--meter", "P", "--register", "--series",
          "S"});
    before = show();
  }
  ~bad_points() override { EXPECT_EQ(show(), before) << "what was stored has changed"; }
  nlohmann::json show() const {
    return done({"show", curves, "--meter", "P", "--series", "S", "--json"}).json();
  }
  std::string refusal(const std::string& text, const Arguments& more = {}) const {
    Arguments arguments{"raw", curves, write("bad.csv", text), "--meter", "P", "--series", "S"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return trouble(5, arguments);
  }
  nlohmann::json before;
};

TEST_F(bad_points, text_for_a_number) {
  EXPECT_THAT(refusal("x,y\n1,2\n3,four\n"),
              AllOf(HasSubstr("bad.csv', line 3, column y"), HasSubstr("'four'")));
}
TEST_F(bad_points, decimal_commas_between_commas) {
  EXPECT_THAT(refusal("x,y\n1,5,2,5\n"), HasSubstr("decimal point"));
}
TEST_F(bad_points, workbook) {
  EXPECT_THAT(
      refusal("PK\3\4........xl/workbook.xml"),
      AllOf(HasSubstr("bad.csv"), HasSubstr("Excel workbook (.xlsx)"), HasSubstr("as CSV")));
}
TEST_F(bad_points, roshko_number_that_cannot_be) {
  EXPECT_THAT(refusal("x,y\n1,2\n0,2\n"), HasSubstr("line 3, column x"));
}
TEST_F(bad_points, not_a_number) { EXPECT_THAT(refusal("1,2\n3,NaN\n"), HasSubstr("line 2")); }
TEST_F(bad_points, missing_column) {
  EXPECT_THAT(refusal("x,y\n1\n"), HasSubstr("line 2: 1 field instead of 2"));
}
TEST_F(bad_points, wrong_header) { EXPECT_THAT(refusal("a,b,c\n1,2,3\n"), HasSubstr("a, b, c")); }
TEST_F(bad_points, unknown_column) {
  EXPECT_THAT(refusal("a,b\n1,2\n", {"--x", "c", "--y", "b"}), HasSubstr("'c'"));
}
TEST_F(bad_points, empty_file) { EXPECT_THAT(refusal(""), HasSubstr("is empty")); }
TEST_F(bad_points, missing_file) {
  EXPECT_THAT(
      trouble(5, {"raw", curves, scratch.file("none.csv"), "--meter", "P", "--series", "S"}),
      HasSubstr("there is no file"));
}
TEST_F(bad_points, more_than_32767) {
  std::string text;
  for (int i = 0; i <= 32767; ++i) text += "1,2\n";
  EXPECT_THAT(refusal(text), HasSubstr("more than 32767 points"));
}

class stored_points : public CommandTest {};

TEST_F(stored_points, that_are_too_few_cannot_be_fitted) {
  init();
  done({"raw", curves, write("p.csv", "1,2\n"), "--meter", "P", "--register", "--series", "S"});
  EXPECT_THAT(trouble(5, {"fit", curves, "--meter", "P", "--series", "S"}),
              HasSubstr("no raw part of two points"));
}

TEST_F(stored_points, that_are_too_many_together_cannot_be_fitted) {
  init();
  std::string text;
  for (int i = 1; i <= 20000; ++i) text += std::to_string(i) + ",2\n";
  const std::string file = write("p.csv", text);
  done({"raw", curves, file, "--meter", "P", "--register", "--series", "S"});
  done({"raw", curves, file, "--meter", "P", "--series", "S", "--part", "2"});
  EXPECT_THAT(trouble(5, {"fit", curves, "--meter", "P", "--series", "S"}),
              HasSubstr("40000 raw points"));
}

TEST_F(stored_points, that_are_null_cannot_be_read) {
  init();
  done(
      {"raw", curves, write("p.csv", "1,2\n3,4\n"), "--meter", "P", "--register", "--series", "S"});
  PlainDatabase(curves).run(R"(UPDATE raw1 SET "Strouhal" = NULL WHERE "Roshko" = 3)");
  EXPECT_THAT(trouble(5, {"fit", curves, "--meter", "P", "--series", "S"}),
              HasSubstr("cannot be read"));
}

}  // namespace
}  // namespace pelmora::test
