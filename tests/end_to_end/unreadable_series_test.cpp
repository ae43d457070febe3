// Stored data that cannot be read: never a series left out in silence, never exit code 0.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"
#include "tests/support/plain_database.h"

#include <bit>
#include <cmath>
#include <cstdint>

namespace pelmora::test {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

// Meter "M1" with the fitted series "A", "B" and "C" of 600 points: each fills pages of its own.
class unreadable_series : public CommandTest {
 protected:
  unreadable_series() {
    init();
    for (const std::string series : {"A", "B", "C"}) {
      std::string text = "x,y\n";
      for (int i = 0; i < 600; ++i) {
        const double x = std::pow(10, 1 + i * 0.003);
        text += std::to_string(x) + "," + strouhal(series, i) + "\n";
      }
      done(
          {"raw", curves, write("s.csv", text), "--meter", "M1", "--register", "--series", series});
    }
    done({"refit", curves, "--all"});
  }
  static std::string strouhal(const std::string& series, int i) {
    return std::to_string((series == "B" ? 200 : 100) + 10 * (1 + i * 0.003));
  }
  void sql(const std::string& statements) const { PlainDatabase(curves).run(statements); }
  // Overwrites the start of every page that holds the number, as a bad disk would.
  void damagePageOf(double number) const {
    std::string content = bytesOf(curves), bytes;
    const auto bits = std::bit_cast<std::uint64_t>(number);
    for (int shift = 56; shift >= 0; shift -= 8) bytes += static_cast<char>(bits >> shift & 0xff);
    constexpr std::size_t pageSize = 4096;
    std::size_t pages = 0;
    for (std::size_t at = 0; (at = content.find(bytes, at)) != std::string::npos; ++pages) {
      content.replace(at / pageSize * pageSize, 64, std::string(64, '\xff'));
      at = (at / pageSize + 1) * pageSize;
    }
    ASSERT_GT(pages, 0U);
    write("curves.db", content);
  }
  // Every command that reads the whole calibration says which series, and ends with 5.
  void expectNamed(const std::string& series, const std::string& others = "") const {
    const std::string report = scratch.file("r.html");
    for (const Arguments& command : std::vector<Arguments>{
             {"show", curves, "--meter", "M1"},
             {"export", curves, "--meter", "M1"},
             {"report", curves, "--meter", "M1", "-o", report},
         }) {
      EXPECT_THAT(trouble(5, command), AllOf(HasSubstr("series '" + series + "'"),
                                             HasSubstr("cannot be read"), HasSubstr(others)))
          << command[0];
      EXPECT_EQ(run(command).output, "");
    }
    EXPECT_FALSE(std::filesystem::exists(report));
    const CommandResult refit = run({"refit", curves, "--all", "--json"});
    EXPECT_EQ(refit.exitCode, 5) << refit.output;
    EXPECT_THAT(refit.error, AllOf(HasSubstr("series '" + series + "'"), HasSubstr(others)));
    const json printed = refit.json();
    for (const json& entry : printed["series"]) {
      const bool isRead = entry["series"] != series &&
                          others.find(entry["series"].get<std::string>()) == std::string::npos;
      EXPECT_EQ(entry["outcome"], isRead ? "kept" : "unreadable") << entry;
    }
  }
};

TEST_F(unreadable_series, with_an_empty_point_are_named) {
  sql(R"(Update raw1 set "Strouhal"=NULL where "seriesID"=2 and "Roshko">100 and "Roshko"<101)");
  expectNamed("B");
}

TEST_F(unreadable_series, with_texts_for_numbers_are_all_named) {
  sql("Update raw1 set Roshko='far' where seriesID<>2 and rowid%100=7");
  expectNamed("A", "'C'");
}

TEST_F(unreadable_series, with_a_curve_of_texts_are_named) {
  sql("Update curve set Roshko='far' where seriesID=2");
  expectNamed("B");
}

TEST_F(unreadable_series, with_fit_settings_that_are_no_numbers_end_no_refit_of_the_others) {
  sql("Update pelmora_fit_settings set BandPercent='wide' where SeriesID=1");
  const CommandResult refit = run({"refit", curves, "--all", "--json"});
  EXPECT_EQ(refit.exitCode, 5);
  EXPECT_THAT(refit.error, HasSubstr("fit settings of series 'A'"));
  EXPECT_EQ(refit.json()["series"][0]["outcome"], "unreadable");
  EXPECT_EQ(refit.json()["series"][1]["outcome"], "kept");
  EXPECT_THAT(trouble(5, {"report", curves, "--meter", "M1", "-o", scratch.file("r.html")}),
              HasSubstr("fit settings of series 'A'"));
}

TEST_F(unreadable_series, without_a_name_are_not_left_out) {
  sql(R"(Update series set name=NULL where "ID"=2)");
  for (const Arguments& command : std::vector<Arguments>{{"show", curves},
                                                         {"show", curves, "--meter", "M1"},
                                                         {"export", curves, "--meter", "M1"},
                                                         {"refit", curves, "--meter", "M1"}}) {
    const CommandResult result = run(command);
    EXPECT_EQ(result.exitCode, 5) << command[0] << result.output;
    EXPECT_THAT(result.error, AllOf(HasSubstr("'M1'"), HasSubstr("no name"))) << command[0];
  }
}

TEST_F(unreadable_series, of_a_calibration_without_a_number_are_not_left_out) {
  for (const std::string number : {"100000", "'first'"}) {
    if (isRunOnServer() && number == "'first'") continue;  // which its column refuses
    sql(R"(Update meter set "ReCalID"=)" + number);
    EXPECT_THAT(trouble(5, {"show", curves}), HasSubstr("'M1'")) << number;
    EXPECT_EQ(run({"refit", curves, "--all"}).exitCode, 5) << number;
  }
}

// The import derives the parts of its own runs again. Another part stays as it is.
TEST_F(unreadable_series, among_those_that_an_import_derives_end_a_calibration_with_a_name) {
  done(twoFluids());
  done({"raw", curves, write("p.csv", "1,2\n3,4\n"), "--meter", "M1", "--series", "Rotor B",
        "--part", "3"});
  sql(R"(Update raw3 set "Strouhal"=NULL)");
  const CommandResult result = run(twoFluids());
  EXPECT_EQ(result.exitCode, 5) << result.output;
  EXPECT_THAT(result.error, AllOf(HasSubstr("series 'Rotor B'"), HasSubstr("cannot be read")));
}

TEST_F(unreadable_series, on_a_damaged_page_are_named) {
  damagePageOf(std::stod(strouhal("B", 301)));  // no whole number: those are stored shorter
  expectNamed("B");
}

TEST_F(unreadable_series, of_a_table_with_other_columns_are_not_left_out) {
  PlainDatabase(curves).alter(R"(Alter table raw2 rename column "Strouhal" to "Other")");
  for (const Arguments& command : std::vector<Arguments>{{"show", curves, "--meter", "M1"},
                                                         {"export", curves, "--meter", "M1"},
                                                         {"refit", curves, "--all"}}) {
    const CommandResult result = run(command);
    EXPECT_THAT(result.exitCode, testing::AnyOf(3, 5)) << command[0] << result.output;
    EXPECT_THAT(result.error, HasSubstr("not a column of raw2")) << command[0];
  }
}

}  // namespace
}  // namespace pelmora::test
