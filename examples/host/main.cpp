// Stores a series of measured points, fits it and prints the stored curve: host CURVES.db
// POINTS.csv SPDX-License-Identifier: MIT
#include <pelmora/pelmora.h>

#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

const std::string meter = "TF-1001";
const std::string series = "Rotor A";

// One header line, then Roshko,Strouhal.
pelmora::PointArray readPoints(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path);
  std::string header;
  std::getline(file, header);
  std::vector<std::pair<double, double>> pairs;
  double roshko = 0;
  double strouhal = 0;
  for (char comma = 0; file >> roshko >> comma >> strouhal;) pairs.emplace_back(roshko, strouhal);

  pelmora::PointArray points(pairs.size());
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    points(i, 0) = pairs[i].first;
    points(i, 1) = pairs[i].second;
  }
  return points;
}

// The range of x that the points cover.
std::pair<double, double> rangeOf(const pelmora::PointArray& points) {
  double low = points(0, 0);
  double high = low;
  for (const double x : points.column(0)) {
    if (x < low) low = x;
    if (x > high) high = x;
  }
  return {low, high};
}

int calibrate(const std::string& database, const std::string& csv) {
  if (!std::filesystem::exists(database)) pelmora::createCurveDatabase(database);

  pelmora::RawData data;
  data.dbDirSetByString(database);  // after creation: creating an object resets the location
  data.BandPercent(1.0F);           // every point within 1 % of the curve
  data.StatusUpdate = [](const std::string& text) { std::printf("  %s\n", text.c_str()); };
  data.FittingProgress = [](std::int16_t step, std::int16_t steps) {
    std::printf("  equation %d of %d\n", step, steps);
  };

  // Operations show their errors in a message box; their results say whether they did their work.
  const std::int32_t id = data.setMeterSN(meter);
  if (id == 0) return 1;

  // Raw parts are counted from 0 when they are written.
  const pelmora::PointArray points = readPoints(csv);
  if (points.empty() || !data.SetRaw(series, meter, points, 0, false)) return 1;

  bool isEmpty = true;
  auto [low, high] = rangeOf(points);
  data.determineFittedCurve(series, meter, isEmpty, low, high, "Roshko", "Strouhal", false);
  if (isEmpty) {
    std::printf("No equation fits the points:\n%s\n", data.DataFitResultDetails.c_str());
    return 1;
  }
  if (!data.SetLastFitted(false)) return 1;

  const pelmora::MeterInfo stored = data.getFittedCurve(series, meter, {}, -1, true);
  if (stored.Series.empty()) return 1;
  const pelmora::FixedCurve40& curve = stored.Series.front().RoshkoFirst;
  std::printf("Meter %s, calibration %d, series %s\n", meter.c_str(), stored.ReCalID,
              series.c_str());
  for (std::size_t i = 0; i < curve.first.size(); ++i) {
    std::printf("%12g %12g\n", static_cast<double>(curve.first[i]),
                static_cast<double>(curve.second[i]));
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: host CURVES.db POINTS.csv\n");
    return 2;
  }
  try {
    return calibrate(argv[1], argv[2]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
