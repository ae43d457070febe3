// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/curve_note.h"

#include "apps/pelmora/output/suggested_command.h"
#include "apps/pelmora/trouble.h"

#include <nlohmann/json.hpp>

namespace pelmora::cli {

void noteOldCurves(const std::string& database, int calibration,
                   const std::vector<calibration::StoredSeries>& series) {
  std::vector<std::string> names;
  const calibration::Meter* meter = nullptr;
  for (const calibration::StoredSeries& one : series) {
    if (one.age != calibration::CurveAge::outdated) continue;
    names.push_back(one.name);
    meter = &one.meter;
  }
  if (meter == nullptr) return;
  std::vector<std::string> words{"refit", database, "--meter", meter->serial};
  if (calibration >= 0) words.insert(words.end(), {"--calibration", std::to_string(calibration)});
  std::string list;
  for (const std::string& name : names) {
    list += (list.empty() ? "'" : ", '") + name + "'";
    words.insert(words.end(), {"--series", name});
  }
  const std::string text =
      (names.size() == 1 ? "the curve of series " : "the curves of series ") + list +
      " of meter '" + meter->serial + "', calibration " + std::to_string(meter->calibration) +
      (names.size() == 1 ? ", is older than its raw points" : ", are older than their raw points") +
      "; fit again: " + suggestedCommand(words);
  printNote(text);
}

nlohmann::json curveAgesJson(const std::vector<calibration::StoredSeries>& series) {
  nlohmann::json ages = nlohmann::json::array();
  for (const calibration::StoredSeries& each : series)
    ages.push_back({{"series", each.name}, {"curveAge", calibration::curveAgeKey(each.age)}});
  return ages;
}

}  // namespace pelmora::cli
