// Raw series and imports against plain prepared statements on the same schema with the same
// durability. SPDX-License-Identifier: MIT
#include "bench/plain_database.h"
#include "bench/plain_import.h"
#include "tests/support/scratch_folder.h"

#include <pelmora/calibration.h>
#include <pelmora/database.h>
#include <pelmora/platform.h>
#include <pelmora/raw_data.h>

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <fstream>
#include <string>

namespace {

using pelmora::PointArray;
using pelmora::bench::PlainDatabase;
using pelmora::bench::require;
using pelmora::bench::stop;

constexpr std::size_t pointCount = 32000;

PointArray somePoints() {
  PointArray points(pointCount);
  for (std::size_t i = 0; i < points.size(); ++i) {
    points(i, 0) = 0.37 * static_cast<double>(i);
    points(i, 1) = 1200 + 1 / (1.0 + static_cast<double>(i));
  }
  return points;
}

// A curve database with the meter M1. Every error box ends the run: a failing operation would be a
// fast one.
struct EmptyDatabase {
  EmptyDatabase() {
    pelmora::createCurveDatabase(path);
    pelmora::platform().messageBox = [](const std::string& text, int, const std::string&) -> int {
      stop(text);
    };
    data.dbDirSetByString(path);
    require(data.setMeterSN("M1") != 0, "setMeterSN");
  }

  pelmora::test::ScratchFolder folder;
  const std::string path = folder.file("curves.db");
  pelmora::RawData data;
};

// And its series S of 32,000 points in raw1.
struct CurveDatabase : EmptyDatabase {
  CurveDatabase() { require(data.SetRaw("S", "M1", points, 0, false), "SetRaw"); }

  const PointArray points = somePoints();
};

// The same by hand: one connection, prepared statements, the two transactions that SetRaw has.
void plainWrite(const std::string& path, const PointArray& points) {
  const PlainDatabase database(path);
  const std::int64_t id = database.seriesId();
  database.run(("DELETE FROM raw1 WHERE seriesID = " + std::to_string(id)).c_str());
  database.insertPoints("INSERT INTO raw1 (seriesID, Roshko, Strouhal) VALUES (?, ?, ?)", id,
                        points);
}

PointArray plainRead(const std::string& path) {
  const PlainDatabase database(path);
  const std::string id = std::to_string(database.seriesId());
  sqlite3_stmt* count =
      database.prepare(("SELECT COUNT(*) FROM raw1 WHERE seriesID = " + id).c_str());
  require(sqlite3_step(count) == SQLITE_ROW, "count");
  PointArray points(static_cast<std::size_t>(sqlite3_column_int64(count, 0)));
  sqlite3_finalize(count);
  sqlite3_stmt* select =
      database.prepare(("SELECT Roshko, Strouhal FROM raw1 WHERE seriesID = " + id).c_str());
  for (std::size_t i = 0; sqlite3_step(select) == SQLITE_ROW; ++i) {
    points(i, 0) = sqlite3_column_double(select, 0);
    points(i, 1) = sqlite3_column_double(select, 1);
  }
  sqlite3_finalize(select);
  return points;
}

void SetRaw(benchmark::State& state) {
  CurveDatabase curves;
  for (auto _ : state) {
    require(curves.data.SetRaw("S", "M1", curves.points, 0, false), "SetRaw");
  }
}

void plain_SetRaw(benchmark::State& state) {
  const CurveDatabase curves;
  for (auto _ : state) plainWrite(curves.path, curves.points);
  require(plainRead(curves.path) == curves.points, "what was written");
}

void GetRaw(benchmark::State& state) {
  CurveDatabase curves;
  for (auto _ : state) {
    const pelmora::MeterInfo record = curves.data.GetRaw("S", "M1", 1);
    require(record.Series.at(0).Raw[0].Points == curves.points, "what was read");
  }
}

void plain_GetRaw(benchmark::State& state) {
  const CurveDatabase curves;
  for (auto _ : state) require(plainRead(curves.path) == curves.points, "what was read");
}

// A stand's export with one job of so many points.
std::string standWith(const pelmora::test::ScratchFolder& folder, std::int64_t points) {
  std::ofstream file(folder.file("stand.csv"));
  file << "JobRecordID";
  for (int i = 1; i <= 37; ++i) file << ",V" << i;
  for (std::int64_t point = 0; point < points; ++point) {
    file << "\n1001";
    for (int i = 1; i <= 37; ++i) file << ',' << 0.5 * i + 0.01 * static_cast<double>(point);
  }
  file << '\n';
  return folder.file("stand.csv");
}

// One job into the curve database and its four series out of it.
void importCaldb(benchmark::State& state) {
  EmptyDatabase curves;
  const std::string stand = standWith(curves.folder, state.range(0));
  for (auto _ : state) {
    const pelmora::MeterInfo meter =
        curves.data.importCaldb("M1", pelmora::openDatabase(stand), {"1001"}, {""}, {"Oil"},
                                {"Ada"}, true, true, true, true);
    require(meter.Series.size() == 4 && meter.Series[3].SeriesID != 0, "import");
  }
}

// The same by the service, in one transaction, with the history of what it replaces.
void importRuns(benchmark::State& state) {
  const EmptyDatabase curves;
  const std::string stand = standWith(curves.folder, state.range(0));
  namespace cal = pelmora::calibration;
  for (auto _ : state) {
    cal::Database lab = cal::open(curves.path);
    const cal::Imported imported =
        lab.importRuns(lab.meter("M1"), cal::Stand(stand), {{"1001", "Oil", "Ada"}});
    require(imported.series.size() == 4, "import");
  }
}

// One transaction; nothing of what it replaces is kept.
void plainImports(benchmark::State& state) {
  const EmptyDatabase curves;
  const std::string stand = standWith(curves.folder, state.range(0));
  for (auto _ : state) pelmora::bench::plainImport(curves.path, stand);
}
void plain_importCaldb(benchmark::State& state) { plainImports(state); }
void plain_importRuns(benchmark::State& state) { plainImports(state); }

BENCHMARK(SetRaw)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(plain_SetRaw)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(GetRaw)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(plain_GetRaw)->Unit(benchmark::kMillisecond)->UseRealTime();
constexpr auto sizes = [](benchmark::internal::Benchmark* bench) {
  bench->Arg(24)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();
};
BENCHMARK(importCaldb)->Apply(sizes);
BENCHMARK(plain_importCaldb)->Apply(sizes);
BENCHMARK(importRuns)->Apply(sizes);
BENCHMARK(plain_importRuns)->Apply(sizes);

}  // namespace

BENCHMARK_MAIN();
