// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/meter_list.h"

#include "apps/pelmora/interruption.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace pelmora::cli {
namespace {

using calibration::MeterOverview;

// Prints a text that grows, some kilobytes at a time.
class Printer {
 public:
  void add(std::string_view text) {
    constexpr std::size_t enough = 1U << 16U;
    text_ += text;
    if (text_.size() >= enough) flush();
  }
  void flush() {
    printData(text_);
    text_.clear();
  }

 private:
  std::string text_;
};

std::vector<std::string> cellsOf(const MeterOverview& overview) {
  std::string names;
  for (const std::string& name : overview.series) names += (names.empty() ? "" : ", ") + name;
  return {overview.meter.serial, overview.meter.adjusted,
          std::to_string(overview.meter.calibration), names.empty() ? "-" : names};
}

// With every line indented as an element of a list in an object.
std::string elementText(const nlohmann::json& value) {
  std::string text = report::jsonText(value);
  text.pop_back();  // the line end
  constexpr std::string_view indent = "\n    ";
  for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += indent.size())
    text.replace(at, 1, indent);
  return text;
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
  Printer printer;
  printer.add(table.head());
  lab.overview([&](const MeterOverview& overview) {
    requireNotInterrupted();
    printer.add(table.line(cellsOf(overview)));
  });
  printer.flush();
}

void printMetersJson(const calibration::Database& lab) {
  const nlohmann::json::object_t head{{"database", lab.location()},
                                      {"meters", nlohmann::json::array()}};
  const std::string frame = report::jsonText(head);
  const std::size_t inside = frame.rfind(']');
  Printer printer;
  printer.add(std::string_view(frame).substr(0, inside));
  bool isFirst = true;
  lab.overview([&](const MeterOverview& overview) {
    requireNotInterrupted();
    printer.add(isFirst ? "\n    " : ",\n    ");
    isFirst = false;
    printer.add(elementText({{"serialNumber", overview.meter.serial},
                             {"serialNumberAdjusted", overview.meter.adjusted},
                             {"calibration", overview.meter.calibration},
                             {"series", overview.series}}));
  });
  if (!isFirst) printer.add("\n  ");
  printer.add(std::string_view(frame).substr(inside));
  printer.flush();
}

}  // namespace pelmora::cli
