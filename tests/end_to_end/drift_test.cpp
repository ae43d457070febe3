// The drift of a meter over its calibrations.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <sstream>

namespace pelmora::test {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;

class drift : public CommandTest {
 protected:
  drift() { init(); }
  // The example stand with the flow of every point larger by `percent`.
  std::string shiftedStand(double percent) const {
    std::string text;
    const auto rows = rowsOf(data("stand-dual-rotor.csv"));
    const std::size_t flow = columnOf(rows.front(), "V2");
    for (std::size_t i = 0; i < rows.size(); ++i) {
      for (std::size_t c = 0; c < rows[i].size(); ++c) {
        std::ostringstream cell;
        cell.precision(17);
        if (i > 0 && c == flow)
          cell << std::stod(rows[i][c]) * (1 + percent / 100);
        else
          cell << rows[i][c];
        text += (c == 0 ? "" : ",") + cell.str();
      }
      text += "\n";
    }
    return write("shifted.csv", text);
  }
  void calibrate(double percent, const std::string& date, bool isFirst = false) const {
    Arguments arguments =
        calibration(shiftedStand(percent), {"--job", "1001", "--fluid", "spirit", "--job", "1002",
                                            "--fluid", "glycol", "--date", date});
    if (!isFirst) arguments.emplace_back("--new-calibration");
    done(arguments);
  }
  Arguments of(const Arguments& more = {}) const {
    Arguments arguments{"drift", curves, "--meter", "M1", "--series", "Rotor A"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
};

TEST_F(drift, goes_by_the_day_of_the_measurements_where_it_is_recorded) {
  calibrate(0, "2023-06-01", true);
  calibrate(0.1, "2024-09-30");
  done({"meter", "set", curves, "--meter", "M1", "--date", "2024-06-01"});
  const json value = done(of({"--at", "100", "--json"})).json();
  EXPECT_EQ(value["calibrations"][0]["date"], "2023-06-01");
  EXPECT_EQ(value["calibrations"][1]["date"], "2024-06-01");
}

// More flow for the same pulses: Strouhal falls by 1 - 1 / 1.005.
TEST_F(drift, shows_the_shift_of_each_calibration_with_its_uncertainty) {
  calibrate(0, "2023-06-01", true);
  calibrate(0.5, "2024-06-01");
  const json value = done(of({"--at", "100", "--at", "300", "--json"})).json();
  ASSERT_EQ(value["calibrations"].size(), 2U);
  EXPECT_NEAR(value["calibrations"][1]["years"].get<double>() -
                  value["calibrations"][0]["years"].get<double>(),
              1, 0.01);
  const json& shift = value["places"][1]["values"][1]["sincePrevious"];
  EXPECT_NEAR(shift["percent"].get<double>(), 100 * (1 / 1.005 - 1), 1e-3);
  EXPECT_NEAR(shift["en"].get<double>(),
              shift["percent"].get<double>() / shift["uncertaintyPercent"].get<double>(), 1e-9);
  EXPECT_TRUE(shift["isSignificant"].get<bool>());
  EXPECT_TRUE(value["intervalYears"].is_null());
  EXPECT_THAT(done(of()).output, AllOf(HasSubstr("shift"), HasSubstr("2024")));
}

TEST_F(drift, recommends_an_interval_once_three_calibrations_are_there) {
  calibrate(0, "2023-06-01", true);
  calibrate(0.1, "2024-06-01");
  EXPECT_THAT(done(of({"--limit", "3"})).output, HasSubstr("three calibrations"));
  calibrate(0.2, "2025-06-01");
  const json value = done(of({"--limit", "3", "--json"})).json();
  double shortest = 1e9;
  for (const json& place : value["places"]) {
    const json& advice = place["interval"];
    const double t = advice["years"].get<double>();
    shortest = std::min(shortest, t);
    EXPECT_NEAR(advice["ratePercentPerYear"].get<double>(), -0.1, 0.001);
    const double reached = std::abs(advice["ratePercentPerYear"].get<double>()) * t +
                           advice["coverageFactor"].get<double>() *
                               std::hypot(advice["rateUncertainty"].get<double>() * t,
                                          advice["dispersionPercent"].get<double>());
    const bool isCapped = advice["isCapped"].get<bool>();
    EXPECT_TRUE(t == 0     ? reached >= 3
                : isCapped ? reached <= 3
                           : std::abs(reached - 3) < 1e-6)
        << reached << " after " << t << " years";
  }
  EXPECT_DOUBLE_EQ(value["intervalYears"].get<double>(), shortest);
  EXPECT_THAT(value["assumptions"].get<std::string>(), HasSubstr("ILAC-G24"));
}

TEST_F(drift, is_drawn_as_a_page_and_as_a_picture) {
  calibrate(0, "2023-06-01", true);
  calibrate(0.1, "2024-06-01");
  const std::string page = scratch.file("d.html"), picture = scratch.file("d.svg");
  const json shift = done(of({"--at", "100", "-o", page, "--json"}))
                         .json()["places"][0]["values"][1]["sincePrevious"];
  std::ostringstream en;
  en << std::setprecision(2) << shift["en"].get<double>();
  EXPECT_THAT(bytesOf(page),
              AllOf(HasSubstr("<svg"), HasSubstr(">no. 1, 2024-06-01</text>"),
                    HasSubstr("<th scope=col>En<"), HasSubstr("<th scope=row>1 2024-06-01<td>"),
                    HasSubstr("<td>" + en.str() + "<")));
  done(of({"-o", picture}));
  EXPECT_TRUE(bytesOf(picture).starts_with("<svg"));
  EXPECT_THAT(trouble(2, of({"-o", scratch.file("d.png")})), HasSubstr(".svg"));
}

TEST_F(drift, says_what_is_missing) {
  calibrate(0, "2023-06-01", true);
  EXPECT_THAT(trouble(5, of()), HasSubstr("two calibrations"));
  EXPECT_THAT(trouble(2, of({"--limit", "0"})), HasSubstr("--limit"));
  calibrate(0, "2024-06-01");
  EXPECT_THAT(trouble(5, of({"--at", "1e6"})), HasSubstr("not on every curve"));
}

TEST_F(drift, of_two_calibrations_is_judged_by_compare) {
  calibrate(0, "2023-06-01", true);
  calibrate(0.5, "2024-06-01");
  const Arguments compare{"compare", curves, "--meter", "M1", "--series", "Rotor A"};
  EXPECT_THAT(done(compare).output, HasSubstr("The shift is significant"));
  calibrate(0.5, "2025-06-01");
  Arguments asJson = compare;
  asJson.emplace_back("--json");
  const json same = done(asJson).json();
  EXPECT_FALSE(same["significant"].get<bool>());
  json warnings = json::array();
  for (const std::string number : {"1", "2"}) {
    const json fit = done({"fit", curves, "--meter", "M1", "--calibration", number, "--series",
                           "Rotor A", "--json"})
                         .json();
    for (const json& warning : fit["warnings"])
      warnings.push_back("calibration " + number + ": " + warning["text"].get<std::string>());
  }
  EXPECT_FALSE(warnings.empty());
  EXPECT_EQ(same["warnings"], warnings);
  EXPECT_THAT(done(compare).output, HasSubstr("Warning, calibration 2: "));
}

}  // namespace
}  // namespace pelmora::test
