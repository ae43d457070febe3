// SPDX-License-Identifier: MIT
#include "report/plot_data.h"

#include "report/plot_legend.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>
#include <vector>

namespace pelmora::report {
namespace {

using nlohmann::json;

constexpr int digits = 9;

json rounded(double value) {
  if (!std::isfinite(value)) return nullptr;
  std::array<char, 40> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                 std::chars_format::general, digits);
  double result = 0;
  std::from_chars(buffer.data(), end.ptr, result);
  return result;
}

struct PointSet {
  json x = json::array(), y = json::array();
  void add(const MeasuredPoint& point) {
    x.push_back(rounded(point.roshko));
    y.push_back(rounded(point.strouhal));
  }
};

PointSet pointsOf(const SeriesReport& series, const std::string& key) {
  PointSet set;
  if (key == "merged") {
    for (const MeasuredPoint& point : series.merged) set.add(point);
    return set;
  }
  for (const RawPart& part : series.parts) {
    if (std::to_string(part.number) != key.substr(3)) continue;
    for (const MeasuredPoint& point : part.points) {
      if (point.isCut == key.starts_with("cut")) set.add(point);
    }
  }
  return set;
}

// Whether the merged points are the raw points that were not cut: then the script has them already.
bool isWhatWasKept(const SeriesReport& series) {
  std::vector<std::pair<double, double>> kept, merged;
  for (const RawPart& part : series.parts) {
    for (const MeasuredPoint& point : part.points) {
      if (!point.isCut) kept.emplace_back(point.roshko, point.strouhal);
    }
  }
  for (const MeasuredPoint& point : series.merged)
    merged.emplace_back(point.roshko, point.strouhal);
  std::sort(kept.begin(), kept.end());
  std::sort(merged.begin(), merged.end());
  return kept == merged;
}

json seriesJson(const SeriesReport& series, std::size_t index) {
  json points = json::array();
  for (const LegendEntry& entry : legendOf(series)) {
    if (!entry.isMarker) continue;
    if (entry.key == "merged" && isWhatWasKept(series)) {
      points.push_back({{"key", entry.key}, {"label", entry.label}});
      continue;
    }
    const PointSet set = pointsOf(series, entry.key);
    points.push_back({{"key", entry.key}, {"label", entry.label}, {"x", set.x}, {"y", set.y}});
  }
  const char* name = series.settings.RatioCurve ? "Ratio" : "Strouhal";
  const char* axis = series.settings.RatioCurve ? "Ratio" : "Strouhal number";
  return {{"id", sectionId(index)},
          {"band", series.settings.BandPercent},
          {"yName", name},
          {"yLabels", {axis, "Residual, %"}},
          {"points", points}};
}

}  // namespace

std::string sectionId(std::size_t series) { return "series-" + std::to_string(series + 1); }

std::string plotData(const Report& report) {
  json list = json::array();
  for (std::size_t i = 0; i < report.series.size(); ++i)
    list.push_back(seriesJson(report.series[i], i));
  std::string text;
  for (const char c : list.dump(-1, ' ', false, json::error_handler_t::replace)) {
    // "</script" and "<!--" would end or change the element.
    if (c == '<')
      text += "\\u003c";
    else
      text += c;
  }
  return text;
}

}  // namespace pelmora::report
