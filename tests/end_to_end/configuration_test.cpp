// Defaults of options from the user's configuration file.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

namespace pelmora::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class configuration : public CommandTest {
 protected:
  configuration() {
    init();
    std::string text = "x,y\n";
    for (int i = 1; i <= 40; ++i)
      text += std::to_string(i * 10) + "," + std::to_string(100 + i) + "\n";
    done({"raw", curves, write("s.csv", text), "--meter", "P", "--register", "--series", "S"});
  }
  // Points of the curve that a fit with these options stores.
  std::size_t pointsWith(const Arguments& before, const Arguments& behind = {}) const {
    Arguments arguments = before;
    arguments.insert(arguments.end(), {"fit", curves, "--meter", "P", "--series", "S", "--json"});
    arguments.insert(arguments.end(), behind.begin(), behind.end());
    return done(arguments).json()["curve"].size();
  }
};

TEST_F(configuration, gives_options_their_defaults) {
  const std::string file = write("config.ini", "[fit]\npoints=17\nband=0.5\n");
  EXPECT_EQ(pointsWith({"--config", file}), 17U);
  EXPECT_EQ(pointsWith({}), 40U);
}

TEST_F(configuration, gives_way_to_the_command_line) {
  const std::string file = write("config.ini", "[fit]\npoints=17\n");
  EXPECT_EQ(pointsWith({"--config", file}, {"--points", "9"}), 9U);
}

TEST_F(configuration, of_another_command_is_left_alone) {
  const std::string file = write("config.ini", "[fit]\npoints=17\n");
  EXPECT_THAT(done({"--config", file, "show", curves}).output, HasSubstr("P"));
}

TEST_F(configuration, is_found_by_its_variable) {
  const std::string file = write("config.ini", "[fit]\npoints=17\n");
  ::setenv("PELMORA_CONFIG", file.c_str(), 1);
  const std::size_t points = pointsWith({});
  ::unsetenv("PELMORA_CONFIG");
  EXPECT_EQ(points, 17U);
}

TEST_F(configuration, with_a_mistake_is_named) {
  EXPECT_THAT(trouble(2, {"--config", write("c.ini", "[fit]\nbandd=1\n"), "show", curves}),
              AllOf(HasSubstr("c.ini"), HasSubstr("fit.bandd")));
  EXPECT_THAT(trouble(2, {"--config", scratch.file("none.ini"), "show", curves}),
              HasSubstr("none.ini"));
}

TEST_F(configuration, is_told_without_the_users_own_path) {
  EXPECT_THAT(done({"--help"}).output, HasSubstr("$PELMORA_CONFIG"));
  EXPECT_THAT(done({"man"}).output,
              testing::Not(HasSubstr(std::getenv("HOME") + std::string("/.config"))));
}

}  // namespace
}  // namespace pelmora::test
