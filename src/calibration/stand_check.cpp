// SPDX-License-Identifier: MIT
#include "calibration/stand_check.h"

#include "calibration/session.h"
#include "store/point_rows.h"

#include <pelmora/calibration/failure.h>
#include <pelmora/stand.h>

#include <array>

namespace pelmora::calibration {
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

ValueTable pointsOf(const Stand& stand, const std::string& job, const std::string& place,
                    const std::function<void()>& goOn) {
  try {
    return standPoints(stand.connection(), job, goOn);
  } catch (const Failure&) {
    throw;
  } catch (const Error& error) {
    throwFailure(place + ": its points cannot be read", stand.location(), error);
  }
}

// The points of one job.
class JobCheck {
 public:
  JobCheck(const Stand& stand, const std::string& job, const std::function<void()>& goOn)
      : stand_(stand),
        job_(job),
        place_("stand '" + stand.location() + "', job " + job),
        points_(pointsOf(stand, job, place_, goOn)) {
    if (points_.rows() <= static_cast<std::size_t>(mostPoints)) return;
    throw BadData({place_ + ": " + std::to_string(points_.rows()) +
                       " points; a series holds at most " + std::to_string(mostPoints),
                   stand.location(), "split the job"});
  }

  // Whether any point has a reading of rotor B.
  [[nodiscard]] bool hasRotorB() const {
    for (std::size_t row = 0; row < points_.rows(); ++row) {
      for (const Reading& reading : rotorBReadings) {
        if (!isMissing(row, reading) && !isZero(row, reading)) return true;
      }
    }
    return false;
  }

  void require(std::span<const Reading> readings) const {
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
    if (text != nullptr) why = "is the text '" + *text + "'";
    if (!reading.mayBeZero && isZero(row, reading)) why = "is 0";
    if (!reading.mayBeZero && isNegative(row, reading)) why = "is negative";
    if (why.empty()) return;
    throw BadData({place_ + ", point " + std::to_string(row + 1) + ": V" +
                       std::to_string(reading.number) + " (" + reading.meaning + ") " + why +
                       lineText(row),
                   stand_.location(), "correct or remove the point at the stand"});
  }

  [[nodiscard]] bool isNegative(std::size_t row, const Reading& reading) const {
    const auto* real = std::get_if<double>(&value(row, reading));
    const auto* whole = std::get_if<std::int64_t>(&value(row, reading));
    return (real != nullptr && *real < 0) || (whole != nullptr && *whole < 0);
  }
  [[nodiscard]] std::string lineText(std::size_t row) const {
    const std::size_t line = stand_.lineOf(job_, row);
    return line == 0 ? "" : " (line " + std::to_string(line) + " of the file)";
  }

  const Stand& stand_;
  const std::string& job_;
  std::string place_;
  ValueTable points_;
};

}  // namespace

std::string checkReadings(const Stand& stand, std::span<const StandRun> runs,
                          const std::function<void()>& goOn) {
  if (runs.empty()) throw BadData({"there is no run to import", stand.location(), "name a job"});
  std::string jobWithoutRotorB;
  for (const StandRun& run : runs) {
    stand.requireJob(run.job);
    goOn();
    const JobCheck job(stand, run.job, goOn);
    job.require(commonReadings);
    if (job.hasRotorB()) {
      job.require(rotorBReadings);
    } else if (jobWithoutRotorB.empty()) {
      jobWithoutRotorB = run.job;
    }
  }
  return jobWithoutRotorB;
}

}  // namespace pelmora::calibration
