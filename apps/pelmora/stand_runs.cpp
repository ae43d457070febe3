// SPDX-License-Identifier: MIT
#include "apps/pelmora/stand_runs.h"

#include "apps/pelmora/input/csv_points.h"
#include "apps/pelmora/curve_session.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/trouble.h"
#include "base/text_flaw.h"

#include <pelmora/stand.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>

namespace pelmora::cli {
namespace {

// A column that the series are derived from.
struct Reading {
  std::size_t number;  // of V1 to V37
  const char* meaning;
  bool mayBeZero;
};
constexpr std::array<Reading, 6> commonReadings{{{1, "time of the reference", false},
                                                 {2, "reference volume", false},
                                                 {3, "time of rotor A", false},
                                                 {4, "pulses of rotor A", false},
                                                 {5, "viscosity", false},
                                                 {12, "temperature", true}}};
constexpr std::array<Reading, 2> rotorBReadings{
    {{20, "time of rotor B", false}, {21, "pulses of rotor B", false}}};

std::string folded(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return std::tolower(c); });
  return text;
}

std::string wholeJob(const std::string& text) {
  const auto number = strictInteger(text);
  if (number && *number >= 0) return std::to_string(*number);
  throw Trouble(ExitCode::usage, "--job: '" + shortened(text) + "' is not a job",
                "give the stand's job number, or two as A:B");
}

StandRun runOfJob(const std::string& text) {
  const std::size_t colon = text.find(':');
  StandRun run;
  run.jobA = wholeJob(text.substr(0, colon));
  if (colon != std::string::npos) run.jobB = wholeJob(text.substr(colon + 1));
  return run;
}

// Looks over the points of one job.
class JobCheck {
 public:
  JobCheck(const ConnectionPtr& stand, const std::string& path, const std::string& job)
      : place_("stand '" + path + "', job " + job), points_(standPoints(stand, job)) {}

  [[nodiscard]] std::size_t count() const { return points_.rows(); }

  // Whether any point has a reading of rotor B.
  [[nodiscard]] bool hasRotorB() const {
    for (std::size_t row = 0; row < points_.rows(); ++row) {
      for (const Reading& reading : rotorBReadings) {
        if (!isMissing(row, reading) && !isZero(row, reading)) return true;
      }
    }
    return false;
  }

  template <std::size_t n>
  void require(const std::array<Reading, n>& readings) const {
    for (std::size_t row = 0; row < points_.rows(); ++row) {
      for (const Reading& reading : readings) require(row, reading);
    }
  }

 private:
  [[nodiscard]] const Value& value(std::size_t row, const Reading& reading) const {
    return points_(reading.number - 1, row);
  }
  [[nodiscard]] bool isMissing(std::size_t row, const Reading& reading) const {
    return std::holds_alternative<std::monostate>(value(row, reading));
  }
  [[nodiscard]] bool isZero(std::size_t row, const Reading& reading) const {
    const auto* real = std::get_if<double>(&value(row, reading));
    const auto* whole = std::get_if<std::int64_t>(&value(row, reading));
    return (real != nullptr && *real == 0) || (whole != nullptr && *whole == 0);
  }

  void require(std::size_t row, const Reading& reading) const {
    const auto* text = std::get_if<std::string>(&value(row, reading));
    std::string why;
    if (isMissing(row, reading)) why = "is empty";
    if (text != nullptr) why = "is the text '" + shortened(*text) + "'";
    if (!reading.mayBeZero && isZero(row, reading)) why = "is 0";
    if (why.empty()) return;
    throw Trouble(ExitCode::badInput,
                  place_ + ", point " + std::to_string(row + 1) + ": V" +
                      std::to_string(reading.number) + " (" + reading.meaning + ") " + why,
                  "correct or remove the point at the stand; nothing was imported");
  }

  std::string place_;
  ValueTable points_;
};

