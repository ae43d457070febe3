// The rows of one table, checked against its index.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sqlite/database_handle.h"
#include "adapters/sqlite/salvage/damage_list.h"
#include "adapters/sqlite/salvage/stored_schema.h"
#include "store/salvage.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::sqlite {
class PreparedStatement;
}

namespace pelmora::sqlite::salvage {

// Brings the rows of a table into the table of the same name of `output`. An index that is whole
// knows every row that there was: a row that it does not know is left out, and what remains of its
// entries is lost, or comes from the index where that holds the whole row.
class TableSalvage {
 public:
  // Temporary tables of `output` hold the entries of the index; `number` keeps them apart.
  TableSalvage(const StoredTable& table, int number, const PageFile& file, PageClaims& claims,
               const DatabaseHandle& output, DamageList& damage);
  ~TableSalvage();

  void bringOver();
  // A page that no tree leads to any more: whether all its rows are missing rows of this table.
  [[nodiscard]] bool isPageOfThis(PageNumber page);
  void adopt(PageNumber page);
  // After bringOver() and the last adopt(): the counts. Rows that are lost are noted in temporary
  // table salvage_lost (part, seriesID, rows), where it has a column seriesID.
  [[nodiscard]] SalvagedTable finish();

  [[nodiscard]] const StoredTable& table() const { return table_; }
  // After finish(): rows that are lost and that the index still names: "meter 3: SerialNumber
  // 'M1'".
  [[nodiscard]] std::vector<std::string> lostNames() const;
  // The largest row id that table or index name.
  [[nodiscard]] std::int64_t largestId() const { return largestId_; }

 private:
  struct Summary {
    std::uint64_t rows = 0, print = 0;
    bool isWhole = false;
  };
  [[nodiscard]] Summary summaryOfIndex(const StoredIndex& index);
  [[nodiscard]] Summary summaryOfRows();
  void findTextColumns();
  void chooseIndex();
  void loadEntries();
  [[nodiscard]] bool hasShape(const Record& row) const;
  [[nodiscard]] Field fieldOf(std::int64_t rowid, const Record& row, std::size_t column) const;
  // Whether an entry agrees; nothing if there is none.
  [[nodiscard]] std::optional<bool> agrees(std::int64_t rowid, const Record& row);
  bool take(std::int64_t rowid, const Record& row);
  bool insert(std::int64_t rowid, const Record& row);
  void takeFromIndex();
  void noteLost(SalvagedTable& counts);
  [[nodiscard]] UseDamage damageOf(const std::string& what);

  const StoredTable& table_;
  std::vector<bool> isText_;  // by column
  std::string entries_;       // the temporary table
  PageClaims& claims_;
  TreeWalk walk_;
  const DatabaseHandle& output_;
  DamageList& damage_;
  const StoredIndex* index_ = nullptr;
  Summary indexed_, rows_;
  bool hasEntries_ = false;
  bool contradicts_ = false;  // index and rows, both of them right in themselves
  std::uint64_t read_ = 0, fromIndex_ = 0;
  std::int64_t largestId_ = 0;
  std::unique_ptr<PreparedStatement> insert_, entry_, forget_;
};

}  // namespace pelmora::sqlite::salvage
