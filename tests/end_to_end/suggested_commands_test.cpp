// From a file with a spoiled point to a sound curve, by the commands that the program suggests.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

#include <cmath>
#include <filesystem>
#include <random>

namespace pelmora::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class suggested_commands : public CommandTest {
 protected:
  static double truth(double x) { return 2300 * (1 - 2.5 / x) * (1 - 0.08 / std::sqrt(x)); }

  // 22 flows with a noise of 0.03 %, one of them 1.5 % high.
  std::string spoiledFile(std::size_t bad) const {
    std::mt19937 random(29);
    std::normal_distribution<double> noise(0, 3e-4);
    std::string text = "Roshko,Strouhal\n";
    for (std::size_t i = 1; i <= 22; ++i) {
      const double x = std::pow(10, 1.2 + 0.1 * static_cast<double>(i));
      const double y = truth(x) * (1 + noise(random)) * (i == bad ? 1.015 : 1);
      text += std::to_string(x) + "," + std::to_string(y) + "\n";
    }
    return write("points.csv", text);
  }
  // The last printed command that begins with these words.
  static std::string suggestionIn(const std::string& printed, const std::string& words) {
    const std::size_t at = printed.rfind("pelmora " + words);
    if (at != std::string::npos) return printed.substr(at, printed.find('\n', at) - at);
    ADD_FAILURE() << "'" << words << "' is not suggested: " << printed;
    return "false";
  }
  // As an operator copies it from the terminal.
  CommandResult typed(const std::string& command) const {
    const std::string output = scratch.file("typed.txt");
    const std::string folder = std::filesystem::path(PELMORA_PROGRAM).parent_path();
    const int status = std::system(
        ("PATH='" + folder + "':\"$PATH\"; " + command + " >'" + output + "' 2>&1").c_str());
    CommandResult result;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.output = bytesOf(output);
    EXPECT_EQ(result.exitCode, 0) << command << "\n" << result.output;
    return result;
  }
};

TEST_F(suggested_commands, lead_from_a_spoiled_file_to_a_curve_without_its_bad_point) {
  init();
  const std::string brought = done({"raw", curves, spoiledFile(14), "--meter", "T 7", "--register",
                                    "--series", "Main rotor"})
                                  .output;
  const std::string fitted = typed(suggestionIn(brought, "fit ")).output;
  EXPECT_THAT(fitted, HasSubstr("Point 14 of part 1"));
  const std::string excluded = typed(suggestionIn(fitted, "exclude ")).output;
  typed(suggestionIn(excluded, "refit "));

  const json series =
      done({"show", curves, "--meter", "T 7", "--series", "Main rotor", "--json"}).json();
  EXPECT_EQ(series["curveAge"], "current");
  EXPECT_THAT(series["merged"], SizeIs(21));
  ASSERT_THAT(series["excluded"], SizeIs(1));
  EXPECT_EQ(series["excluded"][0]["number"], 14);
  EXPECT_THAT(series["excluded"][0]["reason"].get<std::string>(),
              HasSubstr("sigma off its neighbours"));
  for (const json& row : series["curve"]) {
    const double x = row[0];
    EXPECT_NEAR(row[1].get<double>() / truth(x), 1, 0.001) << x;
  }
  const json again =
      done({"fit", curves, "--meter", "T 7", "--series", "Main rotor", "--strict", "--json"})
          .json();
  EXPECT_THAT(again["warnings"], IsEmpty());
  EXPECT_THAT(again["advice"], IsEmpty());
}

TEST_F(suggested_commands, do_what_they_say_where_the_rule_of_the_component_fails) {
  init();
  done({"raw", curves, spoiledFile(5), "--meter", "T", "--register", "--series", "S"});
  const CommandResult refused =
      run({"fit", curves, "--meter", "T", "--series", "S", "--choose", "adjusted-r2"});
  EXPECT_EQ(refused.exitCode, 6);
  EXPECT_THAT(refused.output, Not(HasSubstr("--band")));
  typed(suggestionIn(refused.output, "exclude "));
  const json fit =
      done({"fit", curves, "--meter", "T", "--series", "S", "--choose", "adjusted-r2", "--json"})
          .json();
  EXPECT_EQ(fit["stored"], true);
}

}  // namespace
}  // namespace pelmora::test
