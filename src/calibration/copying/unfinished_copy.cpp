// SPDX-License-Identifier: MIT
#include "calibration/copying/unfinished_copy.h"

#include "store/curve_schema.h"
#include "store/field_value.h"
#include "store/reading.h"

#include <array>
#include <bit>

namespace pelmora::calibration {
namespace {

// A table of rows, in one list of columns: the copy, a table's proof, a gap.
enum class KeptRow : std::int64_t { copy = 1, table = 2, gap = 3 };

using KeptFields = std::array<Value, 9>;
constexpr std::array<std::string_view, 9> keptColumns{
    "Kind",        "Name",        "Place",        "AfterID",        "RowsRead",
    "RowsWritten", "EmptyValues", "ChecksumRead", "ChecksumWritten"};

Value kindOf(KeptRow kind) { return static_cast<std::int64_t>(kind); }
Value bitsOf(std::uint64_t number) { return std::bit_cast<std::int64_t>(number); }
std::uint64_t keptNumber(const Value& value) {
  const auto* number = std::get_if<std::int64_t>(&value);
  return number == nullptr ? 0 : std::bit_cast<std::uint64_t>(*number);
}

}  // namespace

UnfinishedCopy unfinishedCopy(const ConnectionPtr& curves) {
  UnfinishedCopy copy;
  if (!hasTable(curves, copyTable)) return copy;
  const auto rows = readRows(*curves, std::string("Select * from ") + copyTable);
  for (; !rows->atEnd(); rows->moveNext()) {
    const std::string name = toText(rows->value("Name")), place = toText(rows->value("Place"));
    switch (static_cast<KeptRow>(keptNumber(rows->value("Kind")))) {
      case KeptRow::copy:
        copy.source = name;
        copy.owner = place;
        if (!isNull(rows->value("AfterID")))
          copy.after = std::bit_cast<std::int64_t>(keptNumber(rows->value("AfterID")));
        break;
      case KeptRow::table: {
        ProofTable& table = copy.tables[name];
        table.name = name;
        table.read = keptNumber(rows->value("RowsRead"));
        table.written = keptNumber(rows->value("RowsWritten"));
        table.empty = keptNumber(rows->value("EmptyValues"));
        table.checksumRead = keptNumber(rows->value("ChecksumRead"));
        table.checksumWritten = keptNumber(rows->value("ChecksumWritten"));
        break;
      }
      case KeptRow::gap: copy.gaps.push_back({name, place, toText(rows->value("Reason"))}); break;
    }
  }
  return copy;
}

void keepUnfinished(const ConnectionPtr& curves, const UnfinishedCopy& copy) {
  createTable(curves, schemaTable(copyTable).design());
  forgetUnfinished(curves);
  const auto rows =
      openForBatch(*curves, std::string("Select * from ") + copyTable + " where False");
  const auto add = [&](const KeptFields& fields) { rows->addRow(keptColumns, fields); };
  add({kindOf(KeptRow::copy), Value(copy.source), Value(copy.owner),
       copy.after ? Value(*copy.after) : Value()});
  for (const auto& [name, table] : copy.tables) {
    add({kindOf(KeptRow::table), Value(name), Value(), Value(), bitsOf(table.read),
         bitsOf(table.written), bitsOf(table.empty), bitsOf(table.checksumRead),
         bitsOf(table.checksumWritten)});
  }
  constexpr std::array<std::string_view, 4> gapColumns{"Kind", "Name", "Place", "Reason"};
  for (const ProofGap& gap : copy.gaps) {
    rows->addRow(gapColumns, std::array<Value, 4>{kindOf(KeptRow::gap), Value(gap.table),
                                                  Value(gap.place), Value(gap.reason)});
  }
  rows->updateBatch();
}

void forgetUnfinished(const ConnectionPtr& curves) {
  if (hasTable(curves, copyTable)) curves->execute(std::string("Delete from ") + copyTable);
}

}  // namespace pelmora::calibration
