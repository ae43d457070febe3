// Commands that read, ask or work, and store later, beside another program that writes meanwhile.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

#include <chrono>
#include <cmath>
#include <future>

namespace pelmora::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class another_program : public CommandTest {
 protected:
  another_program() {
    init();
    bring("S", 1);
  }
  void bring(const std::string& series, double factor) const {
    std::string text = "x,y\n";
    for (int i = 0; i <= 40; ++i) {
      const double x = std::pow(10, 1 + i * 0.05);
      text += std::to_string(x) + "," + std::to_string(factor * (100 + 10 * std::log10(x))) + "\n";
    }
    done({"raw", curves, write("s.csv", text), "--meter", "M1", "--register", "--series", series});
  }
  nlohmann::json stored() const {
    return done({"show", curves, "--meter", "M1", "--series", "S", "--json"}).json();
  }
  // Runs a command with an operator at the terminal; `meanwhile` runs while it waits for the
  // answer.
  template <typename Meanwhile>
  CommandResult runAsked(const Arguments& command, const std::string& question,
                         const std::string& answer, Meanwhile&& meanwhile) const {
    const PseudoTerminal terminal;
    auto result = std::async(std::launch::async, [&] { return runAt(terminal, command); });
    const auto isRunning = [&] {
      return result.wait_for(std::chrono::milliseconds(10)) != std::future_status::ready;
    };
    std::string shown;
    while (shown.find(question) == std::string::npos && isRunning()) shown += terminal.shown();
    EXPECT_THAT(shown, HasSubstr(question));
    meanwhile();
    terminal.type(answer);
    return result.get();
  }
};

TEST_F(another_program, is_not_held_up_by_a_question_and_gets_its_points_fitted) {
  const CommandResult fit =
      runAsked({"fit", curves, "--meter", "M1", "--series", "S", "--min", "9", "--json"}, "[R]etry",
               "r\n", [&] { bring("S", 2); });
  EXPECT_EQ(fit.exitCode, 0) << fit.error;
  EXPECT_TRUE(fit.json()["changedMeanwhile"].get<bool>());
  EXPECT_NEAR(stored()["curve"][0][1].get<double>(), 220, 0.1);
}

TEST_F(another_program, gets_no_curve_for_a_range_that_nobody_was_asked_about) {
  const CommandResult fit =
      runAsked({"fit", curves, "--meter", "M1", "--series", "S", "--min", "9"}, "[R]etry", "i\n",
               [&] { bring("S", 2); });
  EXPECT_EQ(fit.exitCode, 7) << fit.output;
  EXPECT_THAT(fit.error, AllOf(HasSubstr("another program has changed series 'S' of meter 'M1'"),
                               HasSubstr("nothing was stored")));
  EXPECT_TRUE(stored()["curve"].empty());
}

TEST_F(another_program, keeps_what_it_added_to_a_series_that_was_to_be_deleted) {
  const CommandResult deleted = runAsked({"delete", curves, "--meter", "M1", "--series", "S"},
                                         "Delete this?", "y\n", [&] { bring("S", 2); });
  EXPECT_EQ(deleted.exitCode, 8) << deleted.output;
  EXPECT_THAT(deleted.error, AllOf(HasSubstr("another program has changed series 'S'"),
                                   HasSubstr("nothing was deleted")));
  EXPECT_EQ(stored()["raw"][0].size(), 41U);
}

TEST_F(another_program, of_no_concern_does_not_stop_a_deletion) {
  const CommandResult deleted = runAsked({"delete", curves, "--meter", "M1", "--series", "S"},
                                         "Delete this?", "y\n", [&] { bring("Other", 2); });
  EXPECT_EQ(deleted.exitCode, 0) << deleted.error;
  EXPECT_THAT(trouble(4, {"show", curves, "--meter", "M1", "--series", "S"}), HasSubstr("'S'"));
}

}  // namespace
}  // namespace pelmora::test
