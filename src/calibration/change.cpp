// SPDX-License-Identifier: MIT
#include "calibration/session.h"

namespace pelmora::calibration {

Change::Change(std::shared_ptr<Session> session) : session_(std::move(session)) {}

Change::Change(Change&&) noexcept = default;

Change& Change::operator=(Change&& other) noexcept {
  if (session_ && session_ != other.session_) session_->rollback();
  session_ = std::move(other.session_);
  return *this;
}

Change::~Change() {
  if (session_ && session_->hasChange()) session_->rollback();
}

void Change::commit() { session_->commit(); }

const std::vector<HistoryEntryId>& Change::kept() const { return session_->kept(); }

}  // namespace pelmora::calibration
