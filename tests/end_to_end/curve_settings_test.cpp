// What a stored curve was fitted with stands beside it.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"
#include "tests/support/plain_database.h"

namespace pelmora::test {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

class curve_settings : public CommandTest {
 protected:
  [[nodiscard]] std::vector<std::string> rows(const std::string& query) const {
    return PlainDatabase(curves).rows(query);
  }
};

TEST_F(curve_settings, are_kept_by_calibrate_for_each_series) {
  init();
  done(twoFluids({"--band", "0.4", "--points", "30"}));
  EXPECT_THAT(rows(R"(select s.name, f."BandPercent", f."Points", f."MinRoshko", f."MaxRoshko", )"
                   R"(f."RatioCurve", f."Equations" from pelmora_fit_settings f )"
                   R"(join series s on s."ID" = f."SeriesID" order by s."ID")"),
              ElementsAre("Rotor A|0.4|30|null|null|0|null", "Rotor B|0.4|30|null|null|0|null",
                          "Rotor Sum|0.4|30|null|null|0|null", "Ratio|0.4|30|null|null|1|null"));
}

TEST_F(curve_settings, are_those_of_the_last_fit_with_its_range_and_equations) {
  initCalibrated();
  const std::string equations = write("own.txt", "Third order\ta+b*ln(x)+c*ln(x)^2+d*ln(x)^3\n");
  done({"fit", curves, "--meter", "M1", "--series", "Rotor A", "--min", "20", "--max", "900",
        "--band", "1", "--equations", equations, "--ignore-residuals"});
  EXPECT_THAT(
      rows(R"(select "BandPercent", "MinRoshko", "MaxRoshko", "IgnoreResiduals", "Equations" )"
           R"(from pelmora_fit_settings )"
           R"(where "SeriesID" = (select "ID" from series where name = 'Rotor A'))"),
      ElementsAre("1|20|900|1|Third order\ta+b*ln(x)+c*ln(x)^2+d*ln(x)^3\r\n"));
}

TEST_F(curve_settings, stay_where_no_equation_passes) {
  initCalibrated();
  const std::string query = R"(select * from pelmora_fit_settings order by "SeriesID")";
  const auto before = rows(query);
  ASSERT_EQ(before.size(), 4U);
  trouble(6, {"fit", curves, "--meter", "M1", "--series", "Rotor A", "--band", "0.0001", "--choose",
              "adjusted-r2"});
  EXPECT_EQ(rows(query), before);
}

}  // namespace
}  // namespace pelmora::test
