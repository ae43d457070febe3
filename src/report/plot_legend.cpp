// SPDX-License-Identifier: MIT
#include "report/plot_legend.h"

#include "base/readable_number.h"

#include <algorithm>

namespace pelmora::report {

std::vector<LegendEntry> legendOf(const SeriesReport& series) {
  std::vector<LegendEntry> entries;
  for (const RawPart& part : series.parts) {
    const std::string number = std::to_string(part.number);
    const std::string name = "Raw " + number + (part.fluid.empty() ? "" : ", " + part.fluid);
    const auto cut = std::ranges::count_if(part.points, &MeasuredPoint::isCut);
    const auto excluded = std::ranges::count_if(part.points, &MeasuredPoint::isExcluded);
    const auto setAside = std::ranges::count_if(part.points, &MeasuredPoint::isSetAside);
    if (cut + excluded + setAside < static_cast<std::ptrdiff_t>(part.points.size()))
      entries.push_back({"raw" + number, true, name});
    if (cut > 0)
      entries.push_back(
          {"cut" + number, true, name + ", cut by the merge (" + std::to_string(cut) + ")"});
    if (excluded > 0)
      entries.push_back(
          {"out" + number, true, name + ", excluded (" + std::to_string(excluded) + ")"});
    if (setAside > 0)
      entries.push_back(
          {"dis" + number, true, name + ", distrusted (" + std::to_string(setAside) + ")"});
  }
  if (!series.merged.empty()) entries.push_back({"merged", true, "Merged"});
  if (series.attempt) {
    entries.push_back({"attempt", false,
                       (series.attempt->isAccepted ? "Not stored: " : "Not accepted: ") +
                           series.attempt->equation});
  }
  if (series.curve.empty()) return entries;
  entries.push_back({"curve", false, "Fitted curve"});
  entries.push_back(
      {"band", false, "Band \u00B1" + significantText(series.settings.BandPercent, 4) + " %"});
  const auto has = [&](auto member) {
    return std::any_of(series.curve.begin(), series.curve.end(),
                       [&](const CurvePoint& point) { return (point.*member).has_value(); });
  };
  if (has(&CurvePoint::confidence)) entries.push_back({"conf", false, "95 % confidence"});
  if (has(&CurvePoint::prediction)) entries.push_back({"pred", false, "95 % prediction"});
  return entries;
}

std::string legendMark(const LegendEntry& entry) {
  if (entry.key == "conf" || entry.key == "pred")
    return "<rect class=\"" + entry.key + "\" x=\"1\" y=\"1\" width=\"22\" height=\"10\"/>";
  return entry.isMarker ? "<path class=\"dots " + entry.key + "\" d=\"M12 6h0\"/>"
                        : "<path class=\"line " + entry.key + "\" d=\"M1 6H23\"/>";
}

}  // namespace pelmora::report
