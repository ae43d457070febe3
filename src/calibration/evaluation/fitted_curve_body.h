// What a fitted curve consists of, for the parts of the service that compute with it.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/evaluation/curve_function.h"
#include "calibration/evaluation/operating_points.h"
#include "tables/table_reader.h"
#include "uncertainty/curve_budget.h"

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace pelmora::calibration {

class FittedCurve::Body {
 public:
  Body(Curve curveTable, std::string curveName, const std::string& series, bool isRatio,
       std::shared_ptr<const CurveFunction> behind, const CurveOrigin& origin);

  Curve table;
  std::string name;
  std::vector<std::string> warnings;
  uncertainty::SeriesKind kind = uncertainty::SeriesKind::rotor;
  std::shared_ptr<const CurveFunction> function;
  uncertainty::StandUncertainty stand;
  bool hasStand = false;
  std::string roshkoUnit, strouhalUnit;  // never empty
  double hertzPerCentistoke = 1;         // in the unit of Roshko
  OperatingPoints measuredAt;

  // `roshko`, or the end of the table if it lies beyond that end by no more than rounding.
  [[nodiscard]] double settled(double roshko) const;
  [[nodiscard]] bool isInside(double roshko) const;
  // The number of the table point before `roshko`, which is inside the table; never the last point.
  [[nodiscard]] std::size_t segmentAt(double roshko) const;
  [[nodiscard]] tables::TableReader reader(ReadAs reading) const;

  // A place inside the table, with everything that a budget needs. value.uncertainty is absent if
  // it is not known.
  struct Place {
    FunctionValue value;
    uncertainty::CurvePlace place;
    uncertainty::StandUncertainty stand;
  };
  [[nodiscard]] std::vector<Place> places(std::span<const double> roshko,
                                          const EvaluateOptions& options) const;

  // The budget of the value there; absent beyond the table and if the uncertainty is not known.
  [[nodiscard]] std::optional<uncertainty::Budget> budgetAt(double roshko,
                                                            const EvaluateOptions& options) const;

  // What uncertainties in units refer to, on the curve or at a measured point.
  [[nodiscard]] uncertainty::OperatingPoint operatingAt(double roshko, double strouhal,
                                                        const EvaluateOptions& options) const;

  // The largest error of reading the table from one of its points to the next, in per cent.
  [[nodiscard]] double readingErrorAt(double roshko, ReadAs reading) const;

 private:
  // Adds the places of a portion; `read` is that of options.reading.
  void addPlaces(std::span<const double> roshko, const std::optional<tables::TableReader>& read,
                 const EvaluateOptions& options, std::vector<Place>& found) const;
  void addDeparture(const FunctionValue& value, uncertainty::StandUncertainty& to) const;
  mutable std::array<std::vector<double>, 4> readingErrors_;  // by ReadAs, then by segment
};

// The points of a table, with the bands that a fit has computed for them.
[[nodiscard]] std::vector<CurvePoint> pointsWithBands(const PointArray& curve,
                                                      const FitOutcome& outcome);

// A budget as the service states it.
[[nodiscard]] Budget publicBudget(const uncertainty::Budget& budget, bool hasStand);

[[nodiscard]] tables::Reading readingOf(ReadAs reading);

// Errors: Cancelled at a stop.
void requireGoOn(const EvaluateOptions& options);

}  // namespace pelmora::calibration
