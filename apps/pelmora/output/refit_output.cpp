// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/refit_output.h"

#include "apps/pelmora/output/text_table.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

namespace pelmora::cli {
namespace {

using Align = TextTable::Align;

using calibration::RefitResult;
using Kind = calibration::RefitResultKind;

constexpr std::size_t mostRows = 40;  // of a list for people; JSON lists them all

std::size_t countOf(const RefitSummary& summary, Kind kind) {
  return static_cast<std::size_t>(
      std::ranges::count(summary.outcome.results, kind, &RefitResult::kind));
}

std::size_t changedMeanwhile(const RefitSummary& summary) {
  return static_cast<std::size_t>(
      std::ranges::count_if(summary.outcome.results, &RefitResult::changedMeanwhile));
}

std::string wordOf(Kind kind) {
  switch (kind) {
    case Kind::changed: return "changed";
    case Kind::kept: return "kept";
    case Kind::added: return "added";
    case Kind::notFitted: return "notFitted";
    case Kind::unreadable: return "unreadable";
    case Kind::gone: return "gone";
    default: return "unusable";
  }
}

RefitResults resultsOf(const RefitSummary& summary, std::initializer_list<Kind> kinds) {
  RefitResults list;
  for (const RefitResult& result : summary.outcome.results) {
    if (std::ranges::find(kinds, result.kind) != kinds.end()) list.push_back(&result);
  }
  return list;
}

std::string andMore(std::size_t all) {
  if (all <= mostRows) return "";
  return "... and " + std::to_string(all - mostRows) + " more: --json lists them all.\n";
}

std::string countLine(std::size_t count, const std::string& what) {
  return count == 0 ? "" : "  " + std::to_string(count) + " " + what + "\n";
}

}  // namespace

std::string changedTable(RefitResults changed) {
  if (changed.empty()) return "";
  // The largest first: that is where people look.
  std::ranges::stable_sort(changed, std::greater(), [](const RefitResult* result) {
    return std::abs(result->shiftPercent);
  });
  TextTable table({{"Meter"},
                   {"Cal.", Align::right},
                   {"Series"},
                   {"Shift %", Align::right},
                   {"At Roshko", Align::right},
                   {"Equation"}});
  for (std::size_t i = 0; i < std::min(changed.size(), mostRows); ++i) {
    const RefitResult& result = *changed[i];
    const bool isComparable = result.reason.empty();
    table.addRow({result.task.meter.serial, std::to_string(result.task.meter.calibration),
                  result.task.series, isComparable ? significantText(result.shiftPercent, 4) : "-",
                  isComparable ? significantText(result.shiftRoshko, 6) : "-", result.equation});
  }
  return "\n" + table.text() + andMore(changed.size());
}

std::string missingTable(const RefitResults& missing) {
  if (missing.empty()) return "";
  TextTable table(
      {{"Meter"}, {"Cal.", TextTable::Align::right}, {"Series"}, {"Why there is no new curve"}});
  for (std::size_t i = 0; i < std::min(missing.size(), mostRows); ++i) {
    const RefitResult& result = *missing[i];
    table.addRow({result.task.meter.serial, std::to_string(result.task.meter.calibration),
                  result.task.series, result.reason});
  }
  return "\n" + table.text() + andMore(missing.size());
}

nlohmann::json resultJson(const RefitResult& result, bool isStored) {
  nlohmann::json entry = {{"meter", result.task.meter.serial},
                          {"calibration", result.task.meter.calibration},
                          {"series", result.task.series},
                          {"outcome", wordOf(result.kind)},
                          {"stored", isStored},
                          {"changedMeanwhile", result.changedMeanwhile}};
  if (!result.equation.empty()) entry["equation"] = result.equation;
  if (!result.reason.empty()) entry["reason"] = result.reason;
  const bool isCompared = result.kind == Kind::changed || result.kind == Kind::kept;
  if (isCompared && result.reason.empty()) {
    entry["largestShift"] = {{"percent", result.shiftPercent}, {"roshko", result.shiftRoshko}};
  }
  return entry;
}

std::string refitText(const RefitSummary& summary) {
  const std::size_t all = summary.outcome.results.size();
  std::string text = wrapped("Fitted " + counted(all, "series", "series") + " in " +
                                 significantText(summary.seconds, 3) + " s, " +
                                 counted(summary.options.threads, "thread") + ":",
                             0);
  const std::string threshold = significantText(summary.options.changedPercent, 4) + " %";
  text += countLine(countOf(summary, Kind::changed), "changed by more than " + threshold);
  text += countLine(countOf(summary, Kind::kept), "within " + threshold + " of the previous curve");
  text += countLine(countOf(summary, Kind::added), "without a previous curve");
  text += countLine(countOf(summary, Kind::notFitted), "not fitted: the previous curve is kept");
  text += countLine(countOf(summary, Kind::unusable), "without raw points to fit");
  text += countLine(countOf(summary, Kind::unreadable), "that cannot be read");
  text += countLine(countOf(summary, Kind::gone), "deleted meanwhile");
  if (const std::size_t again = changedMeanwhile(summary); again > 0) {
    text += wrapped("Another program changed " + std::to_string(again) +
                        " of these meanwhile; they were fitted again as they are now.",
                    0);
  }
  text += changedTable(resultsOf(summary, {Kind::changed})) +
          missingTable(
              resultsOf(summary, {Kind::notFitted, Kind::unusable, Kind::unreadable, Kind::gone}));
  if (summary.options.isDryRun) return text + "\nDry run: nothing was changed.\n";
  if (summary.outcome.kept.empty()) return text;
  return text + "\n" +
         wrapped("What was there before is kept: pelmora history " + summary.database, 0);
}

std::string refitJson(const RefitSummary& summary) {
  nlohmann::json value{
      {"database", summary.database},       {"seconds", summary.seconds},
      {"threads", summary.options.threads}, {"changedPercent", summary.options.changedPercent},
      {"dryRun", summary.options.isDryRun}, {"changedMeanwhile", changedMeanwhile(summary)},
      {"series", nlohmann::json::array()}};
  for (const RefitResult& result : summary.outcome.results) {
    value["series"].push_back(resultJson(result, result.isStored && !summary.options.isDryRun));
  }
  return report::jsonText(value);
}

}  // namespace pelmora::cli
