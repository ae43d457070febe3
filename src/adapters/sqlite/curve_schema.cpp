// The tables of a curve database, and how a new one comes to be.
// SPDX-License-Identifier: MIT
#include "adapters/sqlite/database_handle.h"
#include "adapters/sqlite/sqlite_database.h"
#include "adapters/sqlite/sqlite_file.h"
#include "base/file_text.h"
#include "base/run_time_error.h"

#include <chrono>
#include <filesystem>
#include <random>
#include <string>
#include <system_error>

namespace pelmora {

namespace {

namespace fs = std::filesystem;

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

// A file that goes away unless it has been moved to its place.
class UnfinishedFile {
 public:
  explicit UnfinishedFile(const fs::path& finished) : finished_(finished), path_(finished) {
    const auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
    path_ += ".new-" + std::to_string(std::random_device()() ^ static_cast<unsigned>(ticks));
  }
  ~UnfinishedFile() {
    std::error_code ignored;
    fs::remove(path_, ignored);
    fs::remove(path_.native() + fs::path("-journal").native(), ignored);
  }
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;

  [[nodiscard]] const fs::path& path() const { return path_; }

  // Never overwrites: a hard link fails where the name is taken. A file system without links is
  // asked first instead.
  [[nodiscard]] std::error_code moveToItsPlace() const {
    std::error_code code;
    fs::create_hard_link(path_, finished_, code);
    if (!code || code == std::errc::file_exists) return code;
    if (fs::exists(fs::symlink_status(finished_, code)))
      return std::make_error_code(std::errc::file_exists);
    fs::rename(path_, finished_, code);
    return code;
  }

 private:
  fs::path finished_;
  fs::path path_;
};

Error existsAlready(const std::string& path) {
  return {static_cast<std::int32_t>(RunTimeError::fileExists), "Pelmora",
          "'" + path + "' exists already; name a file that does not exist yet."};
}

Error cannotCreate(const std::string& path, const std::string& why) {
  return {static_cast<std::int32_t>(RunTimeError::pathAccess), "Pelmora",
          "Could not create '" + path + "': " + why};
}

}  // namespace

void createSqliteCurveDatabase(const std::string& path) {
  if (path.empty() || path.find('\0') != std::string::npos) {
    throw cannotCreate(path, "it is no file name. Name the file to create.");
  }
  std::error_code code;
  const fs::path finished = fs::absolute(filePath(path), code);
  if (fs::exists(fs::symlink_status(finished, code))) throw existsAlready(path);
  if (!finished.has_filename() || !fs::is_directory(finished.parent_path(), code)) {
    throw cannotCreate(path, "its folder does not exist. Create the folder first.");
  }
  const UnfinishedFile unfinished(finished);
  try {
    const sqlite::DatabaseHandle database(utf8Text(unfinished.path()), sqlite::OpenMode::create);
    database.run(("BEGIN;" + std::string(identity) + schema() + "COMMIT;").c_str());
  } catch (const Error& error) {
    throw cannotCreate(path, std::string(error.what()));
  }
  code = unfinished.moveToItsPlace();
  if (code == std::errc::file_exists) throw existsAlready(path);
  if (code) throw cannotCreate(path, code.message() + ". Check the folder's permissions.");
}

}  // namespace pelmora
