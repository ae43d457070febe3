// SPDX-License-Identifier: MIT
#include "adapters/access/helper/table_rows.h"

#include "adapters/access/helper/data_page.h"
#include "adapters/access/helper/field_value.h"
#include "adapters/access/helper/row_fields.h"

#include <set>

namespace pelmora::access {
namespace {

class TableScan {
 public:
  TableScan(const PageFile& file, const AccessTable& table,
            const std::vector<AccessColumn>& columns, LongValues& longValues,
            const RowReceiver& into)
      : file_(file), table_(table), columns_(columns), longValues_(longValues), into_(into) {}

  std::uint64_t run() {
    std::vector<LeftOutNote> pages;
    for (const std::uint32_t number : table_.dataPages) {
      try {
        readPage(number);
      } catch (const Damage& damage) {
        pages.push_back(
            {LeftOutNote::Kind::damage, 0, "page " + std::to_string(number), damage.what()});
      }
    }
    const std::uint64_t found = sent_ + leftOut_;
    // A table may own pages that hold none of its rows. They matter only if rows are missing.
    if (found == table_.rows) return sent_;
    for (const LeftOutNote& page : pages) into_.leftOut(page);
    note(table_.rows > found ? table_.rows - found : 0, "",
         "the file counts " + std::to_string(table_.rows) + " rows, but " + std::to_string(found) +
             " were found");
    return sent_;
  }

 private:
  void note(std::uint64_t rows, const std::string& place, const std::string& reason) {
    into_.leftOut({LeftOutNote::Kind::damage, rows, place, reason});
  }

  void readPage(std::uint32_t number) {
    const DataPage page(file_, number, table_.page);
    for (std::size_t row = 0; row < page.rowCount(); ++row) {
      const DataPage::RowKind kind = page.kind(row);
      if (kind == DataPage::RowKind::deleted || kind == DataPage::RowKind::target) continue;
      const RowPlace place{number, static_cast<std::uint8_t>(row)};
      try {
        if (row > 0xFF) throw Damage("a page has fewer rows");
        if (kind == DataPage::RowKind::own) {
          readRow(page.row(row), place);
        } else {
          readMoved(rowPlaceAt(page.row(row), 0), place);
        }
        ++sent_;
      } catch (const Damage& damage) {
        ++leftOut_;
        note(1, placeText(place), damage.what());
      }
    }
  }

  void readMoved(RowPlace to, const RowPlace& from) {
    constexpr int mostMoves = 16;
    for (int moves = 0; moves < mostMoves; ++moves) {
      if (!targets_.insert(to).second) throw Damage("two rows lie at " + placeText(to));
      const DataPage page(file_, to.page, table_.page);
      const Bytes bytes = page.row(to.row);
      switch (page.kind(to.row)) {
        case DataPage::RowKind::target: return readRow(bytes, from);
        case DataPage::RowKind::own: throw Damage("it leads to another row at " + placeText(to));
        default: to = rowPlaceAt(bytes, 0);
      }
    }
    throw Damage("it refers to nothing");
  }

  void readRow(Bytes bytes, const RowPlace& place) {
    const RowFields fields(table_, bytes);
    TableRow row;
    std::vector<LeftOutNote> notes;
    for (const AccessColumn& column : columns_) {
      try {
        row.values.push_back(valueOf(fields, column));
      } catch (const Damage& damage) {
        row.values.emplace_back();
        notes.push_back({LeftOutNote::Kind::value, 0, placeText(place) + ", column " + column.name,
                         damage.what()});
      }
    }
    into_.row(row);
    for (const LeftOutNote& one : notes) into_.leftOut(one);
  }

  Value valueOf(const RowFields& fields, const AccessColumn& column) {
    if (column.type == MDB_BOOL) return std::int64_t{fields.bit(column) ? 1 : 0};
    const auto field = fields.field(column);
    return field ? fieldValue(longValues_, column, *field) : Value();
  }

  const PageFile& file_;
  const AccessTable& table_;
  const std::vector<AccessColumn>& columns_;
  LongValues& longValues_;
  const RowReceiver& into_;
  std::set<RowPlace> targets_;
  std::uint64_t sent_ = 0, leftOut_ = 0;
};

}  // namespace

std::uint64_t readRows(const PageFile& file, const AccessTable& table,
                       const std::vector<AccessColumn>& columns, LongValues& longValues,
                       const RowReceiver& into) {
  return TableScan(file, table, columns, longValues, into).run();
}

}  // namespace pelmora::access
