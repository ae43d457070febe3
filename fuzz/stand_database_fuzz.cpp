// An import from a damaged stand database succeeds or ends with one of the service's failures;
// either way, a change that is not committed leaves nothing behind.
// SPDX-License-Identifier: MIT
#include "fuzz/damage.h"
#include "fuzz/scratch_file.h"

#include <pelmora/calibration.h>
#include <sqlite3.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

namespace cal = pelmora::calibration;

std::string wholeStand(const std::string& path) {
  sqlite3* stand = nullptr;
  std::string sql = "CREATE TABLE DataPoint (JobRecordID INTEGER, PointNumber INTEGER";
  for (int i = 1; i <= 37; ++i) sql += ", V" + std::to_string(i) + " REAL";
  sql += ");";
  for (int job = 1001; job <= 1002; ++job) {
    for (int point = 1; point <= 12; ++point) {
      sql += "INSERT INTO DataPoint VALUES(" + std::to_string(job) + "," + std::to_string(point);
      for (int i = 1; i <= 37; ++i) sql += "," + std::to_string(10 * point + i + job % 7);
      sql += ");";
    }
  }
  if (sqlite3_open(path.c_str(), &stand) != SQLITE_OK) std::abort();
  if (sqlite3_exec(stand, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) std::abort();
  sqlite3_close(stand);
  return pelmora::fuzz::readFile(path);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const pelmora::fuzz::ScratchFolder folder;
  static const std::string path = folder.file("stand.db");
  static const std::string whole = wholeStand(path);
  static cal::Database lab = cal::create(folder.file("curves.db"));
  static const cal::Meter meter = lab.registerMeter("M1");
  pelmora::fuzz::writeFile(path, pelmora::fuzz::damaged(whole, data, size));
  try {
    const cal::Change undone = lab.begin("import");
    const cal::Stand stand(path, {});
    lab.importRuns(meter, stand, {{"1001", "Oil"}, {"1002", "Glycol"}});
  } catch (const cal::Failure& failure) {
    if (std::string(failure.what()).empty()) __builtin_trap();
  }
  if (!lab.seriesOf(meter).empty()) __builtin_trap();  // undone, however it ended
  for (const char* left : {"-journal", "-wal", "-shm"}) std::remove((path + left).c_str());
  return 0;
}
