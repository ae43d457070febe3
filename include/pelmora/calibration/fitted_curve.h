// The curve that was fitted, not its table: its own value anywhere, with its uncertainty.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/budget.h>
#include <pelmora/calibration/curve.h>
#include <pelmora/calibration/fit.h>
#include <pelmora/export.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace pelmora::calibration {

// The text of a file that states the uncertainty of a stand (docs/file_formats.md).
struct StandStatement {
  std::string text;
  std::string file;  // where it came from
  std::string storedAt{}, userName{};
};

// Checks the text. Result: the name of the stand, may be empty.
//
// Errors: BadData that names line, setting and remedy.
PELMORA_API std::string checkStandStatement(const StandStatement& statement);

// Where the values of a curve come from.
enum class CurveSource {
  equation = 0,
  reference = 1,  // the reference curve of a trusted fit
  table = 2       // neither is known any more; the table is read linearly, without an uncertainty
};

// "equation", "reference curve", "table".
[[nodiscard]] PELMORA_API const char* curveSourceName(CurveSource source);

// How a value is found.
enum class ReadAs {
  none = 0,    // the curve's own value
  linear = 1,  // from the table, as a flow computer reads it; the reading error is part of U
  log = 2,     // linear in ln Roshko
  cubic = 3    // through four points in ln Roshko
};

// "linear", "log", "cubic"; empty for none.
[[nodiscard]] PELMORA_API const char* tableReadingKey(ReadAs reading);

struct EvaluateOptions {
  ReadAs reading = ReadAs::none;
  // For stands whose uncertainty is stated in a unit rather than in per cent: the kinematic
  // viscosity in the unit of the calibration (cSt), with which the Roshko number gives frequency
  // and flow. Absent: such a stand gives BadData.
  std::optional<double> viscosity{};
  double temperatureF = 70;
};

// A value of a curve.
struct CurveEstimate {
  double roshko = 0, strouhal = 0;
  double slope = 0;             // dStrouhal / dRoshko
  bool isExtrapolated = false;  // on the straight line through the two outermost table points
  // Absent beyond the ends, and where the uncertainty of the curve is not known.
  std::optional<Budget> budget{};
  // Of the Roshko number at this Strouhal number: U / |slope|; absent as the budget.
  [[nodiscard]] PELMORA_API std::optional<double> expandedRoshko() const;
};

// A value, independent of the database; copies share what they hold. Use copies in one thread at a
// time.
class PELMORA_API FittedCurve {
 public:
  // Of a fit that has a curve. statement: of the stand that measured it, if it is known.
  //
  // Errors: NoFit if the fit has no curve; BadData for the statement.
  explicit FittedCurve(const Fit& fit, const std::optional<StandStatement>& statement = {});
  // Of a stored table whose fit cannot be made again.
  FittedCurve(const Curve& table, const std::string& series);

  [[nodiscard]] CurveSource source() const;
  // Of the equation; "Reference curve"; empty for a table.
  [[nodiscard]] const std::string& name() const;
  [[nodiscard]] const Curve& table() const;
  // Of the fit, in words; none for a table.
  [[nodiscard]] const std::vector<std::string>& warnings() const;
  [[nodiscard]] double lowestRoshko() const { return table().lowestRoshko(); }
  [[nodiscard]] double highestRoshko() const { return table().highestRoshko(); }

  // Strouhal at any number of Roshko numbers, in their order.
  [[nodiscard]] std::vector<double> operator()(std::span<const double> roshko) const;
  [[nodiscard]] double operator()(double roshko) const { return (*this)({&roshko, 1}).front(); }

  // As a flow computer reads the table, without an uncertainty; ReadAs::none: as above.
  [[nodiscard]] std::vector<double> read(std::span<const double> roshko, ReadAs reading) const;

  // dStrouhal / dRoshko; beyond the ends, of the straight line.
  [[nodiscard]] std::vector<double> slopes(std::span<const double> roshko) const;

  // Errors: BadData if the stand's uncertainty cannot be applied there.
  [[nodiscard]] CurveEstimate at(double roshko, const EvaluateOptions& options = {}) const;
  [[nodiscard]] std::vector<CurveEstimate> at(std::span<const double> roshko,
                                              const EvaluateOptions& options = {}) const;
  // Roshko at a Strouhal number. Errors: as Curve::inverse(), and as at().
  [[nodiscard]] CurveEstimate inverse(double strouhal, const EvaluateOptions& options = {}) const;

  // Draws from all errors of the budget, until two digits are stable, with `mostTrials` at most.
  //
  // Errors: BadData beyond the ends and where there is no budget; as at().
  [[nodiscard]] MonteCarloCheck monteCarlo(double roshko, const EvaluateOptions& options,
                                           std::size_t mostTrials, std::uint64_t seed = 1) const;

  class Body;
  [[nodiscard]] const Body& body() const { return *body_; }

 private:
  std::shared_ptr<const Body> body_;
};

}  // namespace pelmora::calibration
