// What a stored curve was fitted with stands beside it.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

#include <sqlite3.h>

namespace pelmora::test {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

class curve_settings : public CommandTest {
 protected:
  // Rows of a query, columns joined by '|'.
  [[nodiscard]] std::vector<std::string> rows(const std::string& query) const {
    sqlite3* database = nullptr;
    EXPECT_EQ(sqlite3_open(curves.c_str(), &database), SQLITE_OK);
    std::vector<std::string> found;
    const auto add = [](void* list, int count, char** values, char**) {
      std::string row;
      for (int i = 0; i < count; ++i)
        row += (i == 0 ? "" : "|") + std::string(values[i] ? values[i] : "null");
      static_cast<std::vector<std::string>*>(list)->push_back(row);
      return 0;
    };
    EXPECT_EQ(sqlite3_exec(database, query.c_str(), add, &found, nullptr), SQLITE_OK) << query;
    sqlite3_close(database);
    return found;
  }
};

TEST_F(curve_settings, are_kept_by_calibrate_for_each_series) {
  init();
  done(twoFluids({"--band", "0.4", "--points", "30"}));
  EXPECT_THAT(rows("select s.name, f.BandPercent, f.Points, f.MinRoshko, f.MaxRoshko, "
                   "f.RatioCurve, f.Equations "
                   "from pelmora_fit_settings f join series s on s.ID = f.SeriesID order by s.ID"),
              ElementsAre("Rotor A|0.4|30|null|null|0|null", "Rotor B|0.4|30|null|null|0|null",
                          "Rotor Sum|0.4|30|null|null|0|null", "Ratio|0.4|30|null|null|1|null"));
}

TEST_F(curve_settings, are_those_of_the_last_fit_with_its_range_and_equations) {
  initCalibrated();
  const std::string equations = write("own.txt", "Third order\ta+b*ln(x)+c*ln(x)^2+d*ln(x)^3\n");
  done({"fit", curves, "--meter", "M1", "--series", "Rotor A", "--min", "20", "--max", "900",
        "--band", "1", "--equations", equations, "--ignore-residuals"});
  EXPECT_THAT(rows("select BandPercent, MinRoshko, MaxRoshko, IgnoreResiduals, Equations from "
                   "pelmora_fit_settings "
                   "where SeriesID = (select ID from series where name = 'Rotor A')"),
              ElementsAre("1.0|20.0|900.0|1|Third order\ta+b*ln(x)+c*ln(x)^2+d*ln(x)^3\r\n"));
}

TEST_F(curve_settings, stay_where_no_equation_passes) {
  initCalibrated();
  const std::string query = "select * from pelmora_fit_settings order by SeriesID";
  const auto before = rows(query);
  ASSERT_EQ(before.size(), 4U);
  trouble(6, {"fit", curves, "--meter", "M1", "--series", "Rotor A", "--band", "0.0001", "--choose",
              "adjusted-r2"});
  EXPECT_EQ(rows(query), before);
}

}  // namespace
}  // namespace pelmora::test
