// SPDX-License-Identifier: MIT
#include "adapters/postgresql/postgres_session.h"

#include "adapters/postgresql/location.h"
#include "adapters/postgresql/postgres_renderer.h"
#include "adapters/postgresql/roles.h"
#include "adapters/postgresql/server_error.h"
#include "adapters/postgresql/statement_names.h"
#include "adapters/sql_dialect/dialect_error.h"
#include "adapters/sql_engine/engine_error.h"
#include "base/run_time_error.h"
#include "base/server_address.h"

#include <thread>
#include <utility>
#include <variant>

namespace pelmora::postgres {

namespace {

using namespace std::chrono_literals;

const PostgresWriter writer;

// After such a pause the server or a router may have ended the connection: a write makes sure of it
// first, because it cannot be repeated.
constexpr auto longPause = 5s;
constexpr auto betweenLooks = 100ms;
constexpr int mostLooks = 50;

std::string textAt(const ServerRows& rows) {
  if (rows.rows.rows() == 0) return {};
  const sql::CellView cell = rows.rows.cell(0, 0);
  const auto* text = std::get_if<std::string_view>(&cell);
  return text == nullptr ? std::string() : std::string(*text);
}

Error noCurveTables(const std::string& shown, int migration) {
  const std::string described =
      migration == 0 ? "Database '" + shown +
                           "' has no curve tables. Create a curve database there first "
                           "(at the command line: 'pelmora init ADDRESS'), or name another one."
      : migration < currentMigration()
          ? "The curve database '" + shown +
                "' was made by an older version of this program. Its owner brings it up to date by "
                "creating it again (at the command line: 'pelmora init ADDRESS'); its rows stay."
          : "The curve database '" + shown +
                "' was made by a newer version of this program. Update the program.";
  return {static_cast<std::int32_t>(RunTimeError::invalidFileFormat), "Pelmora", described};
}

}  // namespace

PostgresSession::PostgresSession(std::string location, Patience patience)
    : location_(std::move(location)),
      shown_(shownLocation(location_)),
      turn_(std::move(patience)),
      catalogue_([this](const std::string& statement) { return read(statement); }),
      translations_(catalogue_, writer) {
  connect();
}

void PostgresSession::connect() {
  try {
    auto client =
        std::make_unique<Client>(connectionAddress(location_), turn_.patience().stopRequested);
    turn_.waitForLocks([&](const std::string& waitBriefly) {
      database_ = preparedSession(*client, shown_, turn_.patience().stopRequested, waitBriefly);
    });
    client_ = std::move(client);
  } catch (const ServerError& error) {
    const ServerError clean(
        {error.state(), withoutPassword(error.what(), location_), error.isConnectionLost()});
    throw clean.isConnectionLost() ? cannotConnect(clean, shown_) : errorOf(clean, shown_);
  }
  if (database_.migration != currentMigration()) {
    client_.reset();
    throw noCurveTables(shown_, database_.migration);
  }
  lastUse_ = std::chrono::steady_clock::now();
}

void PostgresSession::close() {
  isClosed_ = true;
  transaction_ = Kind::none;
  client_.reset();
}

void PostgresSession::requireConnection() {
  if (isClosed_) {
    throw Error(sql::connectionClosed, "Pelmora",
                "The connection cannot be used to perform this operation. It is closed.");
  }
  if (!client_ || !client_->isOpen()) connect();
}

Error PostgresSession::failure(const ServerError& error) const { return errorOf(error, shown_); }

Error PostgresSession::lost(const ServerError& error, const std::string& outcome) const {
  return connectionLostError(error, shown_, outcome);
}

ServerRows PostgresSession::read(const std::string& sql) {
  const std::function<bool()>& stopRequested = turn_.patience().stopRequested;
  if (hasTransaction()) return runInTransaction(sql, stopRequested);
  for (const bool isFirst : {true, false}) {
    requireConnection();
    try {
      ServerRows rows;
      turn_.waitForLocks([&](const std::string& waitBriefly) {
        rows = client_->run(waitBriefly + sql, stopRequested);
      });
      lastUse_ = std::chrono::steady_clock::now();
      return rows;
    } catch (const ServerError& error) {
      if (!error.isConnectionLost()) throw failure(error);
      client_.reset();
      if (!isFirst) throw lost(error, "Nothing was read.");
    }
  }
  return {};
}

ServerRows PostgresSession::write(const std::string& sql) {
  requireWritable();
  if (hasTransaction()) return runInTransaction(sql, {});
  if (std::chrono::steady_clock::now() - lastUse_ > longPause) read("SELECT 1");
  requireConnection();
  ServerRows rows;
  try {
    turn_.wait(database_.schemaId,
               [&](const std::string& takeTurn) { rows = client_->run(takeTurn + sql); });
  } catch (const ServerError& error) {
    if (!error.isConnectionLost()) throw failure(error);
    client_.reset();
    throw lost(error,
               "Whether the change that was under way was stored is not known: look before you "
               "repeat it.");
  }
  lastUse_ = std::chrono::steady_clock::now();
  return rows;
}

ServerRows PostgresSession::writeWithoutTurn(const std::string& sql) {
  if (std::chrono::steady_clock::now() - lastUse_ > longPause) read("SELECT 1");
  requireConnection();
  try {
    ServerRows rows = client_->run(sql);
    lastUse_ = std::chrono::steady_clock::now();
    return rows;
  } catch (const ServerError& error) {
    if (!error.isConnectionLost()) throw failure(error);
    client_.reset();
    throw lost(error, "Whether it was done is not known.");
  }
}

void PostgresSession::design(const std::string& sql) {
  const Roles roles = rolesOf(database_.name, database_.schema);
  write("SET LOCAL ROLE " + quotedName(roles.owner) + "; " + sql + "; RESET ROLE");
  hasDesigned_ = hasTransaction();
  catalogue_.changed();
}

ServerRows PostgresSession::runInTransaction(const std::string& sql,
                                             const std::function<bool()>& stopRequested) {
  requireWritable();
  try {
    return client_->run(nextPart + sql, stopRequested);
  } catch (const ServerError& error) {
    throw undonePart(error);
  }
}

Error PostgresSession::undonePart(const ServerError& error) {
  if (!error.isConnectionLost()) {
    try {
      client_->run("ROLLBACK TO SAVEPOINT part");
      return failure(error);
    } catch (const ServerError& second) {
      isUndone_ = true;
      if (!second.isConnectionLost()) return failure(second);
    }
  }
  isUndone_ = true;
  client_.reset();
  return lost(error, transaction_ == Kind::reading
                         ? "What was read is not complete: read it again."
                         : "Nothing of the changes made together was stored.");
}

void PostgresSession::requireWritable() const {
  if (hasTransaction() && isUndone_) {
    throw Error(sql::updateRefused, "Pelmora",
                "The changes made together were undone after an error; nothing more is stored.");
  }
}

void PostgresSession::begin() {
  if (hasTransaction()) throw sql::statementError("A transaction has begun already.");
  if (std::chrono::steady_clock::now() - lastUse_ > longPause) read("SELECT 1");
  requireConnection();
  try {
    turn_.wait(database_.schemaId, [&](const std::string& takeTurn) {
      try {
        transactionId_ = textAt(client_->run("BEGIN; " + takeTurn + turn_.waitAsLongAsMayBe() +
                                             "SAVEPOINT part; "
                                             "SELECT pg_current_xact_id()::text"));
      } catch (const ServerError& error) {
        if (!error.isConnectionLost()) client_->run("ROLLBACK");
        throw;
      }
    });
  } catch (const ServerError& error) {
    if (!error.isConnectionLost()) throw failure(error);
    client_.reset();
    throw lost(error, "Nothing has been changed.");
  }
  transaction_ = Kind::writing;
}

void PostgresSession::beginReading() {
  if (hasTransaction()) throw sql::statementError("A transaction has begun already.");
  read("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY; " + turn_.waitAsLongAsMayBe() +
       "SAVEPOINT part");
  transaction_ = Kind::reading;
}

void PostgresSession::commit() {
  requireWritable();
  try {
    client_->run("COMMIT");
  } catch (const ServerError& error) {
    if (!error.isConnectionLost()) throw failure(error);
    isUndone_ = true;
    client_.reset();
    bool isStored = false;
    try {
      isStored = wasCommitted();
    } catch (const Error&) {
      throw lost(error,
                 "Whether the changes made together were stored is not known: look before you "
                 "repeat them.");
    }
    if (!isStored) throw lost(error, "Nothing of the changes made together was stored.");
  }
  transaction_ = Kind::none;
  isUndone_ = false;
  hasDesigned_ = false;
  lastUse_ = std::chrono::steady_clock::now();
}

// The server knows for a long time how each of its transactions ended.
bool PostgresSession::wasCommitted() {
  connect();
  for (int look = 0; look < mostLooks; ++look) {
    std::string state;
    try {
      state =
          textAt(client_->run("SELECT pg_xact_status(" + quotedText(transactionId_) + "::xid8)"));
    } catch (const ServerError& error) {
      throw failure(error);
    }
    if (state == "committed" || state == "aborted") return state == "committed";
    std::this_thread::sleep_for(betweenLooks);
  }
  throw sql::statementError("The transaction has not ended.");
}

void PostgresSession::rollback() noexcept {
  if (!hasTransaction()) return;
  transaction_ = Kind::none;
  isUndone_ = false;
  try {
    if (std::exchange(hasDesigned_, false)) {
      catalogue_.changed();
      translations_.clear();
    }
    if (client_ && client_->isOpen()) client_->run("ROLLBACK");
  } catch (...) {
    client_.reset();  // and with it the transaction
  }
}

sql::TableShape PostgresSession::tableToChange(const std::string& name) {
  requireWritable();
  if (auto table = catalogue_.findTable("main", name)) return *table;
  throw sql::missingTable(name);
}

}  // namespace pelmora::postgres
