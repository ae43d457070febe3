// A calibration stand's measured data.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>
#include <pelmora/export.h>
#include <pelmora/patience.h>

#include <chrono>
#include <string>
#include <vector>

namespace pelmora::calibration {

// Opened for reading by the constructor, closed by the destructor.
class PELMORA_API Stand {
 public:
  // A stand's database, or its export as CSV with the header JobRecordID,V1..V37.
  //
  // Errors: NotFound, Unusable; BadData for the contents of a CSV export.
  explicit Stand(const std::string& location,
                 const Patience& patience = {.limit = std::chrono::seconds(30), .goesOn = {}});

  [[nodiscard]] const std::string& location() const { return location_; }
  // In rising order.
  [[nodiscard]] const std::vector<std::string>& jobs() const { return jobs_; }
  // Errors: NotFound, with the jobs that there are.
  void requireJob(const std::string& job) const;
  [[nodiscard]] const ConnectionPtr& connection() const { return connection_; }

 private:
  std::string location_;
  ConnectionPtr connection_;
  std::vector<std::string> jobs_;
};

// One run of a stand: its job, its fluid and who ran it.
struct StandRun {
  std::string job{}, fluid{};
  std::string operatorName{};  // empty: "Unknown"
};

}  // namespace pelmora::calibration
