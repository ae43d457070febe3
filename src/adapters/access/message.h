// The messages from the program that reads Access files to the library, and their encoding.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/own_tables.h>
#include <pelmora/types.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace pelmora::access {

// Tables come one after the other: TableStart, then TableRow and LeftOutNote in any order, then
// TableEnd. FileFailure or AllRead is the last message. A note outside a table concerns the whole
// file.
struct TableStart {
  std::string name;
  std::uint64_t rows = 0;  // as the file itself counts them
  std::vector<OwnColumn> columns;
};
struct TableRow {
  std::vector<Value> values;
};
struct LeftOutNote {
  enum class Kind : std::uint8_t {
    damage = 0,      // rows or the place they were in
    value = 1,       // one value, which is null in its row
    unsupported = 2  // nothing is damaged; this reader cannot read it
  };
  Kind kind = Kind::damage;
  std::uint64_t rows = 0;  // that are missing because of it, if known
  std::string place, reason;
};
struct TableEnd {
  std::uint64_t rows = 0;  // that were sent
};
struct FileFailure {
  std::string reason;
};
struct AllRead {
  std::uint64_t tables = 0;
};
using Message = std::variant<TableStart, TableRow, LeftOutNote, TableEnd, FileFailure, AllRead>;

// A longer message is invalid.
inline constexpr std::size_t longestMessage = std::size_t{256} << 20;

struct InvalidMessage : std::runtime_error {
  using std::runtime_error::runtime_error;
};

[[nodiscard]] std::string encoded(const Message& message);
// Removes the message at the front of `bytes`; returns nothing and removes nothing while it is
// incomplete. Errors: InvalidMessage for bytes that cannot be the start of a message.
[[nodiscard]] std::optional<Message> takeMessage(std::string_view& bytes);

}  // namespace pelmora::access
