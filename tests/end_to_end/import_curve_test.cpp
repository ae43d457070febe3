// Result files of the outside program, brought in at the command line.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"
#include "tests/support/plain_database.h"

namespace pelmora::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class import_curve : public CommandTest {
 protected:
  import_curve() {
    init();
    done({"raw", curves, write("points.csv", "1,2\n3,4\n"), "--meter", "M1", "--register",
          "--series", "S"});
  }
  std::string results(const std::string& points) const {
    return write("results.txt", "one\r\ntwo\r\nthree\r\n" + points);
  }
  Arguments command(const std::string& file) const {
    return {"import-curve", curves, file, "--meter", "M1", "--series", "S"};
  }
  static Arguments json(Arguments arguments) {
    arguments.emplace_back("--json");
    return arguments;
  }
  // The points merged for the series, as the program shows them.
  nlohmann::json stored() const {
    return done({"show", curves, "--meter", "M1", "--series", "S", "--json"}).json();
  }
  // A refused file stays, and nothing in the database changes.
  void expectRefused(int exitCode, const std::string& file, const std::string& why) const {
    const auto before = stored();
    const std::string contents = bytesOf(file);
    EXPECT_THAT(trouble(exitCode, command(file)), HasSubstr(why));
    EXPECT_EQ(bytesOf(file), contents);
    EXPECT_FALSE(std::filesystem::exists(file + ".sav"));
    EXPECT_EQ(stored(), before);
  }
};

TEST_F(import_curve, stores_the_points_and_keeps_the_file_under_another_name) {
  const std::string file = results("20.5 6\r\n10.25   5\r\n");
  EXPECT_THAT(done(command(file)).output,
              AllOf(HasSubstr("Read 2 points"), HasSubstr("results.txt.sav")));
  EXPECT_FALSE(std::filesystem::exists(file));
  EXPECT_THAT(bytesOf(file + ".sav"), HasSubstr("20.5 6"));
  EXPECT_THAT(stored().dump(), AllOf(HasSubstr("10.25"), HasSubstr("20.5")));
}

TEST_F(import_curve, tells_the_sorted_points_as_json) {
  Arguments arguments = command(results("20 6\r\n10 5\r\n"));
  arguments.emplace_back("--json");
  const auto value = done(arguments).json();
  EXPECT_EQ(value["series"], "S");
  EXPECT_EQ(value["points"].size(), 2U);
  EXPECT_LT(value["points"].dump().find("10"), value["points"].dump().find("20"));
}

TEST_F(import_curve, refuses_a_file_with_a_text_for_a_number) {
  expectRefused(5, results("10 five\r\n20 6\r\n"), "Type mismatch");
}

TEST_F(import_curve, refuses_a_file_of_headers_alone) {
  expectRefused(5, results(""), "results.txt");
}

TEST_F(import_curve, refuses_a_single_point) { expectRefused(5, results("10 5\r\n"), "1 point"); }

TEST_F(import_curve, refuses_a_decimal_comma) {
  expectRefused(5, results("10,5 5\r\n20 6\r\n"), "Type mismatch");
}

TEST_F(import_curve, refuses_a_missing_file) {
  EXPECT_THAT(trouble(5, command(scratch.file("nothing.txt"))), HasSubstr("nothing.txt"));
}

TEST_F(import_curve, refuses_an_unknown_series_and_leaves_the_file) {
  const std::string file = results("10 5\r\n20 6\r\n");
  EXPECT_THAT(trouble(4, {"import-curve", curves, file, "--meter", "M1", "--series", "T"}),
              HasSubstr("'T'"));
  EXPECT_TRUE(std::filesystem::exists(file));
}

TEST_F(import_curve, never_renames_over_an_older_file) {
  const std::string file = results("20 6\r\n10 5\r\n");
  write("results.txt.sav", "the first");
  std::filesystem::create_symlink("nowhere", file + ".sav.1");
  EXPECT_EQ(done(json(command(file))).json()["keptFile"], file + ".sav.2");
  EXPECT_EQ(bytesOf(file + ".sav"), "the first");
  EXPECT_THAT(bytesOf(file + ".sav.2"), HasSubstr("20 6"));
  EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(import_curve, leaves_the_file_where_nothing_can_be_stored) {
  PlainDatabase(curves).alter(
      isRunOnServer()
          ? "CREATE FUNCTION refuse() RETURNS trigger LANGUAGE plpgsql AS "
            "'BEGIN RAISE EXCEPTION ''no room''; END';"
            "CREATE TRIGGER no_room BEFORE INSERT ON merge EXECUTE FUNCTION refuse()"
          : "CREATE TRIGGER no_room BEFORE INSERT ON merge BEGIN SELECT RAISE(ABORT, 'no room'); "
            "END");
  expectRefused(3, results("20 6\r\n10 5\r\n"), "no room");
}

// The longest name that a file may have: it has no room for ".sav".
TEST_F(import_curve, renames_the_file_only_after_its_points_are_stored) {
  const std::string file = write(std::string(255, 'r'), "one\r\ntwo\r\nthree\r\n20 6\r\n10 5\r\n");
  EXPECT_THAT(trouble(1, command(file)),
              AllOf(HasSubstr("the points are stored"), HasSubstr("cannot be renamed")));
  EXPECT_EQ(stored()["merged"].size(), 2U);
  EXPECT_TRUE(std::filesystem::exists(file));
}

TEST_F(import_curve, of_a_dry_run_names_the_file_and_leaves_it) {
  const std::string file = results("20 6\r\n10 5\r\n");
  const auto before = stored();
  Arguments arguments = command(file);
  arguments.emplace_back("--dry-run");
  EXPECT_THAT(done(arguments).output, HasSubstr("would be kept as"));
  EXPECT_TRUE(std::filesystem::exists(file));
  EXPECT_FALSE(std::filesystem::exists(file + ".sav"));
  EXPECT_EQ(stored(), before);
}

}  // namespace
}  // namespace pelmora::test