void requireJob(const std::vector<std::string>& known, const std::string& standPath,
                const std::string& job) {
  constexpr std::size_t listedJobs = 12;
  if (std::find(known.begin(), known.end(), job) != known.end()) return;
  std::string list;
  for (std::size_t i = 0; i < known.size() && i < listedJobs; ++i)
    list += (i == 0 ? "" : ", ") + known[i];
  if (known.size() > listedJobs) list += " ...";
  throw Trouble(ExitCode::unknownName, "stand '" + standPath + "' has no job " + job,
                known.empty() ? "it holds no data points" : "choose among " + list);
}

}  // namespace

std::vector<StandRun> standRuns(const std::vector<std::string>& jobs,
                                const std::vector<std::string>& fluids,
                                const std::vector<std::string>& operators) {
  if (fluids.size() != jobs.size()) {
    throw Trouble(ExitCode::usage,
                  counted(jobs.size(), "--job") + " but " + counted(fluids.size(), "--fluid"),
                  "give one --fluid for each --job");
  }
  if (operators.size() > 1 && operators.size() != jobs.size()) {
    throw Trouble(ExitCode::usage,
                  counted(jobs.size(), "--job") + " but " + counted(operators.size(), "--operator"),
                  "give one --operator for each --job, or one for all");
  }
  std::vector<StandRun> runs;
  for (std::size_t i = 0; i < jobs.size(); ++i) {
    StandRun run = runOfJob(jobs[i]);
    run.fluid = fluids[i];
    requireNewName("--fluid", run.fluid);
    if (!operators.empty()) run.operatorName = operators.size() == 1 ? operators[0] : operators[i];
    if (!run.operatorName.empty()) requireNewName("--operator", run.operatorName);
    for (const StandRun& earlier : runs) {
      if (folded(earlier.fluid) != folded(run.fluid)) continue;
      throw Trouble(
          ExitCode::usage, "--fluid '" + run.fluid + "' is there twice",
          "a meter keeps one run of a fluid, so the second would replace the first; give each run "
          "its own fluid name");
    }
    runs.push_back(std::move(run));
  }
  return runs;
}

ConnectionPtr openStand(const std::string& path, const Patience& patience) {
  try {
    ConnectionPtr stand = openDatabase(path, patience);
    (void)standJobs(stand);
    return stand;
  } catch (const Error& error) {
    requireMemory(error);
    requireDatabasePath("--stand", path);
    std::error_code ignored;
    const bool isCsv = folded(std::filesystem::path(path).extension().string()) == ".csv" &&
                       std::filesystem::is_regular_file(path, ignored);
    if (isCsv)
      throw Trouble(ExitCode::badInput,
                    "the stand's data cannot be read: " + std::string(error.what()), "");
    throw Trouble(ExitCode::database,
                  "'" + path + "' cannot be used as a stand's data: " + error.what(),
                  "name a stand database or a CSV export with the header JobRecordID,V1..V37");
  }
}

RunCheck checkRuns(const ConnectionPtr& stand, const std::string& standPath,
                   const std::vector<StandRun>& runs) {
  const auto known = standJobs(stand);
  RunCheck check;
  for (const StandRun& run : runs) {
    requireJob(known, standPath, run.jobA);
    if (!run.jobB.empty()) requireJob(known, standPath, run.jobB);
    const JobCheck job(stand, standPath, run.jobA);
    if (job.count() > mostPoints) {
      throw Trouble(ExitCode::badInput,
                    "stand '" + standPath + "', job " + run.jobA + ": " +
                        std::to_string(job.count()) + " points; a series holds at most " +
                        std::to_string(mostPoints),
                    "split the job");
    }
    job.require(commonReadings);
    if (job.hasRotorB()) {
      job.require(rotorBReadings);
    } else if (check.hasRotorB) {
      check.hasRotorB = false;
      check.withoutRotorB = run.jobA;
    }
    check.pointCounts.push_back(job.count());
  }
  return check;
}

}  // namespace pelmora::cli
