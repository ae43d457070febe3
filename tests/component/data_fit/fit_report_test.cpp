// The report to the character: hosts store it and compare it.
// SPDX-License-Identifier: MIT
#include "tests/component/data_fit/fit_fixture.h"
#include "tests/support/comma_locale.h"

namespace pelmora {
namespace {

const std::string rule(32, '=');

class fit_report : public FitFixture {
 protected:
  fit_report() {
    points_ = {{1.5, 0.25}, {20, 0.1}, {-300, 1234.5}};
    test::FakeSolution& solution = engine_.otherwise;
    solution.table = {{}, {}, {{1, 2, 3}, {4, -8, 3}, {1, 1, 1}}};
    solution.parameters = {{"a", 1.25, 0.5}, {"b", -0.00002, 1e-7}};
    solution.statistics = {3, 17, 0.125, 0.75, 2.0 / 3, 12345.678, 1e20};
    solution.curve = [](double x) { return x / 3; };
  }

  std::unique_ptr<clsDataFit> makeNamedFitting() {
    auto fitting = makeFitting();
    fitting->MeterSerialNumber = "T-4711";
    fitting->SeriesName = "Rotor A";
    fitting->BandPercent = 0.3F;
    return fitting;
  }

  std::string head(const std::string& name) const {
    return "\t\tMeter Serial Number: T-4711\r\n"
           "\t\tSeries Name: Rotor A\r\n"
           "Results for model: \r\n"
           "Y = f(" +
           name +
           ")\r\n"
           "Description: " +
           name +
           "\r\n"
           "\r\n";
  }
  std::string accepted(const std::string& name) const {
    return head(name) +
           "Independent Variable (X): Roshko\r\n"
           "Dependent Variable (Y): Strouhal\r\n"
           "Number of Observations = 3\r\n"
           "Min X value = -300\r\n"
           "Max X value = 20\r\n"
           "\r\n"
           "Parameter Results:\r\n"
           "a = 1.25, Standard Error = 0.5\r\n"
           "b = -2E-05, Standard Error = 1E-07\r\n"
           "Number of Nonlinear Iterations = 17\r\n"
           "Residual Tolerance = 1E-15\r\n"
           "Residual Standard Error = 0.125\r\n"
           "R2 Value = 0.75\r\n"
           "R2adjusted Value = 0.666666666666667\r\n"
           "Regression Sum of Squares = 12345.678\r\n"
           "Residual Sum of Squares = 1E+20\r\n"
           "Band Percentage = 0.3%\r\n"
           "Specified Number of Fitted Points = 3\r\n"
           "PredictedRoshko Min value = 1\r\n"
           "PredictedStrouhal Max value = 100\r\n"
           "\r\n"
           "\r\n"
           "Predicted Roshko/Strouhal\r\n"
           "0:\t1\t0.333333333333333\r\n"
           "1:\t10\t3.33333333333333\r\n"
           "2:\t100\t33.3333333333333\r\n"
           "\r\n"
           "\r\n"
           "Raw Roshko/Strouhal\r\n"
           "0:\t1.5\t0.25\r\n"
           "1:\t20\t0.1\r\n"
           "2:\t-300\t1234.5\r\n";
  }
};

TEST_F(fit_report, of_an_accepted_equation) {
  useEquations({"A"});
  const auto fitting = makeNamedFitting();
  fit(*fitting);
  EXPECT_EQ(fitting->ResultDetails(), accepted("A"));
}

TEST_F(fit_report, names_the_axes_as_they_were_given) {
  useEquations({"A"});
  const auto fitting = makeNamedFitting();
  fitting->fitCurve(points_, isEmpty_, 2, 50.5, "Re", "K");
  const std::string report = fitting->ResultDetails();
  for (const char* line :
       {"\r\nIndependent Variable (X): Re\r\n", "\r\nDependent Variable (Y): K\r\n",
        "\r\nPredictedRe Min value = 2\r\n", "\r\nPredictedK Max value = 50.5\r\n",
        "\r\n\r\n\r\nPredicted Re/K\r\n0:\t2\t", "\r\n\r\n\r\nRaw Re/K\r\n0:\t1.5\t0.25\r\n"}) {
    EXPECT_NE(report.find(line), std::string::npos) << line;
  }
}

TEST_F(fit_report, of_a_rejected_equation_lists_the_residuals) {
  useEquations({"A"});
  engine_.otherwise.table = {{}, {}, {{1, 2, 3}, {4, -8, 3}, {1, 2, 40}}};
  const auto fitting = makeNamedFitting();
  fit(*fitting);
  EXPECT_EQ(fitting->ResultDetails(), head("A") +
                                          "Solution failed.\r\n"
                                          "Residuals beyond 10%\r\n"
                                          "Residuals \r\n"
                                          "===========\r\n"
                                          "0:\t0.25\r\n"
                                          "1:\t-0.25\r\n"
                                          "2:\t13.3333333333333\r\n"
                                          "\r\n"
                                          "\r\n" +
                                          rule + "\r\n");
}

TEST_F(fit_report, of_an_equation_without_a_solution_names_the_log) {
  useEquations({"A"});
  engine_.otherwise.found = false;
  const auto fitting = makeNamedFitting();
  fit(*fitting);
  EXPECT_EQ(fitting->ResultDetails(),
            "Solution failed.\r\n"
            "See " +
                folder_.path().string() +
                "\\log.txt\r\n"
                "\r\n" +
                rule + "\r\n");
}

TEST_F(fit_report, of_all_equations_goes_by_their_index) {
  useEquations({"A", "B"});  // B has index 0
  engine_.solutions["A"].found = false;
  engine_.solutions["B"] = engine_.otherwise;
  engine_.solutions["B"].table = test::tableOfRatio(-10);
  const auto fitting = makeNamedFitting();
  fit(*fitting);
  EXPECT_EQ(fitting->ResultDetails(),
            head("B") +
                "Solution failed.\r\nResiduals beyond 10%\r\nResiduals \r\n===========\r\n"
                "0:\t-10\r\n\r\n\r\n" +
                rule + "\r\n" + "Solution failed.\r\nSee " + folder_.path().string() +
                "\\log.txt\r\n\r\n" + rule + "\r\n");
}

TEST_F(fit_report, numbers_follow_the_locale) {
  const test::CommaLocale locale;
  if (!locale.isSet()) GTEST_SKIP() << "no locale with a decimal comma";
  useEquations({"A"});
  const auto fitting = makeNamedFitting();
  fit(*fitting);
  const std::string report = fitting->ResultDetails();
  for (const char* line : {"\r\nBand Percentage = 0,3%\r\n", "\r\n0:\t1,5\t0,25\r\n",
                           "\r\na = 1,25, Standard Error = 0,5\r\n"}) {
    EXPECT_NE(report.find(line), std::string::npos) << line;
  }
}

TEST_F(fit_report, whole_band_percent_is_plain) {
  useEquations({"A"});
  const auto fitting = makeNamedFitting();
  fitting->BandPercent = 5;
  fit(*fitting);
  EXPECT_NE(fitting->ResultDetails().find("\r\nBand Percentage = 5%\r\n"), std::string::npos);
}

TEST_F(fit_report, equation_without_parameters_has_no_parameter_lines) {
  useEquations({"A"});
  engine_.otherwise.parameters.clear();
  const auto fitting = makeNamedFitting();
  fit(*fitting);
  EXPECT_NE(fitting->ResultDetails().find("Parameter Results:\r\nNumber of Nonlinear"),
            std::string::npos);
}

// The place in the sorted order is not the equation that failed: A ranks first and stands at index
// 1, so its failure is written at index 0, where B is.
TEST_F(fit_report, band_failure_stands_at_the_place_in_the_sorted_order) {
  useEquations({"A", "B"});
  engine_.solutions["A"] = engine_.otherwise;
  engine_.solutions["A"].statistics.AdjustedRSquared = 0.1;
  band_.band = [](const test::FakeBandCall& call, float&) { return call.predictedY[0] > 0.4; };
  engine_.otherwise.curve = [](double x) { return x / 2; };
  band_.failureText = "3 points outside";
  const auto fitting = makeNamedFitting();
  fit(*fitting);
  EXPECT_EQ(statusTexts().back(), "Determined bestfit equation: B");
  const std::string report = fitting->ResultDetails();
  EXPECT_TRUE(report.starts_with(head("B")));
  EXPECT_TRUE(report.ends_with("2:\t-300\t1234.5\r\n\r\n\r\n3 points outside"));
}

TEST_F(fit_report, band_failure_of_the_only_equation_follows_its_report) {
  useEquations({"A"});
  band_.band = [](const test::FakeBandCall&, float&) { return false; };
  const auto fitting = makeNamedFitting();
  fit(*fitting);
  EXPECT_EQ(fitting->ResultDetails(),
            accepted("A") + "\r\n\r\noutside the band" + "\r\n" + rule + "\r\n");
}

}  // namespace
}  // namespace pelmora
