// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/api/draft.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace pelmora::cli::workbench {
namespace {

using calibration::BadData;
using calibration::ExcludedPoint;
using calibration::StoredSeries;

// Every point of a part in its order, excluded ones too.
std::map<std::size_t, std::pair<double, double>> wholePart(const StoredSeries& stored, int part) {
  std::map<std::size_t, std::pair<double, double>> whole;
  const PointArray& raw = stored.raw.at(static_cast<std::size_t>(part - 1));
  for (std::size_t i = 0; i < raw.size(); ++i)
    whole.emplace_hint(whole.end(), stored.numberOf(part, i), std::pair{raw(i, 0), raw(i, 1)});
  for (const ExcludedPoint& point : stored.excluded) {
    if (point.part == part) whole.emplace(point.number, std::pair{point.roshko, point.strouhal});
  }
  return whole;
}

std::map<PointPlace, std::string> reasonsOf(const std::vector<DraftExclusion>& wanted) {
  std::map<PointPlace, std::string> reasons;
  for (const DraftExclusion& exclusion : wanted) {
    if (!reasons.emplace(exclusion.place, exclusion.reason).second) {
      throw BadData({"point " + std::to_string(exclusion.place.number) + " of part " +
                         std::to_string(exclusion.place.part) + " is listed twice",
                     "'excluded'", "list it once"});
    }
  }
  return reasons;
}

}  // namespace

StoredSeries withExclusions(const StoredSeries& stored, const std::vector<DraftExclusion>& wanted) {
  auto reasons = reasonsOf(wanted);
  StoredSeries draft = stored;
  draft.excluded.clear();
  for (int part = 1; part <= 4; ++part) {
    std::vector<std::pair<double, double>> used;
    for (const auto& [number, values] : wholePart(stored, part)) {
      const auto out = reasons.find({part, number});
      if (out == reasons.end()) {
        used.push_back(values);
        continue;
      }
      draft.excluded.push_back(
          {part, number, values.first, values.second, "", {out->second, "", ""}});
      reasons.erase(out);
    }
    PointArray points(used.size());
    for (std::size_t i = 0; i < used.size(); ++i) {
      points(i, 0) = used[i].first;
      points(i, 1) = used[i].second;
    }
    draft.raw.at(static_cast<std::size_t>(part - 1)) = used.empty() ? PointArray() : points;
  }
  if (reasons.empty()) return draft;
  const PointPlace& unknown = reasons.begin()->first;
  throw BadData({"the series has no point " + std::to_string(unknown.number) + " in part " +
                     std::to_string(unknown.part),
                 "series '" + stored.name + "'", "load the series again"});
}

void storeExclusions(calibration::Database& lab, const StoredSeries& now,
                     const std::vector<DraftExclusion>& wanted, bool alsoDerived) {
  const auto reasons = reasonsOf(wanted);
  std::set<PointPlace> out;
  std::map<int, std::vector<std::size_t>> back;
  for (const ExcludedPoint& point : now.excluded) {
    const PointPlace place{point.part, point.number};
    if (reasons.contains(place))
      out.insert(place);
    else
      back[point.part].push_back(point.number);
  }
  std::map<std::pair<int, std::string>, std::vector<std::size_t>> leave;
  for (const auto& [place, reason] : reasons) {
    if (!out.contains(place)) leave[{place.part, reason}].push_back(place.number);
  }
  const calibration::ExclusionOptions options{.alsoIn = {}, .inDerivedSeries = alsoDerived};
  for (const auto& [part, numbers] : back) {
    const calibration::PointSelection selection{.part = part, .numbers = numbers};
    (void)lab.include(now.meter, now.name, selection, options);
  }
  for (const auto& [group, numbers] : leave) {
    const calibration::PointSelection selection{.part = group.first, .numbers = numbers};
    (void)lab.exclude(now.meter, now.name, selection, group.second, options);
  }
}

}  // namespace pelmora::cli::workbench
