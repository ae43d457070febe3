// SPDX-License-Identifier: MIT
#include <pelmora/calibration/database.h>
#include <pelmora/calibration/failure.h>
#include <pelmora/calibration/import_access.h>

#include "base/file_text.h"
#include "base/run_time_error.h"
#include "base/server_address.h"
#include "calibration/row_checksum.h"
#include "calibration/session.h"
#include "calibration/stored_value.h"
#include "doctor/examination.h"
#include "store/curve_schema.h"
#include "store/foreign_tables.h"
#include "store/reading.h"

#include <map>
#include <optional>
#include <set>
#include <system_error>

namespace pelmora::calibration {
namespace {

constexpr std::size_t rowsOfABatch = 1000;

// Writes the tables of a curve database as they are read.
class CurveTables : public ForeignTables {
 public:
  CurveTables(Connection& curves, ProofSheet& sheet, const Observer& observer)
      : curves_(curves), sheet_(sheet), observer_(observer) {}

  void beginTable(const ForeignTable& table) override {
    name_ = table.Design.Name;
    showStep();
    isOpen_ = true;
    proof_ = {};
    proof_.name = name_;
    if (!table.Design.Columns.empty()) proof_.expected = table.Rows;
    schema_ = curveTable(name_);
    if (schema_ == nullptr) return;
    if (!begun_.insert(schema_->Name).second) {
      missing("", "the file has a second table of that name");
      schema_ = nullptr;
      return;
    }
    name_ = schema_->Name;
    proof_.name = name_;
    map(table.Design.Columns);
    keys_.clear();
    rows_ = openForBatch(curves_, "Select * from " + name_);
  }

  void addRow(std::span<const Value> values) override {
    ++proof_.read;
    if (schema_ == nullptr) {
      proof_.checksumRead += rowChecksum(values);
      return;
    }
    std::vector<Value> row(schema_->Columns.size());
    for (std::size_t i = 0; i < targets_.size(); ++i) {
      if (values[i].index() == 0) continue;
      if (!targets_[i]) {
        ++homeless_[i];
        continue;
      }
      const OwnColumn& column = schema_->Columns[*targets_[i]];
      if (auto stored = storedValue(values[i], column.Type)) {
        row[*targets_[i]] = std::move(*stored);
      } else {
        missing(rowText() + ", column " + column.Name,
                "'" + valueText(values[i]) + "' cannot be stored there");
      }
    }
    if (!hasOwnKey(row)) return;
    proof_.checksumRead += rowChecksum(row);
    rows_->addRow(fields_, row);
    if (++batch_ == rowsOfABatch) sendBatch();
  }

  void endTable() override {
    if (schema_ != nullptr) {
      for (const auto& [column, values] : homeless_) {
        missing("column " + sources_[column], "a curve database has no such column; it holds " +
                                                  std::to_string(values) + " values");
      }
      sendBatch();
      rows_->close();
      rows_.reset();
      sheet_.tables.push_back(proof_);
    } else {
      sheet_.otherTables.push_back(proof_);
    }
    schema_ = nullptr;
    isOpen_ = false;
  }

  void leaveOut(const LeftOut& part) override {
    if (isOpen_ && schema_ == nullptr) return;  // part of a table that is not copied
    sheet_.missing.push_back({isOpen_ ? name_ : "", part.Place, part.Reason});
  }

  [[nodiscard]] bool hasBegun(const std::string& table) const { return begun_.contains(table); }

 private:
  static const SchemaTable* curveTable(std::string_view name) {
    const SchemaTable* found = findSchemaTable(name);
    return found != nullptr && isOwnTableName(found->Name) ? nullptr : found;
  }

  // Finds our column for each column of the file.
  void map(const std::vector<OwnColumn>& columns) {
    targets_.clear();
    sources_.clear();
    fields_.clear();
    homeless_.clear();
    if (columns.empty()) return;  // its definition is damaged, which is listed
    for (const OwnColumn& own : schema_->Columns) fields_.emplace_back(own.Name);
    std::vector<bool> isFound(schema_->Columns.size());
    for (const OwnColumn& column : columns) {
      sources_.push_back(column.Name);
      targets_.push_back(columnOf(*schema_, column.Name));
      if (targets_.back()) isFound[*targets_.back()] = true;
    }
    for (std::size_t i = 0; i < isFound.size(); ++i) {
      if (!isFound[i]) missing("column " + schema_->Columns[i].Name, "the file has no such column");
    }
  }

  [[nodiscard]] std::string rowText() const {
    return "row " + std::to_string(proof_.read) + " of those read";
  }

  // The database would refuse a whole batch because of one duplicate ID.
  bool hasOwnKey(const std::vector<Value>& row) {
    if (schema_->Columns.front().Type != OwnColumnType::key) return true;
    const auto* id = std::get_if<std::int64_t>(&row.front());
    if (id != nullptr && keys_.insert(*id).second) return true;
    missing(rowText(), id == nullptr ? "it has no ID"
                                     : "an earlier row has the same ID, " + std::to_string(*id));
    return false;
  }

  void missing(const std::string& place, const std::string& reason) {
    sheet_.missing.push_back({name_, place, reason});
  }

  void sendBatch() {
    showStep();
    rows_->updateBatch();
    batch_ = 0;
  }

