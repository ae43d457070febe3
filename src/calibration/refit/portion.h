// The curves of a refit that are stored in one transaction.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/refit/foreign_watch.h"
#include "calibration/refit/refit_one.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <shared_mutex>
#include <unordered_set>
#include <vector>

namespace pelmora::calibration {

// Collects them; nobody waits for the database until they are stored.
class Portion {
 public:
  using Clock = std::chrono::steady_clock;

  // All must outlive it. file: held alone while a transaction ends, which needs the file for itself
  // for as long as the disk takes.
  Portion(const Database& lab, Session& session, const RefitOptions& options, ForeignWatch& watch,
          std::shared_mutex& file, RefitOutcome& outcome);
  ~Portion();
  Portion(const Portion&) = delete;
  Portion& operator=(const Portion&) = delete;

  void add(RefitCurve curve);
  [[nodiscard]] bool isEmpty() const { return curves_.empty(); }
  // Large or old enough to be stored.
  [[nodiscard]] bool isDue() const;
  // When it will be old enough.
  [[nodiscard]] Clock::time_point end() const { return end_; }
  // Stores the curves, if there are any, and enters their results. A series that somebody has
  // changed since it was read is fitted again first.
  void store();

 private:
  [[nodiscard]] bool isCertain(const RefitCurve& curve) const;
  [[nodiscard]] std::vector<const Fit*> fitsToStore();
  void end(const std::vector<const Fit*>& fits);

  const Database& lab_;
  Session& session_;
  const RefitOptions& options_;
  ForeignWatch& watch_;
  std::shared_mutex& file_;
  RefitOutcome& outcome_;
  std::vector<RefitCurve> curves_;
  std::unordered_set<std::int32_t> storedSeries_;  // ids; by earlier portions
  std::size_t stored_ = 0;
  Clock::time_point end_;
};

}  // namespace pelmora::calibration
