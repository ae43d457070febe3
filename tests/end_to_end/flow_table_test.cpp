// Tables for flow computers.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

#include <algorithm>
#include <cmath>

namespace pelmora::test {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;

class flow_table : public CommandTest {
 protected:
  flow_table() { initCalibrated(); }
  Arguments of(const std::string& series, const Arguments& more) const {
    Arguments arguments{"export", curves, "--meter", "M1", "--series", series};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  json jsonOf(const std::string& series, const Arguments& more) const {
    const std::string file = scratch.file("table.json");
    Arguments arguments = of(series, more);
    arguments.insert(arguments.end(), {"-o", file});
    done(arguments);
    return json::parse(bytesOf(file));
  }
  json valuesAt(const std::string& series, const std::vector<double>& roshko,
                const Arguments& more = {}) const {
    Arguments arguments{"evaluate", curves, "--meter", "M1", "--series", series, "--json"};
    for (const double each : roshko) arguments.push_back(json(each).dump());
    arguments.insert(arguments.end(), more.begin(), more.end());
    return done(arguments).json()["values"];
  }
  json valueAt(const std::string& series, double roshko) const {
    return valuesAt(series, {roshko})[0];
  }
};

TEST_F(flow_table, of_16_points_is_read_with_the_error_that_it_states) {
  const json table = jsonOf("Rotor Sum", {"--for", "roshko", "--points", "16"});
  ASSERT_EQ(table["values"].size(), 16U);
  const double stated = table["readingErrorPercent"].get<double>();
  EXPECT_LE(stated, 0.05);
  const json even = jsonOf("Rotor Sum", {"--for", "roshko", "--points", "16", "--even"});
  EXPECT_GT(even["readingErrorPercent"].get<double>(), 3 * stated);
  const json log = jsonOf("Rotor Sum", {"--for", "roshko", "--points", "16", "--read", "log"});
  EXPECT_LE(log["readingErrorPercent"].get<double>(), 0.025);
  const json fine = jsonOf("Rotor Sum", {"--for", "roshko"});
  EXPECT_EQ(fine["values"].size(), 40U);
  EXPECT_LE(fine["readingErrorPercent"].get<double>(), 0.008);
  // U contains the reading error as a rectangular contribution.
  EXPECT_GE(table["expandedUncertaintyPercent"].get<double>(), stated / std::sqrt(3));
  const double at = table["readingErrorAt"].get<double>();
  const auto& values = table["values"];
  std::size_t i = 0;
  while (values[i + 1][0].get<double>() < at) ++i;
  const double share = (at - values[i][0].get<double>()) /
                       (values[i + 1][0].get<double>() - values[i][0].get<double>());
  const double read = values[i][1].get<double>() +
                      share * (values[i + 1][1].get<double>() - values[i][1].get<double>());
  const double truth = valueAt("Rotor Sum", at)["strouhal"].get<double>();
  EXPECT_NEAR(100 * std::abs(read / truth - 1), stated, 0.02 * stated);
}

// At 70 F, f = v Roshko and K = Strouhal; a gallon is 3.785411784 litres.
TEST_F(flow_table, comes_in_the_form_and_the_units_that_the_flow_computer_takes) {
  const json table = jsonOf("Rotor A", {"--for", "linear", "--points", "10", "--viscosity", "2 cSt",
                                        "--y-unit", "pulses/l"});
  EXPECT_EQ(table["x"]["unit"], "Hz");
  EXPECT_EQ(table["y"]["unit"], "pulses/l");
  const json& row = table["values"][4];
  const double strouhal = valueAt("Rotor A", row[0].get<double>() / 2)["strouhal"].get<double>();
  EXPECT_NEAR(row[1].get<double>() * 3.785411784 / strouhal, 1, 1e-9);
  const json uvc = jsonOf("Rotor A", {"--for", "uvc", "--points", "10"});
  EXPECT_EQ(uvc["y"]["name"], "K factor");
  const json& point = uvc["values"][4];
  const double same = valueAt("Rotor A", point[0].get<double>())["strouhal"].get<double>();
  EXPECT_NEAR(point[1].get<double>() / same, 1, 1e-9);
  EXPECT_THAT(trouble(5, of("Rotor A", {"--for", "linear"})), HasSubstr("one fluid"));
  EXPECT_THAT(trouble(5, of("Ratio", {"--for", "uvc"})), HasSubstr("quotient"));
}

TEST_F(flow_table, is_written_as_the_name_of_the_file_says) {
  const auto written = [&](const std::string& name, const Arguments& more = {}) {
    const std::string file = scratch.file(name);
    Arguments arguments = of("Rotor A", {"--for", "roshko", "--points", "10", "-o", file});
    arguments.insert(arguments.end(), more.begin(), more.end());
    EXPECT_THAT(done(arguments).output, AllOf(HasSubstr(name), HasSubstr("reading error")));
    return bytesOf(file);
  };
  EXPECT_TRUE(written("t.xlsx").starts_with("PK"));
  const std::string csv = written("t.csv", {"--separator", "semicolon", "--decimal", "comma"});
  EXPECT_TRUE(csv.starts_with("Roshko (Hz/cSt);Strouhal (pulses/gal);U (%)\n")) << csv;
  EXPECT_EQ(csv.find('.'), std::string::npos);
  EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n'), 11);
  EXPECT_THAT(trouble(2, of("Rotor A", {"--for", "roshko", "-o", scratch.file("t.doc")})),
              HasSubstr(".xlsx"));
  EXPECT_THAT(trouble(2, of("Rotor A", {"--for", "roshko", "--decimal", "comma"})),
              HasSubstr("--separator"));
  const CommandResult piped = run(of("Rotor A", {"--for", "roshko", "--points", "10"}));
  EXPECT_TRUE(piped.output.starts_with("Roshko (Hz/cSt),"));
  EXPECT_THAT(piped.error, HasSubstr("reading error"));
}

TEST_F(flow_table, of_points_alone_takes_the_same_names_and_signs) {
  const std::string file = scratch.file("points.xlsx");
  done({"export", curves, "--meter", "M1", "--points", "curve", "-o", file});
  EXPECT_TRUE(bytesOf(file).starts_with("PK"));
  EXPECT_THAT(trouble(2, {"export", curves, "--meter", "M1", "-o", scratch.file("points.txt")}),
              HasSubstr(".csv"));
}

TEST_F(flow_table, is_stored_by_a_fit_with_optimal_spacing_and_kept_by_a_refit) {
  const Arguments fit{"fit", curves,   "--meter", "M1",     "--series",  "Rotor Sum", "--points",
                      "16",  "--band", "1",       "--json", "--spacing", "optimal"};
  const json stored = done(fit).json();
  EXPECT_EQ(stored["spacing"], "optimal");
  ASSERT_EQ(stored["curve"].size(), 16U);
  const auto worst = [&] {
    const json curve =
        done({"show", curves, "--meter", "M1", "--series", "Rotor Sum", "--json"}).json()["curve"];
    std::vector<double> middles;
    for (std::size_t i = 0; i + 1 < curve.size(); ++i)
      middles.push_back((curve[i][0].get<double>() + curve[i + 1][0].get<double>()) / 2);
    const json read = valuesAt("Rotor Sum", middles, {"--table"});
    const json truth = valuesAt("Rotor Sum", middles);
    EXPECT_EQ(read.size(), curve.size() - 1);
    double error = 0;
    for (std::size_t i = 0; i < read.size(); ++i) {
      const double ratio = read[i]["strouhal"].get<double>() / truth[i]["strouhal"].get<double>();
      error = std::max(error, 100 * std::abs(ratio - 1));
    }
    return error;
  };
  EXPECT_LE(worst(), 0.05);
  done({"refit", curves, "--meter", "M1", "--series", "Rotor Sum"});
  EXPECT_LE(worst(), 0.05);
  const json usual = done({"refit", curves, "--meter", "M1", "--series", "Rotor Sum", "--spacing",
                           "usual", "--json"})
                         .json();
  EXPECT_EQ(usual["series"][0]["outcome"], "changed");
  EXPECT_GT(worst(), 0.05);
}

}  // namespace
}  // namespace pelmora::test