  void showStep() const {
    if (observer_.status) observer_.status("Reading table " + name_);
    if (observer_.stop.stop_requested()) throw Cancelled({"the import was cancelled", "", ""});
  }

  Connection& curves_;
  ProofSheet& sheet_;
  const Observer& observer_;
  std::set<std::string> begun_;
  std::string name_;
  bool isOpen_ = false;
  const SchemaTable* schema_ = nullptr;
  ProofTable proof_;
  std::vector<std::string> sources_;
  std::vector<std::optional<std::size_t>> targets_;
  std::vector<std::string_view> fields_;
  std::map<std::size_t, std::size_t> homeless_;  // number of values by column that we do not have
  std::set<std::int64_t> keys_;
  std::unique_ptr<Recordset> rows_;
  std::size_t batch_ = 0;
};

// Reads back what was stored, and counts its rows, empty values and checksum.
void prove(Connection& curves, ProofTable& proof) {
  const auto rows = readRows(curves, "Select * from " + proof.name);
  const SchemaTable& schema = schemaTable(proof.name);
  std::vector<std::size_t> fields;
  for (const OwnColumn& column : schema.Columns) fields.push_back(rows->fieldIndex(column.Name));
  std::vector<Value> row(fields.size());
  for (; !rows->atEnd(); rows->moveNext()) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
      row[i] = rows->value(fields[i]);
      if (row[i].index() == 0) ++proof.empty;
    }
    proof.checksumWritten += rowChecksum(row);
    ++proof.written;
  }
}

void requireEmpty(Connection& curves, const std::string& location) {
  for (const SchemaTable& table : curveTables()) {
    if (readRows(curves, "Select TOP 1 * from " + table.Name)->recordCount() == 0) continue;
    throw Exists({"'" + location + "' already holds rows, in table " + table.Name, location,
                  "name a new file, or an empty curve database"});
  }
}

NoCurveDatabase withoutCurves(const std::string& path, ProofSheet sheet) {
  const std::string noTables = "no table meter and no table series";
  if (sheet.missing.empty()) {
    sheet.missing.push_back({"", "", "the file has " + noTables});
    return {{"the Access file '" + path + "' does not contain a curve database: it has " + noTables,
             path, "name a curve database; 'pelmora import' takes runs from a stand's database"},
            std::move(sheet)};
  }
  const ProofGap first = sheet.missing.front();
  return {{"no curve database can be read from the Access file '" + path +
               "': " + (first.place.empty() ? "" : first.place + ": ") + first.reason,
           path, "repair it in Access, or use an older copy of it"},
          std::move(sheet)};
}

ProofSheet importInto(const std::string& path, const Database& lab, const Observer& observer) {
  const ConnectionPtr& curves = lab.connection();
  ProofSheet sheet;
  Transaction transaction(curves);
  requireEmpty(*curves, lab.location());
  CurveTables tables(*curves, sheet, observer);
  readAccessFile(path, tables);
  if (!tables.hasBegun("meter") && !tables.hasBegun("series"))
    throw withoutCurves(path, std::move(sheet));
  for (const SchemaTable& table : curveTables()) {
    if (!tables.hasBegun(table.Name))
      sheet.missing.push_back({table.Name, "", "the file has no such table"});
  }
  for (ProofTable& proof : sheet.tables) prove(*curves, proof);
  sheet.problems = doctor::examine(curves);
  std::erase_if(sheet.problems,
                [](const Finding& finding) { return finding.severity == Severity::note; });
  transaction.commit();
  return sheet;
}

// Turns errors of reading the file and of storing into the service's own.
[[noreturn]] void throwTranslated(const Error& error, const std::string& path,
                                  const std::string& location) {
  const auto is = [&](RunTimeError number) {
    return error.number() == static_cast<std::int32_t>(number);
  };
  // The descriptions name the file and say what to do.
  if (is(RunTimeError::fileNotFound)) throw NotFound({error.what(), path, ""}, error.number());
  if (is(RunTimeError::invalidFileFormat)) throw Damaged({error.what(), path, ""}, error.number());
  if (is(RunTimeError::noObject)) throw Unusable({error.what(), path, ""}, error.number());
  throwFailure("importing '" + path + "'", location, error);
}

}  // namespace

NoCurveDatabase::NoCurveDatabase(FailureText text, ProofSheet sheet)
    : BadData(std::move(text)), sheet_(std::move(sheet)) {}
NoCurveDatabase::~NoCurveDatabase() = default;

ProofSheet importAccess(const std::string& path, const std::string& location, OpenOptions options,
                        const Observer& observer) {
  // On a server the curve database has been made, with its roles, before.
  const bool isNew = !isServerAddress(location) && !fileExists(filePath(location));
  std::optional<Database> curves;
  try {
    curves.emplace(isNew ? create(location, std::move(options))
                         : open(location, std::move(options)));
    return importInto(path, *curves, observer);
  } catch (...) {
    const bool wasMade = isNew && curves.has_value();
    curves.reset();
    std::error_code ignored;
    if (wasMade) std::filesystem::remove(filePath(location), ignored);
    try {
      throw;
    } catch (const Failure&) {
      throw;
    } catch (const Error& error) {
      throwTranslated(error, path, shownLocation(location));
    }
  }
}

}  // namespace pelmora::calibration
