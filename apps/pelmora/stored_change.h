// One command's change of a curve database: what it replaces is kept, and all of it is stored
// together. SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/curve_session.h"
#include "apps/pelmora/trouble.h"
#include "history/kept_change.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace pelmora::cli {

class StoredChange {
 public:
  // A dry run does everything and undoes it in the end.
  StoredChange(CurveSession& session, std::string command, bool isDryRun);

  // Called by begin() just before it takes the lock: lets a test change the database behind the
  // command's back.
  std::function<void()> beforeLock;

  // From here on changes belong together, also those of the component's operations. Does nothing
  // the second time.
  //
  // Errors: Trouble database where another program writes and the wait for it was in vain.
  void begin();
  // Keeps the rows of the scope, as they are now, as an entry of the history. Begins where that has
  // not been done.
  //
  // Errors: Trouble database; nothing is changed then.
  void keep(const history::Scope& scope);
  // Stores everything, or undoes it in a dry run.
  //
  // Errors: Trouble database; nothing is changed then.
  void finish();

  // Whether nobody else can write: from begin() to finish().
  [[nodiscard]] bool hasBegun() const { return kept_ != nullptr; }
  [[nodiscard]] bool isDryRun() const { return isDryRun_; }
  [[nodiscard]] CurveSession& session() { return session_; }
  // Between begin() and finish().
  [[nodiscard]] history::KeptChange& kept() { return *kept_; }
  // The entries that this change has made.
  [[nodiscard]] const std::vector<std::int64_t>& entries() const { return entries_; }
  void noteEntry(std::int64_t entryID);

  // A paragraph for people: that nothing was changed, or what brings back the rows of before; may
  // be empty.
  [[nodiscard]] std::string closingText() const;
  // "dryRun" and "historyEntries".
  void addTo(nlohmann::json& value) const;

 private:
  CurveSession& session_;
  history::ChangeNote note_;
  bool isDryRun_;
  std::unique_ptr<history::KeptChange> kept_;
  std::vector<std::int64_t> entries_;
};

// Runs `body`; an Error becomes Trouble database: `doing`, why, and that nothing was changed.
template <class Body>
auto asDatabaseTrouble(const std::string& doing, Body&& body) {
  try {
    return body();
  } catch (const Error& error) {
    requireMemory(error);
    throw Trouble(ExitCode::database, doing + ": " + error.what(), "nothing was changed");
  }
}

}  // namespace pelmora::cli
