// SPDX-License-Identifier: MIT
#include "tables/table_reader.h"

#include <pelmora/calibration/failure.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace pelmora::tables {

std::string_view readingName(Reading reading) {
  switch (reading) {
    case Reading::linear: return "linear";
    case Reading::logarithmic: return "logarithmic";
    case Reading::cubic: break;
  }
  return "cubic";
}

std::size_t fewestPoints(Reading reading) { return reading == Reading::cubic ? 4 : 2; }

TableReader::TableReader(std::span<const double> x, std::span<const double> y, Reading reading)
    : reading_(reading), y_(y.begin(), y.end()) {
  const auto refuse = [](const std::string& what, const std::string& remedy) {
    throw calibration::BadData({what, "", remedy});
  };
  if (x.size() != y.size()) refuse("the columns of the table differ in length", "give each x a y");
  if (x.size() < fewestPoints(reading)) {
    refuse("a table for " + std::string(readingName(reading)) + " reading needs at least " +
               std::to_string(fewestPoints(reading)) + " points",
           "ask for more points");
  }
  for (std::size_t i = 0; i < x.size(); ++i) {
    const bool isGood = std::isfinite(x[i]) && std::isfinite(y[i]) && x[i] > 0;
    if (!isGood || (i > 0 && x[i] <= x[i - 1])) {
      refuse("point " + std::to_string(i + 1) + " of the table is not usable",
             "give finite numbers, with x above 0 and rising");
    }
    place_.push_back(reading == Reading::linear ? x[i] : std::log(x[i]));
  }
}

double TableReader::operator()(double x) const {
  const double place = reading_ == Reading::linear ? x : std::log(x);
  const auto after = std::upper_bound(place_.begin() + 1, place_.end() - 1, place);
  const auto segment = static_cast<std::size_t>(after - place_.begin()) - 1;
  if (reading_ == Reading::cubic) return cubicAt(place, segment);
  const double share = (place - place_[segment]) / (place_[segment + 1] - place_[segment]);
  return y_[segment] + share * (y_[segment + 1] - y_[segment]);
}

double TableReader::cubicAt(double place, std::size_t segment) const {
  const std::size_t first =
      std::min(segment == 0 ? std::size_t{0} : segment - 1, place_.size() - 4);
  double sum = 0;
  for (std::size_t i = first; i < first + 4; ++i) {
    double weight = 1;
    for (std::size_t k = first; k < first + 4; ++k) {
      if (k != i) weight *= (place - place_[k]) / (place_[i] - place_[k]);
    }
    sum += weight * y_[i];
  }
  return sum;
}

}  // namespace pelmora::tables
