// The job of the stand and the fluid that each point of a raw part came from, and its readings.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/session.h"

#include <pelmora/calibration/points.h>

#include <cstddef>
#include <string>
#include <vector>

namespace pelmora::calibration {

struct PartJobs {
  std::string fluid;
  std::vector<std::string> jobs;  // one per point of the whole part; none if they are not known
  std::vector<StandReading> readings;  // likewise; empty unless RunJobs was made with them
};

// The runs of a calibration, by raw part: run k is part k of each derived series.
class RunJobs {
 public:
  // Errors: those of the database.
  RunJobs(Session& session, const Meter& meter);
  // With the readings. nominalFlowColumn: "V14"; ignored unless it is one of the stand's values.
  RunJobs(Session& session, const Meter& meter, const std::string& nominalFlowColumn);
  // For the part of a series that has `points` points, excluded ones included; empty if they are
  // not the stand's: if the series is not derived, or the run has another number of points.
  [[nodiscard]] PartJobs of(const std::string& series, int part, std::size_t points) const;

 private:
  struct Row {
    StandReading common;
    std::optional<double> frequencyA, frequencyB;
  };
  struct Run {
    std::string fluid;
    std::vector<std::string> jobs;  // one per stand point, in their order
    std::vector<Row> rows;          // likewise, if readings are wanted
    std::string lastJob;            // with two jobs, the one that rotor B ran in
  };
  void read(Session& session, const Meter& meter, const std::string& columns);
  static void addReadings(const std::string& series, const Run& run, bool ofLastJob,
                          PartJobs& part);
  std::vector<Run> runs_;
};

// Whether the import derives a series of this name.
[[nodiscard]] bool isDerivedName(const std::string& series);

}  // namespace pelmora::calibration
