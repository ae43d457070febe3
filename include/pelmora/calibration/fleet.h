// Refitting the series of one curve database with many workers, on one machine or on many.
//
//     cal::startFleet("postgresql://...", {});
//     cal::workOnFleet("postgresql://...", {});           // in every worker, until nothing is left
//     cal::fleetStatus("postgresql://...").front().done;  // meanwhile, anywhere
//
// A job is divided into ranges of series. A worker leases a range, fits its series outside of any
// transaction, and stores their curves, their results and the end of the range in one transaction,
// which succeeds only while the lease is its own. If a worker ends or sleeps past its lease,
// another one takes the range over; no series is stored twice.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/database.h>
#include <pelmora/calibration/observer.h>
#include <pelmora/calibration/refit.h>
#include <pelmora/export.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::calibration {

using FleetJobId = std::int64_t;

enum class FleetState { running = 0, paused = 1, cancelled = 2, done = 3 };

struct FleetOptions {
  std::size_t rangeSize = 1000;  // series stored in one transaction
  double changedPercent = 1;     // threshold of RefitResultKind::changed
  SettingsChange change{};       // to the settings kept with each curve; kept with the new one
  bool isStrict = false;         // a curve with a warning is not stored
};

struct FleetStatus {
  FleetJobId job = 0;
  FleetState state = FleetState::running;
  std::string startedAt, endedAt;  // UTC, ISO 8601; empty if it has not ended
  std::string userName, version;   // who started it, with which version of the program
  double changedPercent = 0;
  std::size_t ranges = 0, doneRanges = 0;
  std::size_t leasedRanges = 0;     // to workers that are at work
  std::size_t abandonedRanges = 0;  // their leases have ended; the next worker takes them over
  std::size_t series = 0;
  // Of the ranges that are done:
  std::size_t done = 0, stored = 0, changed = 0;
  std::size_t failed = 0;  // series that got no curve or cannot be read
  // Series per second in the last ten minutes, and how long the rest takes at that rate. Absent if
  // the job does not run or no range is done yet.
  std::optional<double> rate{}, secondsLeft{};
};

struct FleetWorkerOptions {
  std::string name = "worker";      // kept with its ranges, for people
  std::size_t threads = 1;          // each with a connection and ranges of its own
  std::chrono::seconds lease{120};  // extended while the worker is at work
  std::size_t mostRanges = 0;       // ends after so many; 0: when the job has ended
  OpenOptions open{};
  // Called after each range, by one thread at a time, with all that were done so far.
  std::function<void(std::size_t ranges, std::size_t series)> rangeDone{};
};

struct FleetWork {
  std::size_t ranges = 0, series = 0, stored = 0;
  std::size_t lostRanges = 0;  // taken over by others before they were stored
  bool isCancelled = false;    // by the observer; the ranges at work are free again
};

// Divides all series of the database into ranges.
//
// Errors: Exists if a job has not ended; NotFound if there are no series; BadData for options that
//         cannot be used.
PELMORA_API FleetStatus startFleet(const std::string& location, const FleetOptions& options = {},
                                   const OpenOptions& open = {});

// All jobs, the latest first.
[[nodiscard]] PELMORA_API std::vector<FleetStatus> fleetStatus(const std::string& location,
                                                               const OpenOptions& open = {});

// The results of these kinds, by series; `mostResults` of them, 0: all.
//
// Errors: NotFound for a job that does not exist.
[[nodiscard]] PELMORA_API std::vector<RefitResult> fleetResults(
    const std::string& location, FleetJobId job, const std::vector<RefitResultKind>& kinds,
    std::size_t mostResults = 0, const OpenOptions& open = {});

// Pauses, continues or cancels the job that has not ended. Workers of a paused job store the ranges
// at which they are and wait; those of a cancelled one drop them and end. What is stored stays.
//
// Errors: NotFound if there is no such job; BadData for FleetState::done.
PELMORA_API FleetStatus setFleetState(const std::string& location, FleetState state,
                                      const OpenOptions& open = {});

// Works on the open job of the database until the job has ended. Waits while the job is paused, and
// while other workers still have ranges, because those become free if a worker stops. Returns
// immediately if no job is open.
//
// Errors: as for opening the database; Unusable if the job was started by another version of this
//         program. The ranges at work are then free when their leases end.
PELMORA_API FleetWork workOnFleet(const std::string& location,
                                  const FleetWorkerOptions& options = {},
                                  const Observer& observer = {});

}  // namespace pelmora::calibration
