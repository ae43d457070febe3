// libpqxx as Debian 12 has it. Whatever differs between versions of the library is in this header.
// SPDX-License-Identifier: MIT
#pragma once

#include <pqxx/pqxx>
#include <pqxx/tablewriter>

#include <cstddef>
#include <exception>
#include <string>
#include <vector>

static_assert(PQXX_VERSION_MAJOR == 6, "this header is written for libpqxx 6.4");

namespace pelmora::postgres {

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

// Version 6 restores a broken connection by itself, even between the statements of a transaction
// that we keep; version 7 never does.
inline void keepBrokenOnceBroken(pqxx::connection& connection) {
  connection.inhibit_reactivation(true);
}

// The server's state of an error; empty if it is not the server's. Version 6 throws some of them
// without their state, and a refused serialization and a deadlock not even as errors of SQL.
inline std::string stateOf(const std::exception& error) {
  const auto is = [&]<class Kind>(const Kind*) {
    return dynamic_cast<const Kind*>(&error) != nullptr;
  };
  if (const auto* sql = dynamic_cast<const pqxx::sql_error*>(&error)) {
    if (!sql->sqlstate().empty()) return sql->sqlstate();
  }
  if (is(static_cast<const pqxx::serialization_failure*>(nullptr))) return "40001";
  if (is(static_cast<const pqxx::statement_completion_unknown*>(nullptr))) return "40003";
  if (is(static_cast<const pqxx::deadlock_detected*>(nullptr))) return "40P01";
  if (is(static_cast<const pqxx::transaction_rollback*>(nullptr))) return "40000";
  if (is(static_cast<const pqxx::insufficient_privilege*>(nullptr))) return "42501";
  if (is(static_cast<const pqxx::undefined_column*>(nullptr))) return "42703";
  if (is(static_cast<const pqxx::undefined_function*>(nullptr))) return "42883";
  if (is(static_cast<const pqxx::undefined_table*>(nullptr))) return "42P01";
  if (is(static_cast<const pqxx::syntax_error*>(nullptr))) return "42601";
  if (is(static_cast<const pqxx::disk_full*>(nullptr))) return "53100";
  if (is(static_cast<const pqxx::out_of_memory*>(nullptr))) return "53200";
  if (is(static_cast<const pqxx::too_many_connections*>(nullptr))) return "53300";
  return {};
}

// Rows on their way to a table, as lines of COPY's text form. Version 6 sends every line that it is
// given with a call of the system of its own: here they go in blocks. In version 7 streams take
// such lines.
class CopyLines {
 public:
  CopyLines(pqxx::nontransaction& work, const std::string& table,
            const std::vector<std::string>& quotedColumns)
      : writer_(work, table, quotedColumns.begin(), quotedColumns.end()) {}

  void add(const std::string& line) {
    block_ += line;
    block_ += '\n';
    if (block_.size() >= enough) send();
  }
  // Errors: what the server found in any of the lines.
  void complete() {
    send();
    writer_.complete();
  }

 private:
  static constexpr std::size_t enough = 65536;

  void send() {
    if (block_.empty()) return;
    writer_.write_raw_line(block_);  // which ends in the newline that it would get
    block_.clear();
  }

  pqxx::tablewriter writer_;
  std::string block_;
};

#pragma GCC diagnostic pop

}  // namespace pelmora::postgres
