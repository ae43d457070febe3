// A database whose series a fleet refits.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/fleet/range_work.h"
#include "tests/calibration/service_fixture.h"

#include <pelmora/calibration/fleet.h>

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::calibration::test {

inline constexpr auto longLease = std::chrono::seconds(600);

// A connection of its own, as each worker has one.
struct OneWorker {
  explicit OneWorker(const std::string& path)
      : session(std::make_shared<Session>(path, OpenOptions())), lab(session) {}

  std::optional<LeasedRange> lease(FleetJobId job) {
    return leaseRange(*session, job, "w", longLease);
  }
  std::vector<FittedSeries> fitted(const LeasedRange& range) {
    auto list = fitRange(lab, *session, range, {}, [] { return true; });
    return list ? std::move(*list) : std::vector<FittedSeries>();
  }
  std::optional<RangeCounts> store(const LeasedRange& range, std::vector<FittedSeries>& list) {
    return storeRange(lab, *session, range, {}, longLease, list);
  }

  std::shared_ptr<Session> session;
  Database lab;
};

class Fleets : public ServiceTest {
 protected:
  static constexpr std::size_t allSeries = 7;

  Fleets() : db_(lab()), meter_(db_.registerMeter("M1")) {
    for (std::size_t i = 0; i < allSeries; ++i) {
      db_.storeRaw(meter_, nameOf(i), 1, smoothPoints(12));
      (void)db_.store(db_.fit(meter_, nameOf(i)));
      db_.storeRaw(meter_, nameOf(i), 1, shifted(2));
    }
  }
  static std::string nameOf(std::size_t i) { return std::string(1, static_cast<char>('A' + i)); }
  static PointArray shifted(double percent) {
    PointArray points = smoothPoints(12);
    for (std::size_t i = 0; i < points.size(); ++i) points(i, 1) *= 1 + percent / 100;
    return points;
  }
  // How many curves of each series were replaced by workers.
  [[nodiscard]] std::map<std::string, int> replacements() const {
    std::map<std::string, int> counts;
    for (const HistoryEntry& entry : db_.history()) {
      if (entry.command == "fleet") ++counts[entry.series];
    }
    return counts;
  }
  [[nodiscard]] std::map<std::string, int> oneEach() const {
    std::map<std::string, int> counts;
    for (std::size_t i = 0; i < allSeries; ++i) counts[nameOf(i)] = 1;
    return counts;
  }
  // As if that much time had gone by without a sign of their workers.
  void letLeasesEnd() const {
    db_.connection()->execute("Update pelmora_fleet_range set LeaseEnds=0 where State=1");
  }
  [[nodiscard]] FleetStatus status() const { return fleetStatus(path()).front(); }

  Database db_;
  Meter meter_;
};

}  // namespace pelmora::calibration::test
