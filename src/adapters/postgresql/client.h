// One connection to the server: texts of statements in, rows out.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/postgresql/server_link.h"
#include "adapters/sql_engine/row_store.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::postgres {

// What the server or the road to it reports.
class ServerError : public std::runtime_error {
 public:
  explicit ServerError(const LinkFailure& failure)
      : std::runtime_error(failure.message),
        state_(failure.state),
        isConnectionLost_(failure.isConnectionLost) {}

  [[nodiscard]] const std::string& state() const { return state_; }
  [[nodiscard]] bool isConnectionLost() const { return isConnectionLost_; }

 private:
  std::string state_;
  bool isConnectionLost_;
};

// A state of our own: the caller has asked for an end.
inline constexpr const char* stoppedState = "PE000";

struct ServerRows {
  std::vector<std::string> fields;
  sql::RowStore rows{0};
};

// Errors of all functions but isOpen: ServerError.
class Client {
 public:
  // `stopRequested`, which may be empty, is asked often while the server does not answer; true ends
  // the wait with the state stoppedState.
  //
  // Errors also: Error 429 where the module with the client library is missing.
  explicit Client(const std::string& address, const std::function<bool()>& stopRequested = {});

  [[nodiscard]] bool isOpen() const noexcept { return link_->isOpen(); }
  // Runs one or more statements in one round trip and delivers the rows of the last one. Outside
  // BEGIN and COMMIT they take effect together.
  ServerRows run(const std::string& statements);
  // The same, but for a statement that only reads: `stopRequested`, which may be empty, is asked
  // often; true ends the statement with the state stoppedState.
  ServerRows run(const std::string& statements, const std::function<bool()>& stopRequested);
  // Stores lines of COPY's text form; `nextLine` returns false after the last one.
  void copy(const std::string& table, const std::vector<std::string>& quotedColumns,
            const std::function<bool(std::string&)>& nextLine);

 private:
  std::unique_ptr<ServerLink> link_;
};

// Statements and COPYs that this process has sent to servers so far, for measurements: each is at
// least one round trip.
[[nodiscard]] std::size_t requestsSent() noexcept;

}  // namespace pelmora::postgres
