// Text files from spreadsheets and loggers, and runs that are imported again.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

namespace pelmora::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class raw_file : public CommandTest {
 protected:
  raw_file() { init(); }
  CommandResult raw(const std::string& text, const Arguments& more = {}) const {
    Arguments arguments{
        "raw", curves, write("points.csv", text), "--meter", "M1", "--register", "--series", "S"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run(arguments);
  }
  [[nodiscard]] nlohmann::json points() const {
    return done({"show", curves, "--meter", "M1", "--series", "S", "--json"}).json()["raw"][0];
  }
};

TEST_F(raw_file, of_a_spreadsheet_is_read_and_described_on_standard_error) {
  const CommandResult result =
      raw("Meter M1;;\r\nRoshko;Strouhal;\r\nHz/cSt;1/gal;\r\n10,5;2,25;\r\n20;2,5;\r\n;;\r\n");
  EXPECT_EQ(result.exitCode, 0) << result.error;
  EXPECT_EQ(result.error,
            "pelmora: note: file '" + scratch.file("points.csv") +
                "' was read with semicolons between fields, decimal comma, 1 title line, the "
                "header in line 2, units in line 3, 1 empty column, 1 empty row\n");
  EXPECT_EQ(points(), nlohmann::json::parse("[[10.5,2.25],[20,2.5]]"));
}

TEST_F(raw_file, that_is_plain_brings_no_note) {
  EXPECT_THAT(raw("Roshko,Strouhal\n10.5,2.25\n20,2.5\n").error, IsEmpty());
}

TEST_F(raw_file, is_read_as_the_options_say) {
  EXPECT_EQ(raw("x;y\n1.234;2\n5.678;3\n").exitCode, 5);
  EXPECT_EQ(raw("x;y\n1.234;2\n5.678;3\n", {"--decimal", "comma"}).exitCode, 0);
  EXPECT_EQ(points(), nlohmann::json::parse("[[1234,2],[5678,3]]"));
  EXPECT_EQ(raw("x|y\n1.5|2\n5|3\n", {"--separator", "|"}).exitCode, 0);
  EXPECT_EQ(points(), nlohmann::json::parse("[[1.5,2],[5,3]]"));
}

TEST_F(raw_file, of_flows_and_frequencies_becomes_points) {
  const CommandResult result = raw("Flow [gpm],Freq [Hz],Visc [cSt]\n3,60,1.5\n6,120,1.5\n",
                                   {"--columns", "q=Flow,f=Freq,nu=Visc"});
  EXPECT_EQ(result.exitCode, 0) << result.error;
  EXPECT_THAT(result.error, AllOf(HasSubstr("Roshko in Hz/cSt and Strouhal in pulses/gal"),
                                  HasSubstr("without a correction")));
  EXPECT_EQ(points(), nlohmann::json::parse("[[40,1200],[80,1200]]"));
}

TEST_F(raw_file, in_another_unit_of_viscosity_is_noticed_beside_the_other_parts) {
  EXPECT_THAT(raw("Roshko,Strouhal\n10.5,2.25\n20,2.5\n").error, IsEmpty());
  const CommandResult far = raw("Roshko,Strouhal\n10500000,2.25\n20000000,2.5\n", {"--part", "2"});
  EXPECT_EQ(far.exitCode, 0);
  EXPECT_THAT(far.error, AllOf(HasSubstr("line 2, column Roshko"), HasSubstr("1e+06 times")));
  EXPECT_THAT(raw("Roshko,Strouhal\n10,2\n900,2\n", {"--part", "3"}).error, IsEmpty());
}

TEST_F(raw_file, with_one_viscosity_in_another_unit_is_noticed_at_its_line) {
  const CommandResult far = raw("q [gpm],f [Hz],nu [cSt]\n3,60,1.5\n6,120,0.0000015\n9,180,1.5\n",
                                {"--columns", "q=q,f=f,nu=nu"});
  EXPECT_EQ(far.exitCode, 0);
  EXPECT_THAT(far.error, AllOf(HasSubstr("line 3, column nu [cSt]"), HasSubstr("the median")));
  EXPECT_THAT(far.error, Not(HasSubstr("line 2")));
}

TEST_F(raw_file, belongs_to_one_meter_with_and_without_blanks_around_its_name) {
  (void)raw("x,y\n1,2\n");
  (void)done({"raw", curves, scratch.file("points.csv"), "--meter", " M1 ", "--register",
              "--series", " S"});
  EXPECT_EQ(done({"show", curves, "--json"}).json()["meters"].size(), 1U);
}

class known_run : public CommandTest {
 protected:
  known_run() {
    init();
    done(twoFluids({"--stand-number", "3"}));
  }
  [[nodiscard]] CommandResult again(const Arguments& more) const {
    Arguments arguments{
        "import", curves, "--meter", "M1",    "--stand", data("stand-dual-rotor.csv"),
        "--job",  "1001", "--fluid", "spirit"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run(arguments);
  }
  [[nodiscard]] nlohmann::json spirit() const {
    const auto setups = run({"show", curves, "--meter", "M1", "--json"}).json()["setups"];
    for (const auto& setup : setups) {
      if (setup["fluid"] == "spirit") return setup;
    }
    return {};
  }
};

TEST_F(known_run, keeps_its_operator_and_stand_and_both_are_named) {
  const CommandResult result = again({"--operator", "Bob", "--stand-number", "5"});
  EXPECT_EQ(result.exitCode, 0) << result.error;
  EXPECT_THAT(result.output,
              AllOf(HasSubstr("keeps its operator Ada; Bob was given"),
                    HasSubstr("keeps its stand 3; 5 was given"), HasSubstr("--update")));
  EXPECT_EQ(spirit()["operator"], "Ada");
}

TEST_F(known_run, is_changed_with_update_and_restored) {
  const auto before = spirit();
  const CommandResult result =
      again({"--operator", "Bob", "--stand-number", "5", "--date", "2025-03-04", "--update"});
  EXPECT_EQ(result.exitCode, 0) << result.error;
  EXPECT_THAT(result.output, Not(HasSubstr("keeps its")));
  EXPECT_EQ(spirit()["operator"], "Bob");
  EXPECT_EQ(spirit()["stand"], 5);
  EXPECT_THAT(spirit()["date"].get<std::string>(), HasSubstr("2025"));
  const auto newest = done({"history", curves, "--json"}).json()["entries"][0]["entry"];
  done({"restore", curves, std::to_string(newest.get<int>())});
  EXPECT_EQ(spirit(), before);
}

TEST_F(known_run, with_a_viscosity_in_another_unit_is_noticed_by_job_and_line) {
  const auto importing = [&](const std::string& viscosity) {
    std::string text = "JobRecordID,V1,V2,V3,V4,V5,V12\n";
    for (int point = 1; point <= 5; ++point) {
      text += "7,10,2,10," + std::to_string(9000 * point) + "," + (point < 3 ? viscosity : "1.5") +
              ",70\n";
    }
    return run({"import", curves, "--meter", "M1", "--new-calibration", "--stand",
                write("stand.csv", text), "--job", "7", "--fluid", "spirit"})
        .error;
  };
  EXPECT_THAT(importing("1.5"), Not(HasSubstr("check the unit")));
  EXPECT_THAT(importing("0.0000015"),
              AllOf(HasSubstr("job 7 (spirit), point 2 (line 3)"), HasSubstr("V5 (viscosity)")));
}

TEST_F(known_run, has_no_date_that_does_not_exist) {
  EXPECT_THAT(
      trouble(5, {"import", curves, "--meter", "M1", "--stand", data("stand-dual-rotor.csv"),
                  "--job", "1001", "--fluid", "spirit", "--date", "2025-02-30"}),
      HasSubstr("'2025-02-30' is not a date"));
}

}  // namespace
}  // namespace pelmora::test
