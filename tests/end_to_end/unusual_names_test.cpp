// Names and paths that other programs would trip over.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

namespace pelmora::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

const std::string turned = "A\u202EB";    // right-to-left override
const std::string isolated = "A\u2066B";  // left-to-right isolate
const std::string malformed =
    "A\xFF"
    "B";
const std::string control =
    "A\u0085"
    "B";  // next line, of the second set of controls

class unusual_name : public CommandTest {
 protected:
  unusual_name() { init(); }
  Arguments import(const std::string& meter, const std::string& fluid,
                   const std::string& person) const {
    return {"import", curves, "--meter", meter, "--stand",    data("stand-dual-rotor.csv"),
            "--job",  "1001", "--fluid", fluid, "--operator", person};
  }
  bool isEmpty() const { return done({"show", curves, "--json"}).json()["meters"].empty(); }
};

TEST_F(unusual_name, is_not_stored) {
  const std::string points = write("p.csv", "1,2\n3,4\n");
  for (const std::string& name : {turned, isolated, malformed, control}) {
    EXPECT_THAT(trouble(2, {"raw", curves, points, "--register", "--meter", name, "--series", "S"}),
                HasSubstr("--meter: the name 'A?B' "));
    EXPECT_THAT(trouble(2, {"raw", curves, points, "--register", "--meter", "M", "--series", name}),
                HasSubstr("--series: the name 'A?B' "));
    EXPECT_THAT(trouble(2, import(name, "f", "Ada")), HasSubstr("--meter: the name 'A?B' "));
    EXPECT_THAT(trouble(2, import("M", name, "Ada")), HasSubstr("--fluid: the name 'A?B' "));
    EXPECT_THAT(trouble(2, import("M", "f", name)), HasSubstr("--operator: the name 'A?B' "));
  }
  EXPECT_TRUE(isEmpty());
}

TEST_F(unusual_name, says_what_is_wrong_with_it) {
  EXPECT_THAT(trouble(2, import("M", turned, "Ada")), HasSubstr("turn the reading direction"));
  EXPECT_THAT(trouble(2, import("M", malformed, "Ada")), HasSubstr("is not valid UTF-8"));
  EXPECT_THAT(trouble(2, import("M", control, "Ada")), HasSubstr("control characters"));
}

TEST_F(unusual_name, in_other_scripts_is_stored) {
  done(import("Zähler 中文 متر", "φλ", "Åse"));
  EXPECT_FALSE(isEmpty());
}

class unusual_path : public CommandTest {};

TEST_F(unusual_path, is_refused_before_anything_is_written) {
  for (const std::string& name : {turned, malformed, control}) {
    const std::string path = scratch.file(name + ".db");
    EXPECT_THAT(trouble(2, {"init", path}), HasSubstr("CURVES: the path '"));
    EXPECT_FALSE(fs::exists(path));
  }
  init();
  done(
      {"raw", curves, write("p.csv", "1,2\n3,4\n"), "--meter", "P", "--register", "--series", "S"});
  EXPECT_THAT(trouble(2, {"export", curves, "--meter", "P", "-o", scratch.file(turned)}),
              HasSubstr("--output: the path '"));
}

TEST_F(unusual_path, of_more_than_500_bytes_is_too_long_for_a_database) {
  std::string folder = scratch.path().string();
  while (folder.size() < 520) folder += "/" + std::string(60, 'd');
  fs::create_directories(folder);
  EXPECT_THAT(trouble(3, {"init", folder + "/curves.db"}),
              testing::AllOf(HasSubstr("CURVES: the path '"), HasSubstr("may have 500"),
                             HasSubstr("shorter path")));
  std::ofstream(folder + "/p.csv") << "1,2\n3,4\n";
  init();
  done({"raw", curves, folder + "/p.csv", "--meter", "P", "--register", "--series", "S"});
}

TEST_F(unusual_path, with_an_apostrophe_works) {
  const std::string folder = scratch.file("it's here");
  fs::create_directory(folder);
  const std::string path = folder + "/o'clock.db", stand = folder + "/stand's.csv";
  fs::copy(data("stand-dual-rotor.csv"), stand);
  done({"init", path});
  done({"calibrate", path, "--meter", "M1", "--stand", stand, "--job", "1001", "--fluid", "spirit",
        "--job", "1002", "--fluid", "glycol"});
  done({"report", path, "--meter", "M1", "-o", folder + "/m1's.html"});
  EXPECT_EQ(done({"show", path, "--meter", "M1", "--json"}).json()["series"].size(), 4U);
}

class temporary_place : public CommandTest {};

TEST_F(temporary_place, is_not_needed_for_a_fit) {
  init();
  ::setenv("TMPDIR", scratch.file("none").c_str(), 1);
  const CommandResult result = run(twoFluids());
  ::unsetenv("TMPDIR");
  EXPECT_EQ(result.exitCode, 0) << result.error;
}

class fluid_name : public CommandTest {
 protected:
  fluid_name() { init(); }
  Arguments import(const Arguments& runs) const {
    Arguments arguments{"import", curves, "--meter", "M", "--stand", data("stand-dual-rotor.csv"),
                        "--json"};
    arguments.insert(arguments.end(), runs.begin(), runs.end());
    return arguments;
  }
};

TEST_F(fluid_name, is_the_same_in_capitals_of_any_alphabet) {
  for (const auto& [small, capital] : std::vector<std::pair<std::string, std::string>>{
           {"caf\u00e9", "CAF\u00c9"},
           {"\u043c\u0430\u0441\u043b\u043e", "\u041c\u0410\u0421\u041b\u041e"}}) {
    EXPECT_THAT(trouble(2, import({"--job", "1001", "--fluid", small, "--job", "1002", "--fluid",
                                   capital})),
                HasSubstr("appears twice"));
    done(import({"--job", "1001", "--fluid", small, "--new-calibration"}));
    const auto again = done(import({"--job", "1002", "--fluid", capital})).json();
    ASSERT_EQ(again["setups"].size(), 1U) << "the second run replaces the first";
    EXPECT_EQ(again["setups"][0]["jobs"], nlohmann::json({"1002"}));
    EXPECT_EQ(again["setups"][0]["fluid"], small);
  }
}

}  // namespace
}  // namespace pelmora::test
