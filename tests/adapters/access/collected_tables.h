// Keeps everything that a reader of another file format delivers.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/access/access_database.h"
#include "tests/support/places.h"

#include <map>
#include <string>
#include <vector>

namespace pelmora::test {

struct CollectedTable {
  ForeignTable design;
  std::vector<std::vector<Value>> rows;
  std::vector<LeftOut> leftOut;
};

struct CollectedTables : ForeignTables {
  void beginTable(const ForeignTable& table) override {
    open = &tables[table.Design.Name];
    open->design = table;
  }
  void addRow(std::span<const Value> values) override {
    open->rows.emplace_back(values.begin(), values.end());
  }
  void endTable() override { open = nullptr; }
  void leaveOut(const LeftOut& part) override {
    (open != nullptr ? open->leftOut : ofTheFile).push_back(part);
  }

  std::map<std::string, CollectedTable> tables;
  std::vector<LeftOut> ofTheFile;
  CollectedTable* open = nullptr;
};

// The program of this build, for tests that link the library's internals.
inline access::ProgramSettings builtProgram() { return {buildFolder() + "/pelmora-access"}; }
inline std::string accessData(const std::string& name) {
  return sourceFolder() + "/tests/data/access/" + name;
}

inline CollectedTables readAll(const std::string& path) {
  CollectedTables tables;
  readAccessTables(path, tables, builtProgram());
  return tables;
}

}  // namespace pelmora::test
