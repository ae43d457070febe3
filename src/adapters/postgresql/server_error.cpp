// SPDX-License-Identifier: MIT
#include "adapters/postgresql/server_error.h"

#include "adapters/postgresql/client.h"
#include "adapters/sql_dialect/dialect_error.h"
#include "adapters/sql_engine/engine_error.h"
#include "base/run_time_error.h"

#include <string_view>

namespace pelmora::postgres {

namespace {

std::string native(const ServerError& error) {
  const std::string state = error.state().empty() ? "" : " " + error.state();
  return " (PostgreSQL" + state + ": " + error.what() + ")";
}

Error numbered(RunTimeError number, const std::string& description) {
  return {static_cast<std::int32_t>(number), "Pelmora", description};
}

// What to check if there is no connection. The client library gives its reasons only as texts; in
// another language they get the last advice.
std::string adviceFor(std::string_view reason) {
  const auto has = [&](std::string_view part) { return reason.find(part) != std::string::npos; };
  if (has("SSL error") || has("root certificate") || has("server certificate")) {
    return "Check that sslrootcert names the certificate of the server's authority, and that the "
           "address names the server as its certificate does.";
  }
  if (has("no password supplied") || has("password authentication failed"))
    return "Check the user and the password, which comes from PGPASSWORD or the password file.";
  // An unknown host is a "Name or service not known".
  if (has("definition of service") || has("service file"))
    return "Check the name of the service and the service file, which PGSERVICEFILE names.";
  return "Check the address, the user and that the server runs.";
}

bool isOneOf(std::string_view state, std::initializer_list<std::string_view> states) {
  for (const std::string_view known : states) {
    if (state == known) return true;
  }
  return false;
}

}  // namespace

bool isLockTimeout(const ServerError& error) { return error.state() == "55P03"; }

Error errorOf(const ServerError& error, const std::string& database) {
  const std::string_view state = error.state();
  const std::string_view kind = state.substr(0, 2);
  if (isOneOf(state, {"55P03", "40001", "40P01"})) {
    return {genericFailure, "Pelmora",
            "Could not lock database '" + database + "'; it is locked by another user." +
                native(error)};
  }
  if (state == "22012") return makeError(RunTimeError::divisionByZero);
  if (state == "22003") return makeError(RunTimeError::overflow);
  if (state == dialect_state::noSuchPower) return makeError(RunTimeError::invalidArgument);
  if (isOneOf(state, {dialect_state::notANumber, "22P02"})) return sql::typeMismatch();
  if (state == stoppedState)
    return {operationStopped, "Pelmora", "The wait for database '" + database + "' was stopped."};
  if (state == "57014") {
    return sql::statementError(
        "The server has stopped the statement, which took longer than its "
        "settings allow." +
        native(error));
  }
  if (isOneOf(state, {"42501", "25006"})) {
    return {sql::updateRefused, "Pelmora",
            "Operation must use an updateable query. You are not allowed to do this in database '" +
                database + "'; its owner grants the roles of readers and writers." + native(error)};
  }
  if (kind == "23") {
    return {sql::constraintFailed, "Pelmora",
            "The changes you requested to the table were not successful because they would break a "
            "rule of the table." +
                native(error)};
  }
  if (state == "53100") {
    return numbered(RunTimeError::pathAccess,
                    "There is no room left on the server of '" + database + "'." + native(error));
  }
  if (state == "53200") return numbered(RunTimeError::outOfMemory, "Out of memory" + native(error));
  if (kind == "54") return sql::statementError("Query is too complex." + native(error));
  return sql::statementError("The database engine refused the statement." + native(error));
}

Error connectionLostError(const ServerError& error, const std::string& database,
                          const std::string& outcome) {
  return {sql::connectionLost, "Pelmora",
          "The connection to database '" + database + "' was lost. " + outcome + native(error)};
}

Error cannotConnect(const ServerError& error, const std::string& database) {
  return {sql::connectionLost, "Pelmora",
          "Could not open database '" + database + "'. " + adviceFor(error.what()) + native(error)};
}

}  // namespace pelmora::postgres
