// SPDX-License-Identifier: MIT
#include "apps/pelmora/options/run_list.h"

#include "apps/pelmora/options/names.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"
#include "base/text_case.h"
#include "base/text_flaw.h"

namespace pelmora::cli {
namespace {

std::string wholeJob(const std::string& text) {
  const auto number = strictInteger(text);
  if (number && *number >= 0) return std::to_string(*number);
  throw Trouble(ExitCode::usage, "--job: '" + shortened(text) + "' is not a job",
                "give the stand's job number, or two as A:B");
}

ListedRun runOfJob(const std::string& text) {
  const std::size_t colon = text.find(':');
  ListedRun listed;
  listed.run.job = wholeJob(text.substr(0, colon));
  if (colon != std::string::npos) listed.secondJob = wholeJob(text.substr(colon + 1));
  return listed;
}

void requireLists(std::size_t jobs, std::size_t fluids, std::size_t operators) {
  if (fluids != jobs) {
    throw Trouble(ExitCode::usage, counted(jobs, "--job") + " but " + counted(fluids, "--fluid"),
                  "give one --fluid for each --job");
  }
  if (operators > 1 && operators != jobs) {
    throw Trouble(ExitCode::usage,
                  counted(jobs, "--job") + " but " + counted(operators, "--operator"),
                  "give one --operator for each --job, or one for all");
  }
}

}  // namespace

std::vector<ListedRun> listedRuns(const std::vector<std::string>& jobs,
                                  const std::vector<std::string>& fluids,
                                  const std::vector<std::string>& operators) {
  requireLists(jobs.size(), fluids.size(), operators.size());
  std::vector<ListedRun> runs;
  for (std::size_t i = 0; i < jobs.size(); ++i) {
    ListedRun listed = runOfJob(jobs[i]);
    calibration::StandRun& run = listed.run;
    run.fluid = fluids[i];
    requireNewName("--fluid", run.fluid);
    if (!operators.empty()) run.operatorName = operators.size() == 1 ? operators[0] : operators[i];
    if (!run.operatorName.empty()) requireNewName("--operator", run.operatorName);
    for (const ListedRun& earlier : runs) {
      if (!equalNames(earlier.run.fluid, run.fluid)) continue;
      throw Trouble(
          ExitCode::usage, "--fluid '" + run.fluid + "' appears twice",
          "a meter keeps one run of a fluid, so the second would replace the first; give each run "
          "its own fluid name");
    }
    runs.push_back(std::move(listed));
  }
  return runs;
}

}  // namespace pelmora::cli
