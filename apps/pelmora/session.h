// One curve database, open for one command, and what its user sees of the work.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/interruption.h"
#include "apps/pelmora/options/database_option.h"
#include "apps/pelmora/output/progress.h"

#include <pelmora/calibration.h>

#include <optional>
#include <string>

namespace pelmora::cli {

class Session {
 public:
  // Waits for a database that is locked, and shows for whom.
  //
  // Errors: Trouble database where the file is missing, foreign, damaged, still locked or, with
  //         Mode::write, may not be written; nothing has been changed then.
  Session(const DatabaseOption& curves, calibration::Mode mode);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  [[nodiscard]] calibration::Database& database() { return *database_; }
  [[nodiscard]] Progress& progress() { return progress_; }
  [[nodiscard]] const std::string& path() const { return curves_.path; }
  [[nodiscard]] const DatabaseOption& curves() const { return curves_; }
  // Shows the steps of an operation; a signal ends it at one of them, or where it looks for a stop.
  [[nodiscard]] calibration::Observer observer();
  // Opens a stand for reading, with the wait of the curve database.
  //
  // Errors: Trouble database; badInput for what a CSV export holds.
  [[nodiscard]] calibration::Stand openStand(const std::string& path, const sheets::Style& style);

 private:
  DatabaseOption curves_;
  Progress progress_;
  StopAtSignal stop_;
  std::optional<calibration::Database> database_;
};

}  // namespace pelmora::cli
