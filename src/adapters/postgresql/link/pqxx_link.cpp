// The module that is linked with the client library.
// SPDX-License-Identifier: MIT
#include "adapters/postgresql/link/libpqxx.h"
#include "adapters/postgresql/server_link.h"

#include <exception>
#include <utility>

namespace pelmora::postgres {

namespace {

constexpr const char* lostConnection = "08006";

std::string oneLine(std::string text) {
  std::string line;
  for (const char c : text) {
    const bool isBlank = c == '\n' || c == '\t' || c == ' ';
    if (!isBlank) line += c;
    if (isBlank && !line.empty() && line.back() != ' ') line += ' ';
  }
  while (!line.empty() && line.back() == ' ') line.pop_back();
  return line;
}

// Of an error of a statement the first line: what follows quotes the statement. "ERROR:" in front
// is in the language of the server.
std::string messageOf(const std::exception& error) {
  const std::string text = error.what();
  const std::string first = text.substr(0, text.find('\n'));
  const std::size_t colon = first.find(':');
  return oneLine(colon == std::string::npos ? first : first.substr(colon + 1));
}

// The server ends the connection: it stops, or an administrator wants it.
bool isEnd(const std::string& state) { return state.starts_with("57P0"); }

class PqxxLink : public ServerLink {
 public:
  explicit PqxxLink(const std::string& address) : connection_(address), silence_(connection_) {
    keepBrokenOnceBroken(connection_);
  }

  [[nodiscard]] bool isOpen() const noexcept override { return connection_.is_open(); }

  [[nodiscard]] Outcome run(const std::string& statements, RowSink& rows) noexcept override {
    return guarded([&] {
      pqxx::nontransaction work(connection_);
      const pqxx::result result = work.exec(statements);
      for (pqxx::row::size_type i = 0; i < result.columns(); ++i)
        rows.addColumn(result.column_name(i), result.column_type(i));
      for (const pqxx::row& row : result) {
        for (pqxx::row::size_type i = 0; i < result.columns(); ++i) {
          const pqxx::field field = row[i];
          if (field.is_null()) {
            rows.addCell(std::nullopt);
          } else {
            rows.addCell(std::string_view(field.c_str(), field.size()));
          }
        }
        rows.endRow();
      }
    });
  }

  void cancel() noexcept override {
    try {
      connection_.cancel_query();
    } catch (const std::exception&) {
      // The statement runs to its end.
    }
  }

  [[nodiscard]] Outcome copy(
      const std::string& table, const std::vector<std::string>& quotedColumns,
      const std::function<bool(std::string& line)>& nextLine) noexcept override {
    return guarded([&] {
      pqxx::nontransaction work(connection_);
      CopyLines lines(work, table, quotedColumns);
      for (std::string line; nextLine(line); line.clear()) lines.add(line);
      lines.complete();
    });
  }

 private:
  template <class Action>
  [[nodiscard]] Outcome guarded(Action&& action) const noexcept {
    try {
      action();
      return std::nullopt;
    } catch (const pqxx::broken_connection& error) {
      return LinkFailure{lostConnection, oneLine(error.what()), true};
    } catch (const std::exception& error) {
      const std::string state = stateOf(error);
      if (!isOpen())
        return LinkFailure{state.empty() ? lostConnection : state, oneLine(error.what()), true};
      return LinkFailure{state, state.empty() ? oneLine(error.what()) : messageOf(error),
                         isEnd(state)};
    }
  }

  pqxx::connection connection_;
  // Warnings would otherwise be written to the host's standard error.
  pqxx::quiet_errorhandler silence_;
};

}  // namespace

}  // namespace pelmora::postgres

extern "C" __attribute__((visibility("default"))) pelmora::postgres::ServerLink::Outcome
pelmora_open_postgresql_link(const std::string& address,
                             std::unique_ptr<pelmora::postgres::ServerLink>& link) noexcept {
  using namespace pelmora::postgres;
  try {
    link = std::make_unique<PqxxLink>(address);
    return std::nullopt;
  } catch (const std::exception& error) {
    return LinkFailure{lostConnection, oneLine(error.what()), true};
  }
}
