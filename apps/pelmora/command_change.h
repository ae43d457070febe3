// What one command changes: stored as a whole, or undone in a dry run.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/session.h"

#include <nlohmann/json_fwd.hpp>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::cli {

class CommandChange {
 public:
  // command: for the history, "fit", "import" ... A dry run does everything and undoes it in the
  // end.
  CommandChange(Session& session, std::string command, bool isDryRun);

  // Called by begin() just before it takes the lock: lets a test change the database behind the
  // command's back.
  std::function<void()> beforeLock;

  // From here on nobody else can write, and changes of the database belong together. Does nothing
  // the second time.
  //
  // Errors: Locked if the wait for another program was in vain; Unusable.
  void begin();
  // Stores everything, or undoes it in a dry run. Errors: Locked, Unusable; nothing is changed
  // then.
  void finish();

  // Whether nobody else can write: from begin() to finish().
  [[nodiscard]] bool hasBegun() const { return change_.has_value(); }
  [[nodiscard]] Session& session() { return session_; }
  [[nodiscard]] bool isDryRun() const { return isDryRun_; }
  // The history entries that this change has made.
  [[nodiscard]] const std::vector<calibration::HistoryEntryId>& entries() const { return entries_; }

  // A paragraph for people, after finish(): that nothing was changed, or how to bring back what was
  // there before; may be empty.
  [[nodiscard]] std::string closingText() const;
  // "dryRun" and "historyEntries".
  void addTo(nlohmann::json& value) const;

 private:
  Session& session_;
  std::string command_;
  bool isDryRun_;
  std::optional<calibration::Change> change_;
  std::vector<calibration::HistoryEntryId> entries_;
};

}  // namespace pelmora::cli
