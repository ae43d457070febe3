// The uncertainty budget of a calibration curve at one Roshko number.
// SPDX-License-Identifier: MIT
#pragma once

#include "curves/body_expansion.h"
#include "uncertainty/component_size.h"
#include "uncertainty/propagation.h"
#include "uncertainty/stand_uncertainty.h"

#include <functional>
#include <string>
#include <vector>

namespace pelmora::uncertainty {

// What the y of a series is: f/q of one rotor, or the quotient of the frequencies of both.
enum class SeriesKind { rotor, quotientAB, quotientBA };

// A curve at one place.
//
// Units:  strouhal and fitUncertainty in the unit of the series; slope: dy/dRoshko.
struct CurvePlace {
  SeriesKind kind = SeriesKind::rotor;
  double roshko = 0, strouhal = 0, slope = 0;
  // The standard uncertainty of the curve itself: sqrt(g'Vg) of an equation with n - p degrees of
  // freedom, curveSd of the reference curve with infinitely many, because Student's factor is in
  // it.
  double fitUncertainty = 0, fitDegrees = knownExactly;
  // Half-width of the error of reading a table instead of the curve, in per cent; 0 for none.
  double readingErrorPercent = 0;
  // The curve nearby, for more than the first order; without it, the tangent. Called from several
  // threads at once.
  std::function<double(double)> curve;
  // The values that absolute uncertainties of the stand refer to.
  OperatingPoint operating;
  double temperatureF = 70;
  BodyExpansion expansion;
};

struct BudgetRow {
  Cause cause = Cause::fit;
  std::string label;
  double standardUncertainty = 0;  // in `unit`
  std::string_view unit;           // empty: the unit of the series
  Distribution distribution = Distribution::normal;
  Evaluation evaluation = Evaluation::b;
  double degreesOfFreedom = knownExactly;
  double sensitivity = 0;   // contribution / standardUncertainty
  double contribution = 0;  // in the unit of the series; signed where one error is behind it
  double betweenRotors = 0, betweenCalibrations = 0;
};

struct Budget {
  std::string stand;  // its name
  double value = 0;
  std::vector<BudgetRow> rows;
  double standardUncertainty = 0, degreesOfFreedom = knownExactly;
  double probability = 0, coverageFactor = 0;
  // Whether the coverage factor comes from the distributions of the rows instead of the degrees of
  // freedom.
  bool isConvolved = false;
  // U = k u, or that of the CMC where this is larger; in the unit of the value and in per cent.
  double expanded = 0, expandedPercent = 0;
  double cmcPercent = 0;
  bool isCmc = false;
};

// The measurement behind a curve: its errors as inputs with estimate 0. With relative errors e of
// frequency f, flow q and viscosity v, t of the temperature T, and G the expansion factors, the
// stand recorded
//
//   Roshko' = Roshko (1 + e_f) G_R(T + t) / ((1 + e_v) (1 + b t) G_R(T))
//   Strouhal' = Strouhal (1 + e_f) G_S(T + t) / ((1 + e_q) G_S(T)),
//
// b being Component::viscosityChange, so that the curve h that was fitted to what it recorded
// stands for
//
//   Strouhal(Roshko) = (h(Roshko') + e_fit) Strouhal / Strouhal' x (1 + e_model) ...
//
// To first order, viscosity acts through Roshko dy/dRoshko, flow through y, and frequency through
// their difference. The quotient of two rotors knows no flow; its Roshko number is the sum of both.
// Repeatability and reproducibility of the two rotors enter as (1 + e_A) / (1 + e_B).
//
// Shape:  rowOf: for each input the row of the budget that it belongs to. The first input is the
//         fit.
struct CurveMeasurement {
  std::vector<Input> inputs;
  std::vector<Correlation> correlations;
  std::vector<std::size_t> rowOf;
  std::vector<BudgetRow> rows;  // without sensitivity and contribution
  Model model;
};

// Errors: BadData if Roshko is not above 0, a number is not finite, Strouhal is 0, or an absolute
//         uncertainty misses the value it refers to.
[[nodiscard]] CurveMeasurement curveMeasurement(const CurvePlace& place,
                                                const StandUncertainty& stand);

// What is common to all points is added here, after the fit: it weighs no residual.
//
// Errors: as curveMeasurement and propagate.
[[nodiscard]] Budget curveBudget(const CurvePlace& place, const StandUncertainty& stand);

// Student's factor for the effective degrees of freedom assumes a nearly normal sum. Where the
// shapes of the rows change the factor of a normal sum by more than this share, because a
// rectangular row dominates, it comes from their distributions (GUM G.1.4, G.6.5).
inline constexpr double normalEnough = 0.03;

// Fills in the rest of a budget that has value, rows, standardUncertainty and degreesOfFreedom.
void expand(Budget& budget, double probability, double cmcPercent);
// Fills in the rest of a budget that has its value and independent rows. The CMC is 0.
void combineRows(Budget& budget, double probability);

}  // namespace pelmora::uncertainty
