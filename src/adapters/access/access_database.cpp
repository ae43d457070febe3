// SPDX-License-Identifier: MIT
#include "adapters/access/access_database.h"

#include "adapters/sqlite/memory_table.h"
#include "adapters/sqlite/sqlite_file.h"
#include "base/run_time_error.h"

namespace pelmora {
namespace {

constexpr const char* readOnlyRemedy =
    "An Access file can only be read here. Change it in Access, or copy it into a new curve "
    "database with 'pelmora import-access' and change that.";

// Puts every table into memory. Refuses a file with any damage.
class WholeTables : public ForeignTables {
 public:
  WholeTables(const std::string& path, MemoryTables& memory) : path_(path), memory_(memory) {}

  void beginTable(const ForeignTable& table) override {
    table_ = table.Design.Name;
    if (!table.Design.Columns.empty()) memory_.beginTable(table.Design);
  }
  void addRow(std::span<const Value> values) override { memory_.addRow(values); }
  void endTable() override { table_.clear(); }
  void leaveOut(const LeftOut& part) override {
    if (part.What == LeftOut::Kind::unsupported) return;  // statements that name it will say so
    std::string place = table_.empty() ? "" : "table " + table_;
    if (!part.Place.empty()) place += (place.empty() ? "" : ", ") + part.Place;
    throw Error(static_cast<std::int32_t>(RunTimeError::invalidFileFormat), "Pelmora",
                "The Access file '" + path_ + "' is damaged: " + place + ": " + part.Reason +
                    ". Repair it in Access, or restore it from a copy.");
  }

 private:
  const std::string& path_;
  MemoryTables& memory_;
  std::string table_;
};

}  // namespace

bool isAccessFile(const std::string& path) {
  const auto start = sqlite::startOfFile(path, sqlite::accessStartSize);
  return start && sqlite::isAccessStart(*start);
}

ConnectionPtr accessFileConnection(const std::string& path,
                                   const access::ProgramSettings& settings) {
  return memoryConnection({[path, settings](MemoryTables& memory) {
                             WholeTables tables(path, memory);
                             readAccessTables(path, tables, settings);
                           },
                           readOnlyRemedy});
}

}  // namespace pelmora
