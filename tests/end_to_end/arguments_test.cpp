// Values of options reach the command as they were given, and no option is taken for a value.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

namespace pelmora::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class arguments : public CommandTest {
 protected:
  arguments() { init(); }

  Arguments raw(const std::string& meter, const std::string& series) const {
    return {"raw",
            curves,
            write("p.csv", "1,2\n3,4\n"),
            "--register",
            "--json",
            "--meter=" + meter,
            "--series=" + series};
  }
};

TEST_F(arguments, never_take_the_next_option_for_an_empty_value) {
  Arguments import{
      "import", curves, "--meter",  "M1",       "--stand", data("stand-dual-rotor.csv"),
      "--job",  "1001", "--fluid=", "--dry-run"};
  EXPECT_THAT(trouble(2, import), HasSubstr("--fluid: the value is empty"));
  import[8] = "--fluid";
  EXPECT_THAT(trouble(2, import), AllOf(HasSubstr("--fluid: a value is missing before '--dry-run'"),
                                        HasSubstr("--fluid=--dry-run")));
  EXPECT_EQ(done({"show", curves, "--json"}).json()["meters"].size(), 0U);
}

TEST_F(arguments, refuse_an_empty_value_before_anything_is_deleted) {
  done(raw("M", "S"));
  for (const Arguments& series : std::vector<Arguments>{{"--series="}, {"--series", ""}}) {
    Arguments remove{"delete", curves, "--yes", "--meter", "M", "--calibration", "0"};
    remove.insert(remove.end(), series.begin(), series.end());
    EXPECT_THAT(trouble(2, remove), HasSubstr("--series: the value is empty"));
  }
  EXPECT_EQ(done({"show", curves, "--json"}).json()["meters"].size(), 1U);
}

TEST_F(arguments, refuse_an_empty_value_of_a_flag_and_of_the_program) {
  EXPECT_THAT(trouble(2, {"show", curves, "--json="}),
              HasSubstr("--json=: the option takes no value"));
  EXPECT_THAT(trouble(2, {"--config=", "show", curves}), HasSubstr("--config: the value is empty"));
}

TEST_F(arguments, pass_values_byte_for_byte) {
  for (const std::string name :
       {"[x]", "[a,b]", "[]", "\"quoted\"", "{}", "%%", "-5", "--json", "a=b", "#1"}) {
    const auto stored = done(raw(name, name)).json();
    EXPECT_EQ(stored["meter"]["serialNumber"], name);
    EXPECT_EQ(stored["series"], name);
    const auto shown =
        done({"export", curves, "--json", "--meter=" + name, "--series=" + name}).json();
    EXPECT_EQ(shown["tables"].size(), 1U) << name;
  }
}

TEST_F(arguments, pass_repeated_values_byte_for_byte) {
  const std::string points = write("w.csv", "kind,tag,x,y\n[a],1,1,2\n\"[a,b]\",1,3,4\n");
  const auto stored =
      done({"raw", curves, points, "--register", "--json", "--meter", "W", "--series", "S", "--x",
            "x", "--y", "y", "--where", "kind=[a,b]", "--where", "tag=1"})
          .json();
  EXPECT_EQ(stored["points"].dump(), "[[3.0,4.0]]");
}

TEST_F(arguments, pass_fluids_of_an_import_byte_for_byte) {
  const auto imported =
      done({"import", curves, "--json", "--meter", "M1", "--stand", data("stand-dual-rotor.csv"),
            "--job", "1001", "--fluid", "[a,b]", "--job", "1002", "--fluid", "[x]"})
          .json();
  EXPECT_THAT(imported.dump(), AllOf(HasSubstr("\"[a,b]\""), HasSubstr("\"[x]\"")));
}

TEST_F(arguments, are_no_list_where_numbers_are_expected) {
  EXPECT_THAT(trouble(2, {"restore", curves, "[1,2]"}), HasSubstr("'[1,2]' is not allowed"));
  EXPECT_THAT(trouble(2, {"restore", curves, "7", "--dry-run", "x"}),
              HasSubstr("'x' is not allowed"));
  EXPECT_THAT(trouble(4, {"restore", curves, "7", "--dry-run", "8"}), HasSubstr("7"));
}

TEST_F(arguments, may_be_a_path_that_reads_like_a_list) {
  const std::string path = scratch.file("[x].db");
  done({"init", path});
  done({"show", path});
}

TEST_F(arguments, come_from_the_configuration_byte_for_byte) {
  const std::string points = write("p.csv", "1,2\n3,4\n");
  for (const std::string name : {"[x]", "[a,b]", "\"quoted\"", "M#1", "two words", "-5", "a=b;c"}) {
    const std::string file = write("config.ini", "# mine\n[raw]\nregister = true\nmeter = " + name +
                                                     " \nseries=" + name + "\n");
    const auto stored = done({"--config", file, "raw", curves, points, "--json"}).json();
    EXPECT_EQ(stored["meter"]["serialNumber"], name);
    EXPECT_EQ(stored["series"], name);
  }
}

TEST_F(arguments, from_the_configuration_may_come_again_where_the_option_may) {
  const std::string points = write("w.csv", "kind,tag,x,y\na,1,1,2\na,2,3,4\n");
  const std::string file = write("config.ini", "[raw]\nwhere=kind=a\nwhere=tag=2\nx=x\ny=y\n");
  const auto stored = done({"--config", file, "raw", curves, points, "--json", "--register",
                            "--meter", "W", "--series", "S"})
                          .json();
  EXPECT_EQ(stored["points"].dump(), "[[3.0,4.0]]");
}

TEST_F(arguments, from_the_configuration_are_not_empty) {
  const std::string file = write("config.ini", "[fit]\nband=\n");
  EXPECT_THAT(trouble(2, {"--config", file, "show", curves}),
              HasSubstr("config.ini', line 2: 'band' has no value"));
}

}  // namespace
}  // namespace pelmora::test
