// Copies rows of one table and reads them back.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/copying/new_ids.h"
#include "calibration/copying/row_portion.h"
#include "store/connection.h"
#include "store/curve_schema.h"

#include <pelmora/calibration/proof.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace pelmora::calibration {

class RowCopier {
 public:
  RowCopier(Connection& from, Connection& to, NewIds& ids, std::vector<ProofGap>& gaps)
      : from_(from), to_(to), ids_(ids), gaps_(gaps) {}

  // The rows whose `owner`, a column, is in the portion, and what came of them. `ownerTable`: whose
  // ids the portion names.
  void copy(const SchemaTable& table, const std::string& owner, const std::string& ownerTable,
            const RowPortion& portion, ProofTable& proof);

 private:
  using Row = std::vector<Value>;
  using Places = std::unordered_map<std::uint64_t, std::int64_t>;  // the next one of each owner

  [[nodiscard]] Row rowOf(const Recordset& rows, std::uint64_t number);
  // False if the row has to be left out; the reason is listed.
  [[nodiscard]] bool takeIds(Row& row, std::uint64_t number);
  [[nodiscard]] bool takeOwnId(Row& row, std::uint64_t number);
  [[nodiscard]] std::vector<RowReference> references() const;
  [[nodiscard]] std::int64_t newId(const Row& row);
  void write(const Row& row);
  [[nodiscard]] std::uint64_t checksumOf(Row& row, Places& places) const;
  void readBack(const std::string& where, ProofTable& proof);
  [[nodiscard]] RowPortion inTarget(const RowPortion& portion, const std::string& ownerTable) const;
  void leaveOut(std::uint64_t number, const std::string& place, const std::string& reason);

  Connection& from_;
  Connection& to_;
  NewIds& ids_;
  std::vector<ProofGap>& gaps_;
  const SchemaTable* table_ = nullptr;
  RowReference owner_;
  std::vector<std::optional<std::size_t>> fields_;  // of the source, for each column
  std::vector<std::string_view> columns_;
  std::unique_ptr<Recordset> target_;
  std::size_t batch_ = 0;
  std::set<std::int64_t> keys_;                  // of the portion
  std::map<std::string, std::int64_t> lastIds_;  // that this copy has given, by table
};

// The field of each column of the table; nothing for a column that the record set does not have.
[[nodiscard]] std::vector<std::optional<std::size_t>> fieldsOf(const Recordset& rows,
                                                               const SchemaTable& table);

}  // namespace pelmora::calibration
