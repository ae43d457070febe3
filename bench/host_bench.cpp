// What hosts call, each beside the same work by plain prepared statements and Eigen on the same
// file, with the same transactions and the same durability.
// SPDX-License-Identifier: MIT
#include "bench/eigen_design.h"
#include "bench/noisy_points.h"
#include "bench/plain_database.h"
#include "tests/support/scratch_folder.h"

#include <pelmora/database.h>
#include <pelmora/platform.h>
#include <pelmora/raw_data.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace {

using pelmora::PointArray;
using pelmora::bench::design;
using pelmora::bench::PlainDatabase;
using pelmora::bench::require;
using pelmora::bench::stop;

constexpr double lowest = 10, highest = 1500;

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

struct Points {
  std::vector<double> x, y;
};

void readPart(const PlainDatabase& database, const std::string& table, const std::string& id,
              Points& into) {
  sqlite3_stmt* select = database.prepare(
      ("SELECT Roshko, Strouhal FROM " + table + " WHERE seriesID = " + id).c_str());
  while (sqlite3_step(select) == SQLITE_ROW) {
    into.x.push_back(sqlite3_column_double(select, 0));
    into.y.push_back(sqlite3_column_double(select, 1));
  }
  sqlite3_finalize(select);
}

Points sorted(const Points& points) {
  std::vector<std::size_t> order(points.x.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::ranges::sort(order, {}, [&](std::size_t i) { return points.x[i]; });
  Points result;
  for (const std::size_t i : order) {
    result.x.push_back(points.x[i]);
    result.y.push_back(points.y[i]);
  }
  return result;
}

// The best of six equations at 40 places, with its standard errors and the band test.
Eigen::VectorXd plainFit(const Points& points) {
  const auto n = static_cast<Eigen::Index>(points.x.size());
  const Eigen::VectorXd y = Eigen::Map<const Eigen::VectorXd>(points.y.data(), n);
  std::vector<double> grid(40);
  for (std::size_t k = 0; k < grid.size(); ++k)
    grid[k] = lowest * std::pow(highest / lowest, static_cast<double>(k) / 39);
  const Eigen::MatrixXd all = design(points.x, 10), allGrid = design(grid, 10);
  const Eigen::MatrixXd other = design(points.x, 0), otherGrid = design(grid, 0);
  const double total = (y.array() - y.mean()).matrix().squaredNorm();
  double best = -1;
  Eigen::VectorXd curve;
  for (const int order : {0, 10, 9, 8, 7, 6}) {
    const auto columns = order > 0 ? all.leftCols(order + 1) : other.leftCols(9);
    const auto at = order > 0 ? allGrid.leftCols(order + 1) : otherGrid.leftCols(9);
    const Eigen::ColPivHouseholderQR<Eigen::MatrixXd> qr(columns);
    const Eigen::VectorXd parameters = qr.solve(y);
    const Eigen::Index p = columns.cols();
    Eigen::MatrixXd inverse = Eigen::MatrixXd::Identity(p, p);
    qr.matrixR().topLeftCorner(p, p).triangularView<Eigen::Upper>().solveInPlace(inverse);
    const double squares = (y - columns * parameters).squaredNorm();
    const double variance = squares / static_cast<double>(n - p);
    benchmark::DoNotOptimize((inverse.rowwise().norm() * std::sqrt(variance)).eval());
    const double adjusted = 1 - variance / (total / static_cast<double>(n - 1));
    const Eigen::VectorXd predicted = at * parameters;
    bool isInBand = true;
    for (std::size_t i = 0, k = 0; i < points.x.size(); ++i) {
      while (k + 2 < grid.size() && grid[k + 1] < points.x[i]) ++k;
      const double t = (points.x[i] - grid[k]) / (grid[k + 1] - grid[k]);
      const auto row = static_cast<Eigen::Index>(k);
      const double read = predicted[row] + t * (predicted[row + 1] - predicted[row]);
      isInBand = isInBand && std::abs(points.y[i] / read - 1) < 0.01;
    }
    if (!isInBand || adjusted <= best) continue;
    best = adjusted;
    curve = predicted;
  }
  require(curve.size() == 40, "the plain fit");
  return curve;
}

void determineFittedCurve(benchmark::State& state) {
  CurveDatabase curves(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(curves.fit().size());
}

void plain_determineFittedCurve(benchmark::State& state) {
  const CurveDatabase curves(state.range(0));
  for (auto _ : state) {
    const PlainDatabase database(curves.path);
    const std::string id = std::to_string(database.seriesId());
    Points points;
    for (const char* table : {"raw1", "raw2", "raw3", "raw4"})
      readPart(database, table, id, points);
    benchmark::DoNotOptimize(plainFit(sorted(points)).size());
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
    Points points;
    readPart(database, "raw1", std::to_string(database.seriesId()), points);
    require(points.x.size() == curves.points.size(), "what was read");
  }
}

constexpr auto sizes = [](benchmark::internal::Benchmark* bench) {
  bench->Arg(50)->Arg(500)->Arg(5000)->Arg(32000)->Unit(benchmark::kMicrosecond);
};
BENCHMARK(determineFittedCurve)->Apply(sizes);
BENCHMARK(plain_determineFittedCurve)->Apply(sizes);
BENCHMARK(SetLastFitted)->Arg(50)->Unit(benchmark::kMicrosecond);
BENCHMARK(plain_SetLastFitted)->Arg(50)->Unit(benchmark::kMicrosecond);
BENCHMARK(GetRaw)->Arg(50)->Unit(benchmark::kMicrosecond);
BENCHMARK(plain_GetRaw)->Arg(50)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
