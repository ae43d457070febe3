// What the client library does for us: the border to the module that is linked with it.
//
// Most programs never reach a server: the module, and the libraries that it brings along, are
// loaded when the first address of one is opened.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::postgres {

struct LinkFailure {
  std::string
      state;  // the five characters that the server gives to each kind of error; may be empty
  std::string message;
  bool isConnectionLost = false;
};

// Takes the rows of a statement.
class RowSink {
 public:
  virtual ~RowSink() = default;
  virtual void addColumn(std::string_view name, std::uint32_t type) = 0;
  // One by one, from left to right. Nothing: null.
  virtual void addCell(std::optional<std::string_view> text) = 0;
  virtual void endRow() = 0;
};

// One connection. Nothing is thrown across the border.
class ServerLink {
 public:
  using Outcome = std::optional<LinkFailure>;  // nothing: it was done

  virtual ~ServerLink() = default;
  [[nodiscard]] virtual bool isOpen() const noexcept = 0;
  // One or more statements; the rows of the last one.
  [[nodiscard]] virtual Outcome run(const std::string& statements, RowSink& rows) noexcept = 0;
  // Asks the server to end the statement that another thread runs now; nothing where none runs.
  virtual void cancel() noexcept = 0;
  // Lines of COPY's text form; `nextLine` returns false after the last one.
  [[nodiscard]] virtual Outcome copy(
      const std::string& table, const std::vector<std::string>& quotedColumns,
      const std::function<bool(std::string& line)>& nextLine) noexcept = 0;
};

// The module's one function.
using OpenLink = ServerLink::Outcome (*)(const std::string& address,
                                         std::unique_ptr<ServerLink>& link) noexcept;
inline constexpr const char* openLinkName = "pelmora_open_postgresql_link";

}  // namespace pelmora::postgres
