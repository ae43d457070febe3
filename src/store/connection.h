// All that the component asks of a database: connections and client-side record sets.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>
#include <pelmora/export.h>
#include <pelmora/types.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace pelmora {

enum class CursorType { forwardOnly = 0, dynamic = 2 };
enum class LockType { optimistic = 3, batchOptimistic = 4 };

// The rows of one statement. They are read when the record set is opened; the cursor then stands on
// the first row. Field names compare without regard to case.
//
// Errors: every function may throw Error; a name that is not a field is Error 3265.
class PELMORA_API Recordset {
 public:
  virtual ~Recordset() = default;

  [[nodiscard]] virtual std::int32_t recordCount() const = 0;
  [[nodiscard]] virtual std::size_t fieldCount() const = 0;
  // The first field of that name.
  [[nodiscard]] virtual std::size_t fieldIndex(std::string_view name) const = 0;
  [[nodiscard]] virtual bool atEnd() const = 0;
  virtual void moveNext() = 0;
  // A field of the current row. Errors: Error 3021 at the end of the rows.
  [[nodiscard]] virtual const Value& value(std::size_t field) const = 0;
  [[nodiscard]] const Value& value(std::string_view name) const { return value(fieldIndex(name)); }

  // Adds a row to the one table that the statement reads. With LockType::optimistic it is stored at
  // once and becomes the current row, generated key included; with LockType::batchOptimistic it is
  // kept until updateBatch. `fields` and `values` have equal length; other columns stay null.
  virtual void addRow(std::span<const std::string_view> fields, std::span<const Value> values) = 0;
  // Adds the row as LockType::optimistic does, unless a row that the statement selects by now,
  // which another user may have added since, has the same value in `field`: then nothing is stored
  // and the result is false. A database that cannot look and add in one step adds the row.
  [[nodiscard]] virtual bool addNewRow(std::string_view field,
                                       std::span<const std::string_view> fields,
                                       std::span<const Value> values);
  // Stores all kept rows in one transaction: all of them or, where it throws, none.
  virtual void updateBatch() = 0;
  // Runs the statement again.
  virtual void requery() = 0;
  virtual void close() = 0;
};

inline bool Recordset::addNewRow(std::string_view /*field*/,
                                 std::span<const std::string_view> fields,
                                 std::span<const Value> values) {
  addRow(fields, values);
  return true;
}

// A database, open or not yet open. Statements are in the curve database's own dialect and passed
// on as they stand; one call runs one statement.
//
// Errors: Error with a description like the dialect's own engine gives; number 0x80004005
//         (genericFailure) where another user has locked the database and only there.
class PELMORA_API Connection {
 public:
  virtual ~Connection() = default;
  virtual void open() = 0;
  [[nodiscard]] virtual bool isOpen() const = 0;
  virtual void close() = 0;
  virtual void execute(const std::string& statement) = 0;
  [[nodiscard]] virtual std::unique_ptr<Recordset> openRecordset(const std::string& statement,
                                                                 CursorType cursor,
                                                                 LockType lock) = 0;
};

}  // namespace pelmora
