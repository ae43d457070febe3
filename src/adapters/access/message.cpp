// SPDX-License-Identifier: MIT
#include "adapters/access/message.h"

#include <bit>
#include <type_traits>
#include <utility>

namespace pelmora::access {
namespace {

// A message is its kind (the index in Message), its length and its fields. Numbers are
// little-endian; a text is its length and its bytes.
constexpr std::size_t headSize = 5;

class Writer {
 public:
  void number(std::uint64_t value, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i)
      bytes_.push_back(static_cast<char>(static_cast<unsigned char>(value >> (8 * i))));
  }
  void text(std::string_view value) {
    number(value.size(), 4);
    bytes_.append(value);
  }
  void value(const Value& value) {
    number(value.index(), 1);
    if (const auto* whole = std::get_if<std::int64_t>(&value))
      number(static_cast<std::uint64_t>(*whole), 8);
    if (const auto* real = std::get_if<double>(&value))
      number(std::bit_cast<std::uint64_t>(*real), 8);
    if (const auto* words = std::get_if<std::string>(&value)) text(*words);
  }

  void operator()(const TableStart& table) {
    text(table.name);
    number(table.rows, 8);
    number(table.columns.size(), 2);
    for (const OwnColumn& column : table.columns) {
      text(column.Name);
      number(static_cast<std::uint64_t>(column.Type), 1);
    }
  }
  void operator()(const TableRow& row) {
    number(row.values.size(), 2);
    for (const Value& one : row.values) value(one);
  }
  void operator()(const LeftOutNote& note) {
    number(static_cast<std::uint64_t>(note.kind), 1);
    number(note.rows, 8);
    text(note.place);
    text(note.reason);
  }
  void operator()(const TableEnd& end) { number(end.rows, 8); }
  void operator()(const FileFailure& failure) { text(failure.reason); }
  void operator()(const AllRead& end) { number(end.tables, 8); }

  [[nodiscard]] std::string taken() { return std::move(bytes_); }

 private:
  std::string bytes_;
};

class Reader {
 public:
  explicit Reader(std::string_view bytes) : bytes_(bytes) {}

  std::uint64_t number(std::size_t count) {
    const std::string_view part = take(count);
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < count; ++i)
      value |= std::uint64_t{static_cast<unsigned char>(part[i])} << (8 * i);
    return value;
  }
  std::string text() { return std::string(take(static_cast<std::size_t>(number(4)))); }
  Value value() {
    switch (number(1)) {
      case 0: return {};
      case 1: return static_cast<std::int64_t>(number(8));
      case 2: return std::bit_cast<double>(number(8));
      case 3: return text();
      default: throw InvalidMessage("a value of an unknown kind");
    }
  }

  void read(TableStart& table) {
    table.name = text();
    table.rows = number(8);
    table.columns.resize(static_cast<std::size_t>(number(2)));
    for (OwnColumn& column : table.columns) {
      column.Name = text();
      const auto type = static_cast<OwnColumnType>(number(1));
      if (type != OwnColumnType::whole && type != OwnColumnType::real &&
          type != OwnColumnType::text && type != OwnColumnType::anything)
        throw InvalidMessage("a column of an unknown type");
      column.Type = type;
    }
  }
  void read(TableRow& row) {
    row.values.resize(static_cast<std::size_t>(number(2)));
    for (Value& one : row.values) one = value();
  }
  void read(LeftOutNote& note) {
    const std::uint64_t kind = number(1);
    if (kind > static_cast<std::uint64_t>(LeftOutNote::Kind::unsupported))
      throw InvalidMessage("a note of an unknown kind");
    note.kind = static_cast<LeftOutNote::Kind>(kind);
    note.rows = number(8);
    note.place = text();
    note.reason = text();
  }
  void read(TableEnd& end) { end.rows = number(8); }
  void read(FileFailure& failure) { failure.reason = text(); }
  void read(AllRead& end) { end.tables = number(8); }

  template <class Part>
  Message whole() {
    Part part;
    read(part);
    if (!bytes_.empty()) throw InvalidMessage("a message with more than its fields");
    return part;
  }

 private:
  std::string_view take(std::size_t count) {
    if (count > bytes_.size()) throw InvalidMessage("a message that ends early");
    const std::string_view part = bytes_.substr(0, count);
    bytes_.remove_prefix(count);
    return part;
  }

  std::string_view bytes_;
};

template <std::size_t... Kinds>
Message decoded(std::size_t kind, std::string_view fields, std::index_sequence<Kinds...>) {
  Message message;
  const bool isKnown =
      ((kind == Kinds &&
        (message = Reader(fields).whole<std::variant_alternative_t<Kinds, Message>>(), true)) ||
       ...);
  if (!isKnown) throw InvalidMessage("a message of an unknown kind");
  return message;
}

}  // namespace

std::string encoded(const Message& message) {
  Writer fields;
  std::visit(fields, message);
  const std::string body = fields.taken();
  Writer head;
  head.number(message.index(), 1);
  head.number(body.size(), headSize - 1);
  return head.taken() + body;
}

std::optional<Message> takeMessage(std::string_view& bytes) {
  if (bytes.size() < headSize) return std::nullopt;
  Reader head(bytes.substr(0, headSize));
  const auto kind = static_cast<std::size_t>(head.number(1));
  const auto size = static_cast<std::size_t>(head.number(headSize - 1));
  if (kind >= std::variant_size_v<Message>) throw InvalidMessage("a message of an unknown kind");
  if (size > longestMessage)
    throw InvalidMessage("a message of " + std::to_string(size) + " bytes");
  if (bytes.size() - headSize < size) return std::nullopt;
  Message message = decoded(kind, bytes.substr(headSize, size),
                            std::make_index_sequence<std::variant_size_v<Message>>());
  bytes.remove_prefix(headSize + size);
  return message;
}

}  // namespace pelmora::access
