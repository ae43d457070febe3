// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/salvage_output.h"

#include "apps/pelmora/output/text_table.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <optional>
#include <string_view>

namespace pelmora::cli {
namespace {

using Align = TextTable::Align;

// The most lines of a list that a terminal shows; JSON has all.
constexpr std::size_t mostLines = 30;

std::string lostText(const SalvagedTable& table) {
  if (table.Lost) return std::to_string(*table.Lost);
  return table.KnownLost > 0 ? std::to_string(table.KnownLost) + " or more" : "unknown";
}

std::string partText(std::string_view table) {
  if (table == "merge") return "merged points";
  if (table == "DataFitResults") return "report";
  if (table == "pelmora_fit_settings") return "fit settings";
  constexpr std::string_view excluded = "pelmora_excluded";
  if (table.starts_with(excluded))
    return "excluded points of part " + std::string(table.substr(excluded.size()));
  return std::string(table);
}

std::string partsText(const SalvagedSeries& series) {
  std::string text;
  for (const SalvagedPart& part : series.Parts) {
    text += (text.empty() ? "" : ", ") + partText(part.Table) + " " +
            (part.Lost ? std::to_string(*part.Lost) + " of " +
                             std::to_string(*part.Lost + part.Read) + " lost"
                       : "unknown");
  }
  return text;
}

template <class List, class Line>
std::string listed(const List& list, Line&& line) {
  std::string text;
  for (std::size_t i = 0; i < std::min(list.size(), mostLines); ++i)
    text += wrapped(line(list[i]), 2);
  if (list.size() > mostLines)
    text += wrapped(
        "... and " + std::to_string(list.size() - mostLines) + " more; --json lists all", 2);
  return text;
}

std::string metersText(const SalvageReport& report) {
  TextTable table({{"Meter", Align::left},
                   {"Calibration", Align::right},
                   {"Whole series", Align::right},
                   {"Incomplete", Align::right},
                   {"Unknown", Align::right}});
  std::size_t lines = 0;
  for (const SalvagedMeter& meter : report.Meters) {
    if (++lines > mostLines) break;
    table.addRow({meter.SerialNumber, std::to_string(meter.ReCalID),
                  std::to_string(meter.WholeSeries), std::to_string(meter.IncompleteSeries),
                  std::to_string(meter.UncertainSeries)});
  }
  std::string text = table.text();
  if (report.Meters.size() > mostLines)
    text += wrapped(
        "... and " + std::to_string(report.Meters.size() - mostLines) + " more; --json lists all",
        0);
  return text;
}

std::string tablesText(const SalvageReport& report) {
  TextTable table(
      {{"Table", Align::left}, {"Rows read", Align::right}, {"Rows lost", Align::right}});
  for (const SalvagedTable& counts : report.Tables) {
    if (counts.Read == 0 && counts.isWhole()) continue;  // empty
    table.addRow({counts.Name, std::to_string(counts.Read), lostText(counts)});
  }
  return table.text();
}

}  // namespace

std::string nameOf(const SalvagedSeries& series) {
  if (series.Name.empty()) return "series with ID " + std::to_string(series.SeriesID);
  if (!series.ReCalID) return "series '" + series.Name + "' of a lost meter";
  return "series '" + series.Name + "' of meter '" + series.SerialNumber + "', calibration " +
         std::to_string(*series.ReCalID);
}

std::string salvageText(const SalvageReport& report) {
  std::string text = tablesText(report);
  if (!report.Meters.empty()) text += "\n" + metersText(report);
  if (!report.Series.empty()) {
    text += "\n" +
            wrapped(
                "Not whole; do not use them before their points have been compared "
                "with a copy or stored again:",
                0) +
            listed(report.Series,
                   [](const SalvagedSeries& s) { return nameOf(s) + ": " + partsText(s); });
  }
  if (!report.LostNames.empty()) {
    text += "\n" + wrapped("Lost rows of which the name is left:", 0) +
            listed(report.LostNames, [](const std::string& name) { return name; });
  }
  if (report.StrayPages > 0)
    text += "\n" + wrapped("Pages of tables whose name and place are lost: " +
                               std::to_string(report.StrayPages) + ".",
                           0);
  if (report.OrphanedRows > 0)
    text += "\n" + wrapped("Rows whose series, calibration or set-up is missing: " +
                               std::to_string(report.OrphanedRows) + ".",
                           0);
  if (!report.Others.empty()) {
    text += "\n" + wrapped("Not brought over:", 0) +
            listed(report.Others, [](const std::string& name) { return name; });
  }
  return text;
}

nlohmann::json salvageJson(const SalvageReport& report) {
  const auto numberOrNull = [](const std::optional<std::uint64_t>& number) {
    return number ? nlohmann::json(*number) : nlohmann::json();
  };
  nlohmann::json value{{"whole", report.isWhole()},
                       {"damage", report.Damage},
                       {"tables", nlohmann::json::array()},
                       {"meters", nlohmann::json::array()},
                       {"incompleteSeries", nlohmann::json::array()},
                       {"lostNames", report.LostNames},
                       {"strayPages", report.StrayPages},
                       {"orphanedRows", report.OrphanedRows},
                       {"notBroughtOver", report.Others}};
  for (const SalvagedTable& table : report.Tables) {
    value["tables"].push_back({{"table", table.Name},
                               {"read", table.Read},
                               {"fromIndex", table.FromIndex},
                               {"lost", numberOrNull(table.Lost)},
                               {"knownLost", table.KnownLost}});
  }
  for (const SalvagedMeter& meter : report.Meters) {
    value["meters"].push_back({{"meter", meter.SerialNumber},
                               {"calibration", meter.ReCalID},
                               {"wholeSeries", meter.WholeSeries},
                               {"incompleteSeries", meter.IncompleteSeries},
                               {"unknownSeries", meter.UncertainSeries}});
  }
  for (const SalvagedSeries& series : report.Series) {
    nlohmann::json parts = nlohmann::json::array();
    for (const SalvagedPart& part : series.Parts) {
      parts.push_back(
          {{"table", part.Table}, {"read", part.Read}, {"lost", numberOrNull(part.Lost)}});
    }
    value["incompleteSeries"].push_back(
        {{"seriesId", series.SeriesID},
         {"series", series.Name.empty() ? nlohmann::json() : nlohmann::json(series.Name)},
         {"meter", series.ReCalID ? nlohmann::json(series.SerialNumber) : nlohmann::json()},
         {"calibration", series.ReCalID ? nlohmann::json(*series.ReCalID) : nlohmann::json()},
         {"parts", parts}});
  }
  return value;
}

std::string integrityText(const std::vector<IntegrityProblem>& problems) {
  return wrapped("The file is damaged:", 0) + listed(problems, [](const IntegrityProblem& problem) {
           return problem.Text + ": " + std::to_string(problem.Count) + "; for example '" +
                  problem.Example + "'.";
         });
}

nlohmann::json integrityJson(const std::vector<IntegrityProblem>& problems) {
  nlohmann::json list = nlohmann::json::array();
  for (const IntegrityProblem& problem : problems) {
    list.push_back(
        {{"text", problem.Text}, {"count", problem.Count}, {"example", problem.Example}});
  }
  return list;
}

}  // namespace pelmora::cli
