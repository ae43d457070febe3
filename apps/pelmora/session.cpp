// SPDX-License-Identifier: MIT
#include "apps/pelmora/session.h"

#include "apps/pelmora/failure_trouble.h"
#include "apps/pelmora/input/sheet_input.h"
#include "apps/pelmora/lock_holder.h"
#include "apps/pelmora/options/names.h"

namespace pelmora::cli {

Session::Session(const DatabaseOption& curves, calibration::Mode mode) : curves_(curves) {
  calibration::OpenOptions options;
  options.mode = mode;
  options.patience = patienceWith(curves.path, curves.wait, progress_);
  try {
    database_.emplace(curves.path, std::move(options));
  } catch (const calibration::NotFound& missing) {
    throw Trouble(ExitCode::database, missing.what(),
                  "name a curve database, or make one with 'pelmora init FILE'");
  }
  progress_.endWait();
}

calibration::Observer Session::observer() {
  calibration::Observer observer;
  observer.status = [this](const std::string& text) {
    requireNotInterrupted();
    progress_.show(text);
  };
  observer.stop = stop_.token();
  return observer;
}

calibration::Stand Session::openStand(const std::string& path, const sheets::Style& style) {
  try {
    return calibration::Stand(path, patienceWith(path, curves_.wait, progress_), style);
  } catch (const calibration::NotFound& missing) {
    throw Trouble(ExitCode::database, missing.what(), missing.remedy());
  } catch (const calibration::UnreadableText& failure) {
    throw Trouble(ExitCode::badInput, failure.what(),
                  remedyWithOption(failure.remedy(), failure.doubt()));
  } catch (const calibration::Unusable&) {
    requireDatabasePath("--stand", path);  // where that is what the engine could not open
    throw;
  }
}

}  // namespace pelmora::cli
