// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/meter_list.h"

#include "apps/pelmora/interruption.h"
#include "apps/pelmora/output/long_output.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace pelmora::cli {
namespace {

using calibration::MeterOverview;

std::vector<std::string> cellsOf(const MeterOverview& overview) {
  std::string names;
  for (const std::string& name : overview.series) names += (names.empty() ? "" : ", ") + name;
  return {overview.meter.serial, overview.meter.adjusted,
          std::to_string(overview.meter.calibration), names.empty() ? "-" : names};
}

}  // namespace

void printMeters(const calibration::Database& lab) {
  TableLayout table({{"Meter"}, {"Adjusted"}, {"Calibration", TextAlign::right}, {"Series"}});
  bool isEmpty = true;
  const auto measure = [&](const MeterOverview& overview) {
    requireNotInterrupted();
    isEmpty = false;
    table.measure(cellsOf(overview));
  };
  lab.overview(measure, calibration::OverviewOrder::none);
  if (isEmpty) return printData("No meter is stored yet.\n");
  LongText text;
  text.add(table.head());
  lab.overview([&](const MeterOverview& overview) {
    requireNotInterrupted();
    text.add(table.line(cellsOf(overview)));
  });
  text.end();
}

void printMetersJson(const calibration::Database& lab) {
  LongList list({{"database", lab.location()}}, "meters");
  lab.overview([&](const MeterOverview& overview) {
    requireNotInterrupted();
    list.add({{"serialNumber", overview.meter.serial},
              {"serialNumberAdjusted", overview.meter.adjusted},
              {"calibration", overview.meter.calibration},
              {"series", overview.series}});
  });
  list.end();
}

}  // namespace pelmora::cli
