// The uncertainty of a stand, kept with the calibration that it measured.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

namespace pelmora::test {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;

class stand_uncertainty : public CommandTest {
 protected:
  stand_uncertainty() { initCalibrated(); }
  Arguments stand(const Arguments& more = {}) const {
    Arguments arguments{"stand", "uncertainty", curves, "--meter", "M1"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  double expandedPercent() const {
    return done({"evaluate", curves, "--meter", "M1", "--series", "Rotor A", "120", "--json"})
        .json()["values"][0]["expandedUncertaintyPercent"]
        .get<double>();
  }
};

TEST_F(stand_uncertainty, is_part_of_u_until_it_is_removed_and_after_it_is_restored) {
  EXPECT_THAT(done(stand()).output, HasSubstr("of the points alone"));
  const double bare = expandedPercent();
  const std::string text = "[stand]\nname = Stand 3\n[flow]\nstandard = 0.2 %\n";
  EXPECT_THAT(done(stand({write("stand.ini", text)})).output, HasSubstr("Stored"));
  EXPECT_GE(expandedPercent(), 0.4);
  const json kept = done(stand({"--json"})).json();
  EXPECT_EQ(kept["standUncertainty"]["text"], text);
  EXPECT_EQ(kept["standUncertainty"]["name"], "Stand 3");
  EXPECT_TRUE(kept["entry"].is_null());
  const json removed = done(stand({"--remove", "--json"})).json();
  EXPECT_TRUE(removed["standUncertainty"].is_null());
  EXPECT_DOUBLE_EQ(expandedPercent(), bare);
  done({"restore", curves, removed["entry"].dump()});
  EXPECT_GE(expandedPercent(), 0.4);
}

TEST_F(stand_uncertainty, is_never_stated_below_the_capability_of_the_laboratory) {
  done(stand({write("cmc.ini", "[stand]\ncmc = 3 %\n[flow]\nstandard = 0.01 %\n")}));
  EXPECT_DOUBLE_EQ(expandedPercent(), 3);
  EXPECT_THAT(done({"evaluate", curves, "--meter", "M1", "--series", "Rotor A", "120"}).output,
              HasSubstr("CMC"));
}

TEST_F(stand_uncertainty, names_the_line_that_is_not_understood_and_stores_nothing) {
  const std::string file = write("bad.toml", "[flow]\nstandard = \"0.05 bananas\"\n");
  EXPECT_THAT(trouble(5, stand({file})), AllOf(HasSubstr("line 2"), HasSubstr("bad.toml")));
  EXPECT_TRUE(done(stand({"--json"})).json()["standUncertainty"].is_null());
  EXPECT_THAT(trouble(2, stand({file, "--remove"})), HasSubstr("--remove"));
  EXPECT_THAT(trouble(2, {"stand", "colour", curves, "--meter", "M1"}), HasSubstr("uncertainty"));
}

}  // namespace
}  // namespace pelmora::test
