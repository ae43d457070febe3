// What hosts call, each beside the same work by plain prepared statements and Eigen on the same
// file, with the same transactions and the same durability.
// SPDX-License-Identifier: MIT
#include "bench/noisy_points.h"
#include "bench/plain_database.h"
#include "bench/plain_fit.h"
#include "bench/plain_report.h"
#include "tests/support/scratch_folder.h"

#include <pelmora/database.h>
#include <pelmora/platform.h>
#include <pelmora/raw_data.h>

#include <benchmark/benchmark.h>

#include <string>

namespace {

using pelmora::PointArray;
using pelmora::bench::PlainDatabase;
using pelmora::bench::plainFit;
using pelmora::bench::PlainPoints;
using pelmora::bench::require;
using pelmora::bench::sorted;
using pelmora::bench::stop;

struct CurveDatabase {
  explicit CurveDatabase(std::int64_t count)
      : points(pelmora::bench::noisyPoints(static_cast<std::size_t>(count))) {
    pelmora::createCurveDatabase(path);
    pelmora::platform().messageBox = [](const std::string& text, int, const std::string&) -> int {
      stop(text);
    };
    data.dbDirSetByString(path);
    data.BandPercent(1);
    data.NumberOfFittedPoints = 40;
    require(data.setMeterSN("M1") != 0, "setMeterSN");
    require(data.SetRaw("S", "M1", points, 0, false), "SetRaw");
  }
  PointArray fit() {
    bool isEmpty = false;
    double from = points(0, 0), to = points(points.size() - 1, 0);
    PointArray curve =
        data.determineFittedCurve("S", "M1", isEmpty, from, to, "Roshko", "Strouhal", false);
    require(!isEmpty && curve.size() == 40, "determineFittedCurve");
    return curve;
  }

  const PointArray points;
  pelmora::test::ScratchFolder folder;
  const std::string path = folder.file("curves.db");
  pelmora::RawData data;
};

void readPart(const PlainDatabase& database, const std::string& table, const std::string& id,
              PlainPoints& into) {
  sqlite3_stmt* select = database.prepare(
      ("SELECT Roshko, Strouhal FROM " + table + " WHERE seriesID = " + id).c_str());
  while (sqlite3_step(select) == SQLITE_ROW) {
    into.x.push_back(sqlite3_column_double(select, 0));
    into.y.push_back(sqlite3_column_double(select, 1));
  }
  sqlite3_finalize(select);
}

void determineFittedCurve(benchmark::State& state) {
  CurveDatabase curves(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(curves.fit().size());
}

PlainPoints readSorted(const std::string& path) {
  const PlainDatabase database(path);
  const std::string id = std::to_string(database.seriesId());
  PlainPoints points;
  for (const char* table : {"raw1", "raw2", "raw3", "raw4"}) readPart(database, table, id, points);
  return sorted(points);
}

void plain_determineFittedCurve(benchmark::State& state) {
  const CurveDatabase curves(state.range(0));
  for (auto _ : state)
    benchmark::DoNotOptimize(plainFit(readSorted(curves.path), 0.01).curve.size());
}

// Also writes the report, as the component has to.
void reporting_determineFittedCurve(benchmark::State& state) {
  const CurveDatabase curves(state.range(0));
  for (auto _ : state) {
    const PlainPoints points = readSorted(curves.path);
    benchmark::DoNotOptimize(
        pelmora::bench::reportOf("M1", "S", points, plainFit(points, 0.01)).size());
  }
}

void SetLastFitted(benchmark::State& state) {
  CurveDatabase curves(state.range(0));
  (void)curves.fit();
  for (auto _ : state) require(curves.data.SetLastFitted(false), "SetLastFitted");
}

void plain_SetLastFitted(benchmark::State& state) {
  CurveDatabase curves(state.range(0));
  const PointArray curve = curves.fit();
  const std::string report = curves.data.DataFitResultDetails;
  require(curves.data.SetLastFitted(false), "SetLastFitted");
  for (auto _ : state) {
    const PlainDatabase database(curves.path);
    const std::int64_t id = database.seriesId();
    for (const char* table : {"curve", "DataFitResults", "merge"})
      database.run((std::string("DELETE FROM ") + table + " WHERE seriesID = " + std::to_string(id))
                       .c_str());
    database.insertPoints("INSERT INTO curve (seriesID, Roshko, Strouhal) VALUES (?, ?, ?)", id,
                          curve);
    sqlite3_stmt* insert =
        database.prepare("INSERT INTO DataFitResults (seriesID, summary) VALUES (?, ?)");
    sqlite3_bind_int64(insert, 1, id);
    sqlite3_bind_text(insert, 2, report.data(), static_cast<int>(report.size()), SQLITE_STATIC);
    require(sqlite3_step(insert) == SQLITE_DONE, "insert");
    sqlite3_finalize(insert);
    database.insertPoints("INSERT INTO merge (seriesID, Roshko, Strouhal) VALUES (?, ?, ?)", id,
                          curves.points);
  }
}

void GetRaw(benchmark::State& state) {
  CurveDatabase curves(state.range(0));
  for (auto _ : state)
    require(
        curves.data.GetRaw("S", "M1", 1).Series.at(0).Raw[0].Points.size() == curves.points.size(),
        "what was read");
}

void plain_GetRaw(benchmark::State& state) {
  const CurveDatabase curves(state.range(0));
  for (auto _ : state) {
    const PlainDatabase database(curves.path);
    PlainPoints points;
    readPart(database, "raw1", std::to_string(database.seriesId()), points);
    require(points.x.size() == curves.points.size(), "what was read");
  }
}

constexpr auto sizes = [](benchmark::internal::Benchmark* bench) {
  bench->Arg(50)->Arg(500)->Arg(5000)->Arg(32000)->Unit(benchmark::kMicrosecond);
};
BENCHMARK(determineFittedCurve)->Apply(sizes);
BENCHMARK(plain_determineFittedCurve)->Apply(sizes);
BENCHMARK(reporting_determineFittedCurve)->Apply(sizes);
BENCHMARK(SetLastFitted)->Arg(50)->Unit(benchmark::kMicrosecond);
BENCHMARK(plain_SetLastFitted)->Arg(50)->Unit(benchmark::kMicrosecond);
BENCHMARK(GetRaw)->Arg(50)->Unit(benchmark::kMicrosecond);
BENCHMARK(plain_GetRaw)->Arg(50)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
