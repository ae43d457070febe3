// A fitted curve rather than its table: its value at any Roshko number, with its uncertainty.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/budget.h>
#include <pelmora/calibration/curve.h>
#include <pelmora/calibration/fit.h>
#include <pelmora/calibration/points.h>
#include <pelmora/export.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

namespace pelmora::calibration {

// The text of a file that states the uncertainty of a stand (docs/file_formats.md).
struct StandStatement {
  std::string text;
  std::string file;  // where the text came from
  std::string storedAt{}, userName{};
};

// A point of a series, with what the stand read there.
struct PointReading {
  int part = 0;  // 1 to 4
  double roshko = 0, strouhal = 0;
  StandReading reading;
};

// What is known about the calibration behind a curve. Units are those recorded with it (details.h);
// without one, Roshko is taken to be in Hz/cSt, Strouhal in pulses/gal, frequencies in Hz and
// viscosities in cSt.
struct CurveOrigin {
  std::optional<StandStatement> stand{};  // of the stand that measured the points
  std::string roshkoUnit{}, strouhalUnit{}, frequencyUnit{}, viscosityUnit{}, flowUnit{};
  // For a stand whose uncertainty is stated in units rather than in per cent: the values that it
  // refers to.
  std::vector<PointReading> readings{};
};

// Checks the text. Result: the name of the stand; may be empty.
//
// Errors: BadData that names the line and the setting, with a remedy.
PELMORA_API std::string checkStandStatement(const StandStatement& statement);

// Where the values of a curve come from.
enum class CurveSource {
  equation = 0,
  reference = 1,  // the reference curve of a trusted fit
  table = 2       // neither is known any more; the table is read linearly, without an uncertainty
};

// "equation", "reference curve", "table".
[[nodiscard]] PELMORA_API const char* curveSourceName(CurveSource source);

// How a value is read.
enum class ReadAs {
  none = 0,    // the curve's own value
  linear = 1,  // from the table, as a flow computer reads it; the reading error is part of U
  log = 2,     // linear in ln Roshko
  cubic = 3    // through four points in ln Roshko
};

// "linear", "log", "cubic"; empty for none.
[[nodiscard]] PELMORA_API const char* tableReadingKey(ReadAs reading);
// The reading of such a key; nothing for any other text.
[[nodiscard]] PELMORA_API std::optional<ReadAs> tableReadingOf(const std::string& key);

struct EvaluateOptions {
  ReadAs reading = ReadAs::none;
  // For stands whose uncertainty is stated in a unit rather than in per cent: the kinematic
  // viscosity in cSt, with which the Roshko number gives frequency and flow. Absent: what the stand
  // read near this Roshko number; BadData if that is not known.
  std::optional<double> viscosity{};
  double temperatureF = 70;
  // Requesting a stop ends what takes long, at many places or with many trials, with Cancelled.
  std::stop_token stop{};
};

// A value of a curve.
struct CurveEstimate {
  double roshko = 0, strouhal = 0;
  double slope = 0;             // dStrouhal / dRoshko
  bool isExtrapolated = false;  // on the straight line through the two outermost table points
  // Absent beyond the ends, and where the uncertainty of the curve is not known.
  std::optional<Budget> budget{};
  // U of the Roshko number at this Strouhal number: U / |slope|. Absent without a budget, and where
  // the slope is 0.
  [[nodiscard]] PELMORA_API std::optional<double> expandedRoshko() const;
};

// A value, independent of the database. Copies share their contents: use a curve and its copies in
// only one thread at a time.
class PELMORA_API FittedCurve {
 public:
  // The curve of a fit. statement: from the stand that measured the points, if it is known.
  //
  // Errors: NoFit if the fit has no curve; BadData for the statement.
  explicit FittedCurve(const Fit& fit, const std::optional<StandStatement>& statement = {});
  // Errors: Cancelled at a stop, too.
  FittedCurve(const Fit& fit, const CurveOrigin& origin, const std::stop_token& stop = {});
  // A stored table whose fit cannot be reproduced.
  FittedCurve(const Curve& table, const std::string& series, const CurveOrigin& origin = {});

  [[nodiscard]] CurveSource source() const;
  // The name of the equation, or "Reference curve"; empty for a table.
  [[nodiscard]] const std::string& name() const;
  [[nodiscard]] const Curve& table() const;
  // The warnings of the fit, as texts; none for a table.
  [[nodiscard]] const std::vector<std::string>& warnings() const;
  [[nodiscard]] double lowestRoshko() const { return table().lowestRoshko(); }
  [[nodiscard]] double highestRoshko() const { return table().highestRoshko(); }

  // The Strouhal numbers at these Roshko numbers, in the same order.
  [[nodiscard]] std::vector<double> operator()(std::span<const double> roshko) const;
  [[nodiscard]] double operator()(double roshko) const { return (*this)({&roshko, 1}).front(); }

  // What a flow computer reads from the table, without an uncertainty. ReadAs::none: as above.
  [[nodiscard]] std::vector<double> read(std::span<const double> roshko, ReadAs reading) const;

  // dStrouhal / dRoshko; beyond the ends, the slope of the straight line.
  [[nodiscard]] std::vector<double> slopes(std::span<const double> roshko) const;

  // Errors: BadData if the stand's uncertainty cannot be applied there.
  [[nodiscard]] CurveEstimate at(double roshko, const EvaluateOptions& options = {}) const;
  [[nodiscard]] std::vector<CurveEstimate> at(std::span<const double> roshko,
                                              const EvaluateOptions& options = {}) const;
  // Roshko at a Strouhal number. Errors: as for Curve::inverse() and at().
  [[nodiscard]] CurveEstimate inverse(double strouhal, const EvaluateOptions& options = {}) const;

  // The uncertainty of single measured values: what the stand states, and the scatter of one point
  // about the curve instead of the curve's own uncertainty. Absent beyond the ends, and where the
  // scatter is not known.
  //
  // Shape:  strouhal: the value measured at each Roshko number.
  // Errors: as for at().
  [[nodiscard]] std::vector<std::optional<Budget>> measured(
      std::span<const double> roshko, std::span<const double> strouhal,
      const EvaluateOptions& options = {}) const;

  // Draws all errors of the budget at random until two digits are stable, at most `mostTrials`
  // times.
  //
  // Errors: BadData beyond the ends and without a budget; as for at().
  [[nodiscard]] MonteCarloCheck monteCarlo(double roshko, const EvaluateOptions& options,
                                           std::size_t mostTrials, std::uint64_t seed = 1) const;

  class Body;
  [[nodiscard]] const Body& body() const { return *body_; }

 private:
  std::shared_ptr<const Body> body_;
};

}  // namespace pelmora::calibration
