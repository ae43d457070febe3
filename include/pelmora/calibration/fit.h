// Merging and fitting raw points: what is asked for, and everything that came of it.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/equations.h>
#include <pelmora/calibration/observer.h>
#include <pelmora/calibration/ranking.h>
#include <pelmora/calibration/values.h>
#include <pelmora/export.h>
#include <pelmora/fit_outcome.h>

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace pelmora::calibration {

// Which equation is chosen of those that pass the tests.
enum class Choice {
  adjustedR2 = 0  // the one with the highest adjusted R2; hosts of the component know this rule
};

// Where the range that was asked for reaches beyond the merged points.
enum class RangePolicy {
  refuse = 0,      // OutOfRange
  wholeRange = 1,  // the range of the merged points instead
  extrapolate = 2  // as asked for
};

struct FitSettings {
  std::optional<double> min{}, max{};  // Roshko; absent: that end of the merged points
  std::int16_t points = 40;            // of the curve's table, evenly spaced in the logarithm
  // Per cent that a raw point may lie off the curve. Reading a table of 40 points linearly over the
  // three and a half decades of two fluids takes up to 0.2 of it, the noise of a good calibration
  // the rest.
  double band = 0.3;
  bool ratio = false;            // a rotor ratio: the curve must fall with Roshko
  bool inverted = false;         // merge the raw parts from the other end
  bool ignoreResiduals = false;  // leave the residual test out
  Choice choice = Choice::adjustedR2;
  RangePolicy outside = RangePolicy::refuse;
  EquationList equations{};
};

// The settings that a stored curve keeps, and back. A range that is kept is taken as it is, as a
// stored curve's may reach beyond its points.
//
// Errors: BadData where the kept text of the equations holds none.
[[nodiscard]] PELMORA_API FitSettings settingsToRepeat(const CurveSettings& kept);

// A raw point that the merge left out.
struct CutPoint {
  int part = 0;            // 1 to 4
  std::size_t number = 0;  // from 1, in the order in which the part is stored
  double roshko = 0, strouhal = 0;
};

// A fit that has been made. Nothing of it is stored.
struct Fit {
  Meter meter;  // empty where the points came from no database
  std::string series;
  std::int32_t seriesID = 0;
  std::uint64_t basis = 0;  // fingerprint of the raw points and whose they are, see store()
  FitSettings settings;
  double min = 0, max = 0;    // of the curve, Roshko
  bool isWholeRange = false;  // the curve covers exactly the merged points
  std::array<std::size_t, 4> rawPoints{};
  PointArray merged;
  std::vector<CutPoint> cut;
  PointArray curve;  // the predicted table; no bounds where no equation was chosen
  FitOutcome outcome;
  std::string report;  // the text that is stored beside the curve

  [[nodiscard]] bool accepted() const { return outcome.Chosen.has_value() && !curve.empty(); }
  // The chosen equation; needs accepted().
  [[nodiscard]] const EquationOutcome& chosen() const { return outcome.Equations[*outcome.Chosen]; }
  // Why no equation was chosen, one clause; empty where one was.
  [[nodiscard]] PELMORA_API std::string reason() const;
  // From the best to the worst.
  [[nodiscard]] std::vector<RankedEquation> equations() const { return ranking(outcome); }
};

// The one that came nearest to passing: a later test failed, and by less. Null where none was
// tried.
[[nodiscard]] PELMORA_API const EquationOutcome* nearestEquation(const Fit& fit);

// The narrowest band, with two digits, in which the merged points lie around the equation's table;
// nothing where 100 % are not enough or the equation has no table.
[[nodiscard]] PELMORA_API std::optional<double> passingBand(const Fit& fit,
                                                            const EquationOutcome& equation);

// Fits points that are in no database: up to four raw parts, each n points of Roshko and Strouhal.
// A part of fewer than two points is left out.
//
// Errors: BadData where no part has two points, a value is not finite, or all parts together have
//         more points than a fit takes (32,767); OutOfRange as RangePolicy says, and where min is
//         not below max; Cancelled. That no equation passes is no error: see Fit::reason().
[[nodiscard]] PELMORA_API Fit fit(std::span<const PointArray> parts,
                                  const FitSettings& settings = {}, const Observer& observer = {});

}  // namespace pelmora::calibration
