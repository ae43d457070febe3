// SPDX-License-Identifier: MIT
#include "base/run_time_error.h"
#include "base/server_address.h"
#include "calibration/session.h"
#include "history/kept_tables.h"

#include <pelmora/own_tables.h>

namespace pelmora::calibration {

Database::Database(const std::string& location, OpenOptions options)
    : session_(std::make_shared<Session>(location, std::move(options))) {}

Database::Database(std::shared_ptr<Session> session) : session_(std::move(session)) {}

Database::~Database() = default;
Database::Database(Database&&) noexcept = default;
Database& Database::operator=(Database&&) noexcept = default;

const std::string& Database::location() const { return session_->location(); }

const ConnectionPtr& Database::connection() const { return session_->curves(); }

Change Database::begin(const std::string& command) {
  session_->begin(command);
  return Change(session_);
}

Database open(const std::string& location, OpenOptions options) {
  return Database(location, std::move(options));
}

Database create(const std::string& location, OpenOptions options) {
  const std::string shown = shownLocation(location);
  try {
    createCurveDatabase(location, options.patience);
  } catch (const Error& error) {
    constexpr std::int32_t fileExists = 58;
    if (error.number() == fileExists) {
      throw Exists({"'" + shown + "' exists already", shown, "choose another name"},
                   error.number());
    }
    if (error.number() == operationStopped)
      throw Cancelled({"creating '" + shown + "' was cancelled", shown, ""}, error.number());
    throw Unusable({error.what(), shown, remedyOf(error)}, error.number());
  }
  Database lab(location, std::move(options));
  try {
    Transaction transaction(lab.connection());
    history::createHistoryTables(lab.connection());
    transaction.commit();
  } catch (const Error& error) {
    throwFailure("creating '" + shown + "'", shown, error);
  }
  return lab;
}

}  // namespace pelmora::calibration
