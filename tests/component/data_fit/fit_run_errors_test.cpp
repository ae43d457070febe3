// SPDX-License-Identifier: MIT
#include "tests/component/data_fit/fit_fixture.h"

#include <stdexcept>

namespace pelmora {
namespace {

using test::Journal;

const std::string missingEngineBox =
    "Error 429: ActiveX component can't create object. The DataFitX component must be installed "
    "and "
    "registered to run this sample.|16|Error";

class fit_run_errors : public FitFixture {
 protected:
  fit_run_errors() { useEquations({"A", "B"}); }

  // Runs a fit that must end in this one box, at once and with nothing to show.
  void expectBox(const std::string& box) {
    isEmpty_ = false;
    const auto fitting = makeFitting();
    fitting->NumberOfFittedPoints = fittedPoints_;
    EXPECT_EQ(fit(*fitting, from_), PointArray());
    EXPECT_TRUE(isEmpty_);
    EXPECT_EQ(journal_.back(), "box: " + box);
    EXPECT_EQ(boxes(), Journal{box});
    EXPECT_EQ(test::linesOf(journal_, "band test"), Journal());
  }

  std::int16_t fittedPoints_ = 3;
  double from_ = 1;
};

TEST_F(fit_run_errors, absent_factory_is_a_missing_engine) {
  platform().createFitEngine = nullptr;
  expectBox(missingEngineBox);
  EXPECT_EQ(journal_.size(), 1U);
}

TEST_F(fit_run_errors, factory_that_delivers_nothing_is_a_missing_engine) {
  platform().createFitEngine = [] { return nullptr; };
  expectBox(missingEngineBox);
}

TEST_F(fit_run_errors, engine_that_delivers_no_model_is_a_missing_engine) {
  struct Barren : FitEngine {
    std::unique_ptr<FitModel> createModel() override { return nullptr; }
  };
  platform().createFitEngine = [] { return std::make_unique<Barren>(); };
  expectBox(missingEngineBox);
}

TEST_F(fit_run_errors, error_429_from_anywhere_is_a_missing_engine) {
  engine_.solutions["B"].onAttach = [] { throw Error(429, "engine", "licence"); };
  expectBox(missingEngineBox);
}

TEST_F(fit_run_errors, error_before_the_first_equation_names_none) {
  platform().createFitEngine = []() -> std::unique_ptr<FitEngine> {
    throw Error(70, "os", "denied");
  };
  expectBox("Error in clsDataFit:fitCurve 70: denied|16|Error in Equation ");
}

TEST_F(fit_run_errors, engine_error_tells_number_description_and_equation) {
  engine_.solutions["B"].onAttach = [] { throw Error(-2147220991, "engine", "no memory left"); };
  expectBox("Error in clsDataFit:fitCurve -2147220991: no memory left|16|Error in Equation B");
  EXPECT_EQ(fitted(), (Journal{"A", "B"}));
}

TEST_F(fit_run_errors, error_ends_the_run_at_once) {
  engine_.solutions["A"].onAttach = [] { throw Error(5, "engine", "stop"); };
  expectBox("Error in clsDataFit:fitCurve 5: stop|16|Error in Equation A");
  EXPECT_EQ(fitted(), Journal{"A"});
}

TEST_F(fit_run_errors, other_exceptions_of_an_engine_are_number_5) {
  engine_.solutions["A"].onAttach = [] { throw std::runtime_error("bad pivot"); };
  expectBox("Error in clsDataFit:fitCurve 5: bad pivot|16|Error in Equation A");
}

TEST_F(fit_run_errors, any_exception_of_an_engine_is_number_5) {
  engine_.solutions["A"].onAttach = [] { throw 42; };
  expectBox(
      "Error in clsDataFit:fitCurve 5: Invalid procedure call or argument|16|Error in Equation A");
}

TEST_F(fit_run_errors, zero_in_the_observed_column_divides_by_zero) {
  engine_.otherwise.table = {{}, {}, {{1, 2}, {3, 0}, {1, 1}}};
  expectBox("Error in clsDataFit:fitCurve 11: Division by zero|16|Error in Equation A");
}

TEST_F(fit_run_errors, zero_residual_of_a_zero_divides_by_zero) {
  engine_.otherwise.table = {{}, {}, {{1}, {0}, {0}}};
  expectBox("Error in clsDataFit:fitCurve 11: Division by zero|16|Error in Equation A");
}

TEST_F(fit_run_errors, ratio_beyond_doubles_overflows) {
  engine_.otherwise.table = {{}, {}, {{1}, {1e-300}, {1e300}}};
  expectBox("Error in clsDataFit:fitCurve 6: Overflow|16|Error in Equation A");
}

TEST_F(fit_run_errors, table_without_rows_is_out_of_range) {
  engine_.otherwise.table = {{}, {}, {{}, {}, {}}};
  expectBox("Error in clsDataFit:fitCurve 9: Subscript out of range|16|Error in Equation A");
}

TEST_F(fit_run_errors, table_without_a_residual_column_is_out_of_range) {
  engine_.otherwise.table = {{}, {}, {{1}, {1}}};
  expectBox("Error in clsDataFit:fitCurve 9: Subscript out of range|16|Error in Equation A");
}

TEST_F(fit_run_errors, model_that_delivers_too_few_values_is_out_of_range) {
  engine_.otherwise.onEvaluate = [](std::vector<double>& y) { y.pop_back(); };
  expectBox("Error in clsDataFit:fitCurve 9: Subscript out of range|16|Error in Equation A");
}

TEST_F(fit_run_errors, one_fitted_point_divides_by_zero) {
  fittedPoints_ = 1;
  expectBox("Error in clsDataFit:fitCurve 11: Division by zero|16|Error in Equation A");
}

TEST_F(fit_run_errors, no_fitted_points_are_out_of_range) {
  fittedPoints_ = 0;
  expectBox("Error in clsDataFit:fitCurve 9: Subscript out of range|16|Error in Equation A");
}

TEST_F(fit_run_errors, negative_number_of_fitted_points_is_out_of_range) {
  fittedPoints_ = -3;
  expectBox("Error in clsDataFit:fitCurve 9: Subscript out of range|16|Error in Equation A");
}

TEST_F(fit_run_errors, range_that_begins_at_zero_is_an_invalid_argument) {
  from_ = 0;
  expectBox(
      "Error in clsDataFit:fitCurve 5: Invalid procedure call or argument|16|Error in Equation A");
}

TEST_F(fit_run_errors, no_points_are_out_of_range) {
  points_ = PointArray();
  expectBox("Error in clsDataFit:fitCurve 9: Subscript out of range|16|Error in Equation A");
}

TEST_F(fit_run_errors, status_handler_that_throws_ends_the_run) {
  const auto fitting = makeFitting();
  fitting->StatusUpdate = [](const std::string& text) { throw std::runtime_error(text); };
  EXPECT_EQ(fit(*fitting), PointArray());
  EXPECT_EQ(boxes(), Journal{"Error in clsDataFit:fitCurve 5: Started fitting with equation: "
                             "A|16|Error in Equation A"});
  EXPECT_EQ(fitted(), Journal());
}

TEST_F(fit_run_errors, progress_handler_that_throws_ends_the_run) {
  const auto fitting = makeFitting();
  fitting->Progress = [](std::int16_t, std::int16_t) { throw Error(18, "host", "interrupt"); };
  fit(*fitting);
  EXPECT_EQ(boxes(), Journal{"Error in clsDataFit:fitCurve 18: interrupt|16|Error in Equation A"});
}

TEST_F(fit_run_errors, handler_that_throws_at_the_end_leaves_nothing) {
  const auto fitting = makeFitting();
  fitting->StatusUpdate = [](const std::string& text) {
    if (text.starts_with("Determined")) throw Error(18, "host", "interrupt");
  };
  EXPECT_EQ(fit(*fitting), PointArray());
  EXPECT_TRUE(isEmpty_);
  EXPECT_EQ(boxes(), Journal{"Error in clsDataFit:fitCurve 18: interrupt|16|Error in Equation B"});
}

TEST_F(fit_run_errors, run_after_an_error_is_a_run_like_any_other) {
  engine_.solutions["A"].onAttach = [this] {
    engine_.solutions.clear();
    throw Error(5, "engine", "once");
  };
  const auto fitting = makeFitting();
  fit(*fitting);
  EXPECT_EQ(fit(*fitting).size(), 3U);
  EXPECT_NE(fitting->ResultDetails(), "");
}

}  // namespace
}  // namespace pelmora
