// From the messages of the reading program to tables.
// SPDX-License-Identifier: MIT
#include "adapters/access/access_database.h"
#include "base/file_text.h"
#include "base/run_time_error.h"
#include "base/utf8_text.h"

#include <filesystem>
#include <set>

namespace pelmora {
namespace {

using namespace access;

// The file may have corrupted the program that read it, so its messages are checked as well.
class Delivery {
 public:
  explicit Delivery(ForeignTables& into) : into_(into) {}

  void operator()(const TableStart& start) {
    expect(!isInTable_, "a table inside a table");
    expectText(start.name);
    std::set<std::string> names;
    for (const OwnColumn& column : start.columns) {
      expectText(column.Name);
      expect(!column.Name.empty() && names.insert(column.Name).second, "a column without a name");
    }
    isInTable_ = true;
    columns_ = start.columns.size();
    rows_ = 0;
    into_.beginTable({{start.name, start.columns}, start.rows});
  }
  void operator()(const TableRow& row) {
    expect(isInTable_ && columns_ > 0 && row.values.size() == columns_, "a row of another table");
    for (const Value& value : row.values) {
      if (const auto* text = std::get_if<std::string>(&value)) expectText(*text);
    }
    ++rows_;
    into_.addRow(row.values);
  }
  void operator()(const LeftOutNote& note) {
    expectText(note.place);
    expectText(note.reason);
    into_.leaveOut({static_cast<LeftOut::Kind>(note.kind), note.rows, note.place, note.reason});
  }
  void operator()(const TableEnd& end) {
    expect(isInTable_ && end.rows == rows_, "rows are missing");
    isInTable_ = false;
    ++tables_;
    into_.endTable();
  }
  void operator()(const FileFailure&) {}
  void operator()(const AllRead& all) {
    expect(!isInTable_ && all.tables == tables_, "tables are missing");
  }

 private:
  static void expect(bool holds, const char* what) {
    if (!holds) throw InvalidMessage(what);
  }
  static void expectText(const std::string& text) {
    expect(isUtf8(text) && text.find('\0') == std::string::npos, "a text that is not UTF-8");
  }

  ForeignTables& into_;
  bool isInTable_ = false;
  std::size_t columns_ = 0;  // of that table
  std::uint64_t rows_ = 0, tables_ = 0;
};

}  // namespace

void readAccessTables(const std::string& path, ForeignTables& into,
                      const ProgramSettings& settings) {
  requireRegularFile(path);
  if (!isAccessFile(path)) {
    throw Error(static_cast<std::int32_t>(RunTimeError::invalidFileFormat), "Pelmora",
                "Unrecognized database format '" + path +
                    "': the file is not an Access database, or cannot be read. Name another file.");
  }
  const std::string absolute = utf8Text(std::filesystem::absolute(filePath(path)));
  AccessProgram program(absolute, settings);
  Delivery delivery(into);
  while (const auto message = program.next()) {
    try {
      std::visit(delivery, *message);
    } catch (const InvalidMessage& invalid) {
      throw Error(static_cast<std::int32_t>(RunTimeError::invalidFileFormat), "Pelmora",
                  "The Access file '" + path +
                      "' cannot be read: its reader sent an invalid message: " + invalid.what() +
                      ".");
    }
  }
}

}  // namespace pelmora
