// SPDX-License-Identifier: MIT
#include "calibration/point_selection.h"

#include "base/readable_number.h"
#include "store/field_value.h"

#include <pelmora/calibration/failure.h>

#include <cmath>

namespace pelmora::calibration {
namespace {

bool hasRange(const PointSelection& selection) {
  return selection.below || selection.above || selection.between;
}

void requireValid(const PointSelection& selection, const std::string& place) {
  const auto refuse = [&](const std::string& why, const std::string& remedy) {
    throw BadData({place + ": " + why, place, remedy});
  };
  if (selection.part && (*selection.part < 1 || *selection.part > 4))
    refuse("there is no raw part " + std::to_string(*selection.part), "use 1 to 4");
  if (!selection.numbers.empty() && !selection.part)
    refuse("point numbers count within a raw part", "name the part");
  if (selection.numbers.empty() && !selection.all && !hasRange(selection))
    refuse("no points are selected", "give point numbers, a range of Roshko or all of a part");
  for (const auto& bound : {selection.below, selection.above}) {
    if (bound && !std::isfinite(*bound)) refuse("a bound is not finite", "give a Roshko number");
  }
  if (selection.between && !(selection.between->first <= selection.between->second))
    refuse("the range from " + significantText(selection.between->first, 15) + " to " +
               significantText(selection.between->second, 15) + " is empty",
           "give a range from small to large");
}

bool isInRange(const PointSelection& selection, double roshko) {
  if (selection.below && roshko < *selection.below) return true;
  if (selection.above && roshko > *selection.above) return true;
  return selection.between && selection.between->first <= roshko &&
         roshko <= selection.between->second;
}

}  // namespace

SelectedNumbers selectedNumbers(const PointSelection& selection, const WholeParts& parts,
                                const std::string& place) {
  requireValid(selection, place);
  SelectedNumbers selected;
  bool isEmpty = true;
  for (std::size_t p = 0; p < parts.size(); ++p) {
    if (selection.part && static_cast<std::size_t>(*selection.part) != p + 1) continue;
    const auto& points = parts[p].Points;
    for (const std::size_t number : selection.numbers) {
      if (number >= 1 && number <= points.size()) {
        selected[p].insert(number);
        continue;
      }
      throw BadData({place + ", raw part " + std::to_string(p + 1) + ": there is no point " +
                         std::to_string(number) +
                         (points.empty() ? "; the part has no points"
                                         : "; it has points 1 to " + std::to_string(points.size())),
                     place, "list the points of the series"});
    }
    for (std::size_t i = 0; i < points.size(); ++i) {
      if (selection.all || isInRange(selection, numberOrNan(points[i].Roshko)))
        selected[p].insert(i + 1);
    }
    isEmpty = isEmpty && selected[p].empty();
  }
  if (isEmpty)
    throw BadData(
        {place + ": no point is in the selection", place, "list the points of the series"});
  return selected;
}

}  // namespace pelmora::calibration
