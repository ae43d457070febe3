// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/run_table.h"

#include "apps/pelmora/output/text_table.h"

namespace pelmora::cli {
namespace {

constexpr std::size_t rawParts = 4;

std::string jobList(const std::vector<std::string>& jobs) {
  std::string list;
  for (const std::string& job : jobs) list += (list.empty() ? "" : ", ") + job;
  return list.empty() ? "-" : list;
}

}  // namespace

std::string runTable(const std::vector<calibration::Run>& runs) {
  TextTable table({{"Part", TextTable::Align::right},
                   {"Fluid"},
                   {"Jobs"},
                   {"Operator"},
                   {"Date"},
                   {"Stand", TextTable::Align::right},
                   {"Points", TextTable::Align::right}});
  for (std::size_t k = 0; k < runs.size(); ++k) {
    const calibration::Run& run = runs[k];
    table.addRow({k < rawParts ? std::to_string(k + 1) : "-", run.fluid, jobList(run.jobs),
                  run.operatorName, run.date, run.stand < 0 ? "-" : std::to_string(run.stand),
                  std::to_string(run.points)});
  }
  return table.text();
}

}  // namespace pelmora::cli
