// SPDX-License-Identifier: MIT
#include "report/report_details.h"

#include <sstream>

namespace pelmora::report {

std::string detailOf(const Report& report, const std::string& key) {
  for (const calibration::Details* details : {&report.details, &report.laboratory}) {
    const auto found = details->find(key);
    if (found != details->end()) return found->second;
  }
  return {};
}

std::string withUnit(const Report& report, const std::string& name, const std::string& unitKey) {
  const std::string unit = detailOf(report, unitKey);
  return unit.empty() ? name : name + ", " + unit;
}

std::vector<std::string> detailLines(const Report& report, const std::string& key) {
  std::vector<std::string> lines;
  std::istringstream text(detailOf(report, key));
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}

}  // namespace pelmora::report
