// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_change.h"

#include "apps/pelmora/interruption.h"
#include "apps/pelmora/last_words.h"
#include "apps/pelmora/output/text_table.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace pelmora::cli {

CommandChange::CommandChange(Session& session, std::string command, bool isDryRun)
    : session_(session), command_(std::move(command)), isDryRun_(isDryRun) {}

void CommandChange::begin() {
  if (change_) return;
  if (beforeLock) beforeLock();
  change_ = session_.database().begin(command_);
  session_.progress().endWait();
}

void CommandChange::finish() {
  requireNotInterrupted();
  if (!change_) return;
  entries_ = change_->kept();
  if (!isDryRun_) {
    change_->commit();
    noteStored();
  }
  change_.reset();
  session_.progress().endWait();
}

std::string CommandChange::closingText() const {
  if (isDryRun_) return wrapped("Dry run: nothing was changed.", 0);
  if (entries_.empty()) return {};
  std::string numbers;
  for (const calibration::HistoryEntryId id : entries_) numbers += " " + std::to_string(id);
  return wrapped("What was there before is kept: pelmora restore " + session_.path() + numbers, 0);
}

void CommandChange::addTo(nlohmann::json& value) const {
  value["dryRun"] = isDryRun_;
  value["historyEntries"] = isDryRun_ ? std::vector<calibration::HistoryEntryId>() : entries_;
}

}  // namespace pelmora::cli
