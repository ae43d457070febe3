// SPDX-License-Identifier: MIT
#include "apps/pelmora/stored_change.h"

#include "apps/pelmora/interruption.h"
#include "apps/pelmora/last_words.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/time_text.h"
#include "apps/pelmora/trouble.h"
#include "base/version.h"

#include <nlohmann/json.hpp>

#include <cstdlib>
#include <utility>

namespace pelmora::cli {
namespace {

std::string userName() {
  for (const char* variable : {"LOGNAME", "USER", "USERNAME"}) {
    const char* name = std::getenv(variable);
    if (name != nullptr && *name != '\0') return name;
  }
  return {};
}

}  // namespace

StoredChange::StoredChange(CurveSession& session, std::string command, bool isDryRun)
    : session_(session),
      note_{std::move(command), timeText(), userName(), std::string(version)},
      isDryRun_(isDryRun) {}

void StoredChange::begin() {
  if (kept_) return;
  if (beforeLock) beforeLock();
  asDatabaseTrouble("'" + session_.path() + "' cannot be written now", [&] {
    kept_ = std::make_unique<history::KeptChange>(session_.connection(), note_);
  });
  session_.progress().endWait();
}

void StoredChange::keep(const history::Scope& scope) {
  begin();
  noteEntry(asDatabaseTrouble("keeping what is to be replaced in '" + session_.path() + "'",
                              [&] { return kept_->keep(scope); }));
}

void StoredChange::noteEntry(std::int64_t entryID) {
  if (entryID != 0) entries_.push_back(entryID);
}

void StoredChange::finish() {
  requireNotInterrupted();
  if (!kept_) return;
  try {
    if (!isDryRun_) {
      kept_->commit();
      noteStored();
    }
  } catch (const Error& error) {
    kept_.reset();
    requireMemory(error);
    throw Trouble(ExitCode::database, "storing in '" + session_.path() + "': " + error.what(),
                  "nothing was changed");
  }
  kept_.reset();
  session_.progress().endWait();
}

std::string StoredChange::closingText() const {
  if (isDryRun_) return wrapped("Dry run: nothing was changed.", 0);
  if (entries_.empty()) return {};
  std::string numbers;
  for (const std::int64_t id : entries_) numbers += " " + std::to_string(id);
  return wrapped("What was there before is kept: pelmora restore " + session_.path() + numbers, 0);
}

void StoredChange::addTo(nlohmann::json& value) const {
  value["dryRun"] = isDryRun_;
  value["historyEntries"] = isDryRun_ ? std::vector<std::int64_t>() : entries_;
}

}  // namespace pelmora::cli
