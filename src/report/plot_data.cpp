// SPDX-License-Identifier: MIT
#include "report/plot_data.h"

#include "base/base64.h"
#include "report/plot_legend.h"
#include "report/printed_values.h"

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

constexpr int scriptDigits = 9;

json rounded(double value) {
  if (!std::isfinite(value)) return nullptr;
  std::array<char, 40> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                 std::chars_format::general, scriptDigits);
  double result = 0;
  std::from_chars(buffer.data(), end.ptr, result);
  return result;
}

// Larger sets of points are packed: nobody reads nine digits off marks as dense as that.
constexpr std::size_t mostPlain = 2000;

// A value as one of 65,536 steps between the ends of its column.
class Steps {
 public:
  explicit Steps(const std::vector<double>& values, bool isLogarithmic)
      : isLogarithmic_(isLogarithmic) {
    const auto [low, high] = std::ranges::minmax(values);
    low_ = low;
    high_ = high;
  }
  void append(std::string& bytes, double value) const {
    const double width = scaled(high_) - scaled(low_);
    const double share = width > 0 ? (scaled(value) - scaled(low_)) / width : 0;
    const auto step = static_cast<unsigned>(std::lround(std::clamp(share, 0.0, 1.0) * 65535));
    bytes += static_cast<char>(step & 255U);
    bytes += static_cast<char>(step >> 8U);
  }
  [[nodiscard]] json ends() const { return {rounded(low_), rounded(high_)}; }

 private:
  [[nodiscard]] double scaled(double value) const {
    return isLogarithmic_ ? std::log(value) : value;
  }
  bool isLogarithmic_;
  double low_ = 0, high_ = 0;
};

struct PointSet {
  std::vector<double> x, y;
  void add(double roshko, double strouhal) {
    x.push_back(roshko);
    y.push_back(strouhal);
  }
  // As lists x and y; or packed: the ends of both and two bytes for each value, the lower first.
  void addTo(json& set) const {
    const auto isFinite = [](double value) { return std::isfinite(value); };
    if (x.size() > mostPlain && std::ranges::all_of(x, isFinite) &&
        std::ranges::all_of(y, isFinite)) {
      const bool isLog = std::ranges::all_of(x, [](double value) { return value > 0; });
      const Steps xSteps(x, isLog), ySteps(y, false);
      std::string bytes;
      for (std::size_t i = 0; i < x.size(); ++i) {
        xSteps.append(bytes, x[i]);
        ySteps.append(bytes, y[i]);
      }
      set["log"] = isLog;
      set["xEnds"] = xSteps.ends();
      set["yEnds"] = ySteps.ends();
      set["packed"] = base64Text(bytes);
      return;
    }
    set["x"] = json::array();
    set["y"] = json::array();
    for (std::size_t i = 0; i < x.size(); ++i) {
      set["x"].push_back(rounded(x[i]));
      set["y"].push_back(rounded(y[i]));
    }
  }
};

PointSet pointsOf(const SeriesReport& series, const std::string& key) {
  PointSet set;
  if (key == "merged") {
    for (const MergedPoint& point : series.merged) set.add(point.roshko, point.strouhal);
    return set;
  }
  for (const RawPart& part : series.parts) {
    if (std::to_string(part.number) != key.substr(3)) continue;
    for (const MeasuredPoint& point : part.points) {
      const char* kind = point.isExcluded()   ? "out"
                         : point.isCut()      ? "cut"
                         : point.isSetAside() ? "dis"
                                              : "raw";
      if (key.starts_with(kind)) set.add(point.roshko, point.strouhal);
    }
  }
  return set;
}

// Whether the merged points are the raw points that were neither cut nor excluded: then the script
// has them already.
bool isWhatWasKept(const SeriesReport& series) {
  std::vector<std::pair<double, double>> kept, merged;
  for (const RawPart& part : series.parts) {
    for (const MeasuredPoint& point : part.points) {
      if (!point.isCut() && !point.isExcluded()) kept.emplace_back(point.roshko, point.strouhal);
    }
  }
  for (const MergedPoint& point : series.merged) merged.emplace_back(point.roshko, point.strouhal);
  std::sort(kept.begin(), kept.end());
  std::sort(merged.begin(), merged.end());
  return kept == merged;
}

json seriesJson(const SeriesReport& series, std::size_t index) {
  json points = json::array();
  for (const LegendEntry& entry : legendOf(series)) {
    if (!entry.isMarker) continue;
    points.push_back({{"key", entry.key}, {"label", entry.label}});
    if (entry.key == "merged" && isWhatWasKept(series)) continue;
    pointsOf(series, entry.key).addTo(points.back());
  }
  json attempt;
  if (series.attempt) {
    attempt = {{"x", json::array()}, {"y", json::array()}};
    const PointArray& curve = series.attempt->curve;
    for (std::size_t i = 0; i < curve.size(); ++i) {
      attempt["x"].push_back(rounded(curve(i, 0)));
      attempt["y"].push_back(rounded(curve(i, 1)));
    }
  }
  return {{"id", sectionId(index)},
          {"attempt", attempt},
          {"band", series.settings.BandPercent},
          {"yName", isQuotient(series) ? "Ratio" : "Strouhal"},
          {"xLabel", series.roshkoTitle},
          {"yLabels", {series.valueTitle, "Residual, %"}},
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
    // "</script" and "<!--" would end or change the element; no text looks like markup.
    if (c == '<')
      text += "\\u003c";
    else if (c == '>')
      text += "\\u003e";
    else
      text += c;
  }
  return text;
}

}  // namespace pelmora::report
