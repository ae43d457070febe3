// The tables of a curve database, and how a new one comes to be.
// SPDX-License-Identifier: MIT
#include "adapters/sqlite/curve_schema.h"

#include "adapters/sqlite/database_handle.h"
#include "adapters/sqlite/sqlite_database.h"
#include "adapters/sqlite/unfinished_file.h"

#include <pelmora/error.h>

#include <string>

namespace pelmora {

namespace {

// Marks the file as a curve database: "PELM", and the version of the tables below.
constexpr const char* identity = "PRAGMA application_id = 0x50454C4D; PRAGMA user_version = 1;";

// JobRecordID has no type: a job keeps the form, text or number, that the stand gave it.
// Points are found by their series alone and stay in the order in which they were stored.
std::string schema() {
  std::string sql = R"(
CREATE TABLE meter (
  ID INTEGER PRIMARY KEY AUTOINCREMENT,
  SerialNumber TEXT COLLATE NOCASE,
  SerialNumberAdjusted TEXT COLLATE NOCASE,
  ReCalID INTEGER);
CREATE INDEX meter_serial_number ON meter (SerialNumber, ReCalID);

CREATE TABLE masterMeterList (
  ID INTEGER PRIMARY KEY,
  SerialNumber TEXT COLLATE NOCASE,
  ReCalID INTEGER);
CREATE INDEX master_meter_list_serial_number ON masterMeterList (SerialNumber, ReCalID);

CREATE TABLE series (
  ID INTEGER PRIMARY KEY AUTOINCREMENT,
  name TEXT COLLATE NOCASE,
  meterid INTEGER);
CREATE INDEX series_meter ON series (meterid, name);

CREATE TABLE DataFitResults (seriesID INTEGER, summary TEXT COLLATE NOCASE);
CREATE INDEX data_fit_results_series ON DataFitResults (seriesID);

CREATE TABLE Fluids (ID INTEGER PRIMARY KEY AUTOINCREMENT, Name TEXT COLLATE NOCASE);
CREATE INDEX fluids_name ON Fluids (Name);
CREATE TABLE Operator (ID INTEGER PRIMARY KEY AUTOINCREMENT, Name TEXT COLLATE NOCASE);
CREATE INDEX operator_name ON Operator (Name);

CREATE TABLE CalSetup (
  ID INTEGER PRIMARY KEY AUTOINCREMENT,
  MeterID INTEGER,
  Stand INTEGER,
  MeterPosition INTEGER,
  OperatorID INTEGER,
  FluidID INTEGER,
  DateTaken TEXT COLLATE NOCASE);
CREATE INDEX cal_setup_meter ON CalSetup (MeterID, Stand);
)";
  for (const char* table : {"raw1", "raw2", "raw3", "raw4", "merge", "curve"}) {
    const std::string name = table;
    sql += "CREATE TABLE \"" + name + "\" (seriesID INTEGER, Roshko REAL, Strouhal REAL);\n";
    sql += "CREATE INDEX " + name + "_series ON \"" + name + "\" (seriesID);\n";
  }
  sql += "CREATE TABLE CalDataPoint (CalSetupID INTEGER, JobRecordID COLLATE NOCASE";
  for (int i = 1; i <= 37; ++i) sql += ", V" + std::to_string(i) + " REAL";
  sql += ");\nCREATE INDEX cal_data_point_setup ON CalDataPoint (CalSetupID, JobRecordID);\n";
  return sql;
}

}  // namespace

void sqlite::createCurveTables(const DatabaseHandle& database) {
  database.run((std::string(identity) + schema()).c_str());
}

void createSqliteCurveDatabase(const std::string& path) {
  const sqlite::UnfinishedFile unfinished(path);
  try {
    const sqlite::DatabaseHandle database(unfinished.path(), sqlite::OpenMode::create);
    database.run("BEGIN");
    sqlite::createCurveTables(database);
    database.run("COMMIT");
  } catch (const Error& error) {
    throw unfinished.cannotCreate(error.what());
  }
  unfinished.moveToItsPlace();
}

}  // namespace pelmora
