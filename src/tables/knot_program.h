// The best knots of a curve with wiggles, by dynamic programming.
// SPDX-License-Identifier: MIT
#pragma once

#include "tables/interval_search.h"

#include <cstddef>
#include <vector>

namespace pelmora::tables {

// Up to this many points; a longer table follows every wiggle.
inline constexpr std::size_t mostProgrammedPoints = 200;

// Knots whose largest error is nearly the smallest possible one: the best of all choices from an
// even grid, then again and again the best of all choices close to the last ones. Errors are
// weighed by a high power, so that the largest ones decide and the others are evened out.
//
// guess: an error that is known to be possible, above 0.
// Source: Bellman: On the approximation of curves by line segments using dynamic programming,
//         Communications of the ACM 4 (1961) 284.
[[nodiscard]] std::vector<double> programKnots(const IntervalSearch& search, std::size_t points,
                                               double guess);

// Moves each knot to where the pieces on both sides err equally, over and over.
void balanceKnots(const IntervalSearch& search, std::vector<double>& knots);

}  // namespace pelmora::tables
