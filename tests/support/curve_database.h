// A fresh curve database at the shared location, and stands, for tests of operations on a real
// engine. SPDX-License-Identifier: MIT
#pragma once

#include "store/field_value.h"
#include "tests/support/curve_place.h"
#include "tests/support/operation_test.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/stand_export.h"
#include "wiring/database_driver.h"

#include <pelmora/database.h>

#include <fstream>
#include <string>
#include <vector>

namespace pelmora::test {

// One row per line, fields joined by '|', null as empty.
using Lines = std::vector<std::string>;

inline Lines linesOf(Connection& connection, const std::string& select) {
  Lines lines;
  auto rows = connection.openRecordset(select, CursorType::forwardOnly, LockType::optimistic);
  for (; !rows->atEnd(); rows->moveNext()) {
    std::string line;
    for (std::size_t field = 0; field < rows->fieldCount(); ++field) {
      line += (field == 0 ? "" : "|") + toText(rows->value(field));
    }
    lines.push_back(line);
  }
  return lines;
}

// A stand's row: the columns that derivations read, zeros in the others.
struct StandRow {
  std::string job;
  double v1 = 1, v2 = 1, v3 = 1, v4 = 1, v5 = 1, v12 = 70, v20 = 1, v21 = 1;
};

inline std::string standLine(const StandRow& row) {
  std::vector<double> v(38, 0.0);
  v[1] = row.v1, v[2] = row.v2, v[3] = row.v3, v[4] = row.v4, v[5] = row.v5;
  v[12] = row.v12, v[20] = row.v20, v[21] = row.v21;
  std::string line = row.job;
  for (std::size_t i = 1; i <= 37; ++i) line += "," + std::to_string(v[i]);
  return line;
}

class CurveDatabaseTest : public OperationTest {
 protected:
  CurveDatabaseTest() {
    createCurveDatabase(path);
    shared.location = splitLocation(path);
    database->open();
    platform().createConnection = [this](const std::string& location) -> ConnectionPtr {
      return std::make_shared<RecordingConnection>(databaseConnection(location), log_);
    };
  }

  void SetUp() override {
    if (const std::string lack = lackOfServer(); !lack.empty()) GTEST_SKIP() << lack;
  }

  // Statements that the tested operations are not part of.
  void run(const std::string& statement) { database->execute(statement); }
  Lines lines(const std::string& select) { return linesOf(*database, select); }

  void addMeter(int id, const std::string& serialNumber, int recal,
                const std::string& adjusted = "") {
    run("INSERT INTO meter (ID, SerialNumber, SerialNumberAdjusted, ReCalID) VALUES (" +
        std::to_string(id) + ",'" + serialNumber + "','" + adjusted + "'," + std::to_string(recal) +
        ")");
  }
  void addMaster(int id, const std::string& serialNumber, int recal) {
    run("INSERT INTO masterMeterList (ID, SerialNumber, ReCalID) VALUES (" + std::to_string(id) +
        ",'" + serialNumber + "'," + std::to_string(recal) + ")");
  }
  void addSeries(int id, const std::string& name, int meter) {
    run("INSERT INTO series (ID, name, meterid) VALUES (" + std::to_string(id) + ",'" + name +
        "'," + std::to_string(meter) + ")");
  }

  // An open connection to the curve database, recorded.
  ConnectionPtr curves() {
    ConnectionPtr connection = openDatabase(path);
    return std::make_shared<RecordingConnection>(connection, log_);
  }
  // An open connection to a stand of these rows, recorded.
  ConnectionPtr stand(const std::vector<StandRow>& rows) {
    const std::string file = scratch.file("stand.csv");
    std::ofstream out(file);
    out << standHeader() << '\n';
    for (const StandRow& row : rows) out << standLine(row) << '\n';
    out.close();
    return std::make_shared<RecordingConnection>(openDatabase(file), log_);
  }
  [[nodiscard]] const Log& log() const { return *log_; }
  void clearLog() { log_->clear(); }

  const ScratchFolder scratch;
  const std::string path = newCurvePlace(scratch);
  const ConnectionPtr database = databaseConnection(path);

 private:
  std::shared_ptr<Log> log_ = std::make_shared<Log>();
};

}  // namespace pelmora::test
