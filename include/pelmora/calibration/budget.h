// The uncertainty of a calibration curve: what it consists of, by the GUM.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace pelmora::calibration {

// One cause of uncertainty.
struct BudgetRow {
  // "fit", or "scatter" of a single measured value; "reference flow", "viscosity", "temperature",
  // "frequency", "repeatability", "reproducibility", "model", "table reading".
  std::string cause;
  std::string label;               // distinguishes rows of one cause; may be empty
  double standardUncertainty = 0;  // in `unit`
  std::string unit;                // empty: the unit of the value
  std::string distribution;        // "normal", "rectangular", "triangular", "U-shaped"
  char type = 'B';                 // 'A': from statistics of observations
  double degreesOfFreedom = 0;     // may be infinite
  double sensitivity = 0;          // contribution / standardUncertainty
  double contribution = 0;         // standard uncertainty in the unit of the value, signed
};

// The budget of one value. U = k u, or the laboratory's CMC if that is larger.
//
// Units:  value, standardUncertainty and expanded in the unit of the value.
struct Budget {
  // The stand whose file the rows come from. Without a stand, the budget contains only the scatter
  // of the points, and every output says so.
  std::string stand;
  bool hasStand = false;
  bool isOfPoint = false;  // the value is a single measured one
  // Whether the value is a flow in service, and whether the budget includes the instruments there.
  bool isOfFlow = false, hasInstruments = false;
  double value = 0;
  double standardUncertainty = 0, degreesOfFreedom = 0;  // effective (Welch-Satterthwaite)
  double probability = 0, coverageFactor = 0;
  double expanded = 0, expandedPercent = 0;
  double cmcPercent = 0;
  bool isCmc = false;        // U is the CMC
  bool isConvolved = false;  // the coverage factor comes from the distributions of the rows
  std::vector<BudgetRow> rows;

  // U to two significant digits, never below the CMC; 0 if there is no uncertainty.
  [[nodiscard]] PELMORA_API double roundedExpanded() const;
  // The same as a percentage of the value.
  [[nodiscard]] PELMORA_API double roundedPercent() const;
  // What U contains and what it does not, as a sentence: "U contains ...".
  [[nodiscard]] PELMORA_API std::string contents() const;
};

// Budget::contents() of several values of one kind, whose coverage factors may differ: "k = 1.96 to
// 2.01". Empty without a value.
[[nodiscard]] PELMORA_API std::string contentsOf(std::span<const Budget> budgets);

// A check of a budget by random draws (JCGM 101).
struct MonteCarloCheck {
  double mean = 0, standardDeviation = 0;
  double low = 0, high = 0;  // the interval that holds Budget::probability of the draws
  std::size_t trials = 0;
  bool isStable = false;  // to two digits of the standard deviation
  [[nodiscard]] double halfWidth() const { return (high - low) / 2; }
};

}  // namespace pelmora::calibration
