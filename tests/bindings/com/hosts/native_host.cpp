// Does the main job through the C++ interface of this machine's own build: native_host CURVES.db
// SPDX-License-Identifier: MIT
#include "tests/bindings/com/hosts/main_job.h"

#include <pelmora/pelmora.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>

namespace {

pelmora::test::Points pairsOf(const pelmora::PointArray& points) {
  pelmora::test::Points pairs;
  for (std::size_t i = 0; i < points.size(); ++i) pairs.emplace_back(points(i, 0), points(i, 1));
  return pairs;
}

pelmora::test::MainJobResult doMainJob(const std::string& database) {
  using namespace pelmora::test;
  MainJobResult result;
  pelmora::RawData data;
  data.StatusUpdate = [&](const std::string&) { ++result.statusUpdates; };
  data.FittingProgress = [&](std::int16_t finishedStep, std::int16_t maxSteps) {
    ++result.progressSteps;
    result.lastStep = finishedStep;
    result.maxSteps = maxSteps;
  };
  data.dbDirSetByString(database);
  data.Unattended = true;
  data.BandPercent(1.0F);
  result.id = data.setMeterSN(mainJobMeter);
  const Points raw = mainJobPoints();
  pelmora::PointArray table(raw.size());
  for (std::size_t i = 0; i < raw.size(); ++i) {
    table(i, 0) = raw[i].first;
    table(i, 1) = raw[i].second;
  }
  result.isStored = data.SetRaw(mainJobSeries, mainJobMeter, table, 0, false);
  result.low = 12;
  result.high = 1000;
  result.fitted =
      pairsOf(data.determineFittedCurve(mainJobSeries, mainJobMeter, result.isEmpty, result.low,
                                        result.high, "Roshko", "Strouhal", false));
  result.merged = pairsOf(data.LastMergedArray());
  result.report = data.DataFitResultDetails;
  result.isFitStored = data.SetLastFitted(false);
  const pelmora::MeterInfo all = data.GetAllInfo(mainJobSeries, mainJobMeter);
  result.readBack = pairsOf(all.Series.at(0).Fitted);
  result.storedReport = all.Series.at(0).Summary;
  const pelmora::MeterInfo compact = data.getFittedCurve(mainJobSeries, mainJobMeter, {}, -1, true);
  result.roshko = compact.Series.at(0).RoshkoFirst.first;
  result.strouhal = compact.Series.at(0).RoshkoFirst.second;
  bool isEmpty = true;
  result.meters = data.Meters(isEmpty);
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  std::filesystem::remove(argv[1]);
  pelmora::createCurveDatabase(argv[1]);
  std::fputs(textOf(doMainJob(argv[1])).c_str(), stdout);
  return 0;
}
