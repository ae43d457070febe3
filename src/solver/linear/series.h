// The points of a run with everything that several equations can share.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/linear/power_fit.h"

#include <map>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::solver {

struct Series {
  std::vector<double> x, y;
  DoubleDouble squares;           // sum of y^2
  DoubleDouble squaresAboutMean;  // sum of (y - mean)^2
  Series(std::span<const double> xs, std::span<const double> ys);

  [[nodiscard]] bool holds(std::span<const double> xs, std::span<const double> ys) const;

  // Functions of x by their text, and the fits over them by function, lowest power and columns.
  // Filled by the equations as they come; one thread at a time.
  std::map<std::string, std::shared_ptr<const Column>> functions;
  std::map<std::pair<std::string, int>, std::shared_ptr<const PowerFit>> powerFits;
};

// The points of the last fit: another equation with equal points gets the same series.
class SeriesCache {
 public:
  // The kept series where it has these points, or nothing.
  [[nodiscard]] std::shared_ptr<Series> known(std::span<const double> x,
                                              std::span<const double> y) const;
  // Keeps a new series in place of the last.
  [[nodiscard]] std::shared_ptr<Series> add(std::span<const double> x, std::span<const double> y);

 private:
  std::shared_ptr<Series> last_;
};

}  // namespace pelmora::solver
