// Merging and fitting raw points: the settings and everything that results.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/choice.h>
#include <pelmora/calibration/equations.h>
#include <pelmora/calibration/observer.h>
#include <pelmora/calibration/ranking.h>
#include <pelmora/calibration/trust.h>
#include <pelmora/calibration/values.h>
#include <pelmora/export.h>
#include <pelmora/fit_outcome.h>

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::calibration {

// What to do if the requested range extends beyond the merged points.
enum class RangePolicy {
  refuse = 0,      // OutOfRange
  wholeRange = 1,  // the range of the merged points instead
  extrapolate = 2  // as requested
};

// Where the points of a curve's table lie.
enum class PointSpacing {
  // Evenly in the logarithm of Roshko; a trusted fit moves them closer together where the curve
  // bends if the even table, read linearly, would take more than a quarter of the band.
  usual = 0,
  // Where linear reading between them has the smallest error.
  optimal = 1
};

// "usual", "optimal": the names at the command line and in the database.
[[nodiscard]] PELMORA_API const char* spacingKey(PointSpacing spacing);
// Nothing for any other text.
[[nodiscard]] PELMORA_API std::optional<PointSpacing> spacingOf(std::string_view key);

struct FitSettings {
  // The range of the curve's table, Roshko: it crops the table, not the points. Absent: the end of
  // the fitted points.
  std::optional<double> min{}, max{};
  // Points beyond are not fitted.
  std::optional<double> fitMin{}, fitMax{};
  // Of the curve's table.
  std::int16_t points = 40;
  PointSpacing spacing = PointSpacing::usual;
  // How far a raw point may lie from the curve, in per cent. Linear interpolation in 40 points over
  // the three and a half decades of two fluids uses up to 0.2 of it, the noise of a good
  // calibration the rest.
  double band = 0.3;
  bool ratio = false;     // a rotor ratio: the curve must fall with Roshko
  bool inverted = false;  // merge the raw parts from the other end
  // Where two raw parts overlap, the merge cuts the trailing points of the one that reaches further
  // if they lie off the other part by more than this, in per cent; after the first point outside,
  // by more than 45 % of it. Absent: 0.1 and 0.045, the component's rule.
  std::optional<double> mergeBand{};
  bool cutsOverlap = true;       // false: the merge keeps every point
  bool ignoreResiduals = false;  // skip the residual test
  Choice choice = Choice::trusted;
  RangePolicy outside = RangePolicy::refuse;
  // Built-in equations are those of `choice`, see EquationList::builtIn().
  EquationList equations{};
  // Names of equations: only these, or all but these. referenceCurveName counts as a name too.
  std::vector<std::string> only{}, without{};
  std::optional<int> maxOrder{};  // of polynomials
};

// Changes to settings. An absent member leaves its setting as it is.
struct SettingsChange {
  std::optional<Choice> choice{};
  std::optional<double> fitMin{}, fitMax{};
  std::optional<std::vector<std::string>> only{}, without{};
  std::optional<int> maxOrder{};
  std::optional<double> mergeBand{};
  std::optional<bool> cutsOverlap{};
  std::optional<PointSpacing> spacing{};

  [[nodiscard]] PELMORA_API FitSettings appliedTo(FitSettings settings) const;
  // Whether the change would leave `settings` as they are.
  [[nodiscard]] PELMORA_API bool isInForceIn(const FitSettings& settings) const;
};

// The name under which a trusted fit stores the reference curve itself.
inline constexpr const char* referenceCurveName = "Reference curve";

// The equations that a fit with these settings tries; none if only the reference curve is left.
//
// Errors: BadData for a name that no equation has.
[[nodiscard]] PELMORA_API std::vector<ModelDefinition> equationsToTry(const FitSettings& settings);

// Turns the kept settings of a stored curve into fit settings. A kept range is used as it is, since
// that of a stored curve may extend beyond its points.
//
// Errors: BadData if the kept text of the equations holds none.
[[nodiscard]] PELMORA_API FitSettings settingsToRepeat(const CurveSettings& kept);

// A raw point that the merge left out.
struct CutPoint {
  int part = 0;            // 1 to 4
  std::size_t number = 0;  // from 1, in the order of the part; excluded points are counted
  double roshko = 0, strouhal = 0;
  // How far it lies off the line through the merged points next to it; absent beyond their ends.
  std::optional<double> offPercent{};
};

// Where a merged point comes from.
struct PointPlace {
  int part = 0;            // 1 to 4
  std::size_t number = 0;  // from 1, in the order of the part; excluded points are counted
};

// The result of a fit. Nothing of it is stored.
struct Fit {
  Meter meter;  // empty if the points came from no database
  std::string series;
  std::int32_t seriesID = 0;
  std::uint64_t basis = 0;        // fingerprint of the raw points and their series, see store()
  std::string pointsFingerprint;  // of the raw points alone, kept with the curve
  FitSettings settings;
  double min = 0, max = 0;    // of the curve, Roshko
  bool isWholeRange = false;  // the curve covers exactly the merged points
  std::array<std::size_t, 4> rawPoints{};
  PointArray merged;
  std::vector<PointPlace> places;  // of the merged points, in their order
  std::vector<CutPoint> cut;
  // The merged points that the equations were fitted to: all of them, unless fitMin or fitMax left
  // some out or a trusted fit distrusts some.
  PointArray fitted;
  PointArray curve;  // the predicted table; no bounds if no equation was chosen
  FitOutcome outcome;
  std::optional<Trust> trust;  // of a trusted fit with enough points
  std::string trouble;         // what about the points makes a trusted fit impossible, as a clause
  std::string report;          // the text that is stored with the curve

  [[nodiscard]] bool accepted() const { return outcome.Chosen.has_value() && !curve.empty(); }
  // The chosen equation; needs accepted().
  [[nodiscard]] const EquationOutcome& chosen() const { return outcome.Equations[*outcome.Chosen]; }
  // Why no equation was chosen, as one clause; empty if one was.
  // Errors: Cancelled at a stop.
  [[nodiscard]] PELMORA_API std::string reason(const std::stop_token& stop = {}) const;
  // From best to worst.
  [[nodiscard]] std::vector<RankedEquation> equations() const {
    return ranking(outcome, settings.choice);
  }
};

// The equation that came nearest to passing: it failed at a later test, or by less. Null if none
// was tried.
//
// Errors: Cancelled at a stop.
[[nodiscard]] PELMORA_API const EquationOutcome* nearestEquation(const Fit& fit,
                                                                 const std::stop_token& stop = {});

// The narrowest band, with two digits, around the equation's table that contains the merged points;
// nothing if 100 % is not enough or the equation has no table.
//
// Errors: Cancelled at a stop.
[[nodiscard]] PELMORA_API std::optional<double> passingBand(const Fit& fit,
                                                            const EquationOutcome& equation,
                                                            const std::stop_token& stop = {});

// Fits points that are not in a database: up to four raw parts, each n points of Roshko and
// Strouhal. A part with fewer than two points is left out.
//
// Errors: BadData if no part has two points, a value is not finite, or all parts together have more
//         points than a fit accepts (32,767); OutOfRange according to RangePolicy, and if min is
//         not below max; Cancelled. A fit without a passing equation is not an error: see reason().
[[nodiscard]] PELMORA_API Fit fit(std::span<const PointArray> parts,
                                  const FitSettings& settings = {}, const Observer& observer = {});

}  // namespace pelmora::calibration
