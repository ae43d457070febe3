// SPDX-License-Identifier: MIT
#include "calibration/session.h"

#include "base/run_time_error.h"
#include "base/server_address.h"
#include "base/time_text.h"
#include "base/version.h"
#include "store/connection.h"
#include "store/transactions.h"

#include <pelmora/curve_database.h>

#include <array>
#include <cstdlib>

namespace pelmora::calibration {
namespace {

std::string nameOfUser(const std::string& given) {
  if (!given.empty()) return given;
  for (const char* variable : {"LOGNAME", "USER", "USERNAME"}) {
    const char* name = std::getenv(variable);
    if (name != nullptr && *name != '\0') return name;
  }
  return {};
}

bool isAny(const Error& error, std::initializer_list<RunTimeError> numbers) {
  for (const RunTimeError number : numbers) {
    if (error.number() == static_cast<std::int32_t>(number)) return true;
  }
  return false;
}

}  // namespace

void throwFailure(const std::string& doing, const std::string& location, const Error& error) {
  const std::string what = doing + ": " + error.what();
  const std::int32_t number = error.number();
  if (number == genericFailure) {
    throw Locked({what, location, "try again when other programs have finished with it"}, number);
  }
  if (number == operationStopped) throw Cancelled({what, location, ""}, number);
  if (isAny(error, {RunTimeError::invalidFileFormat})) {
    throw Damaged({what, location, "restore it from a copy, or salvage what can be read"}, number);
  }
  if (isAny(error, {RunTimeError::invalidNull, RunTimeError::typeMismatch, RunTimeError::overflow}))
    throw BadData({what, location, "examine the database"}, number);
  throw Unusable({what, location, remedyOf(error)}, number);
}

std::string remedyOf(const Error& error) {
  if (error.number() != connectionLost) return {};
  return "the server has to run and to accept connections from this computer; 'psql' with the same "
         "address should connect";
}

Session::Session(std::string address, OpenOptions options)
    : address_(std::move(address)),
      location_(shownLocation(address_)),
      options_(std::move(options)) {
  try {
    curves_ = openDatabase(address_, options_.patience);
  } catch (const Error& error) {
    if (isAny(error, {RunTimeError::fileNotFound})) {
      throw NotFound({error.what(), location_, "name a curve database, or create one"},
                     error.number());
    }
    const std::string doing = "the curve database cannot be opened";
    // Of a file that cannot even be opened, nobody knows whether it ever was a database.
    if (isAny(error, {RunTimeError::invalidFileFormat}))
      throw Unusable({doing + ": " + error.what(), location_, ""}, error.number());
    throwTranslated(doing, error);
  }
  try {
    requireCurveTables(curves_);
  } catch (const Error& error) {
    if (error.number() == genericFailure || isAny(error, {RunTimeError::invalidFileFormat}))
      throwTranslated("'" + location_ + "' cannot be read", error);
    throw Unusable({"'" + location_ + "' cannot be used as a curve database: " + error.what(),
                    location_, "name a curve database, or create one"},
                   error.number());
  }
  if (options_.mode == Mode::write) {
    asking("'" + location_ + "' cannot be written now", [&] { requireWritable(curves_); });
  }
}

void Session::throwTranslated(const std::string& doing, const Error& error) const {
  throwFailure(doing, location_, error);
}

std::string Session::userName() const { return nameOfUser(options_.userName); }

void Session::begin(const std::string& command) {
  if (hasChange()) throw Failure({"a change is open already", location_, "commit it first"});
  kept_.clear();
  asking("'" + location_ + "' cannot be written now", [&] {
    change_ = std::make_unique<history::KeptChange>(
        curves_, history::ChangeNote{command, utcText(), userName(), version});
  });
}

void Session::commit() {
  asking("storing in '" + location_ + "'", [&] { change_->commit(); });
  change_.reset();
}

void Session::rollback() noexcept {
  change_.reset();
  kept_.clear();
}

std::unique_ptr<ReadView> Session::moment() const {
  const auto* transactions = dynamic_cast<const Transactions*>(curves_.get());
  if (transactions == nullptr || transactions->hasTransaction()) return nullptr;
  return asking("'" + location_ + "' cannot be read now",
                [&] { return std::make_unique<ReadView>(curves_); });
}

HistoryEntryId Session::keep(const history::Scope& scope) {
  const HistoryEntryId entry = change_->keep(scope);
  note(entry);
  return entry;
}

void Session::note(HistoryEntryId entry) {
  if (entry != 0) kept_.push_back(entry);
}

std::string placeOf(const Meter& meter) {
  return "meter '" + meter.serial + "', calibration " + std::to_string(meter.calibration);
}

BadData namelessSeries(const Meter& meter, const std::string& location) {
  return BadData({"a series of " + placeOf(meter) + " has no name that is a text", location,
                  "examine the database"});
}

std::string placeOf(const Meter& meter, const std::string& series) {
  return "series '" + series + "' of " + placeOf(meter);
}

}  // namespace pelmora::calibration
