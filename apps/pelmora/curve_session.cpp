// SPDX-License-Identifier: MIT
#include "apps/pelmora/curve_session.h"

#include "apps/pelmora/interruption.h"
#include "apps/pelmora/suggestion.h"
#include "apps/pelmora/unreadable_series.h"
#include "history/shared_connection.h"

#include <algorithm>
#include <utility>

namespace pelmora::cli {
namespace {

ConnectionPtr openCurves(const DatabaseOption& curves, Access access, Progress& progress) {
  const std::string& path = curves.path;
  ConnectionPtr connection;
  try {
    connection = openDatabase(path, patienceWith(path, curves.wait, progress));
  } catch (const Error& error) {
    throw databaseTrouble("the curve database cannot be opened", error);
  }
  try {
    requireCurveTables(connection);
  } catch (const Error& error) {
    requireMemory(error);
    throw Trouble(ExitCode::database,
                  "'" + path + "' cannot be used as a curve database: " + error.what(),
                  "name a curve database, or make one with 'pelmora init FILE'");
  }
  if (access == Access::read) return connection;
  try {
    requireWritable(connection);
  } catch (const Error& error) {
    requireMemory(error);
    throw Trouble(
        ExitCode::database, "'" + path + "' cannot be written now: " + error.what(),
        "nothing was changed; try again when other programs have finished with it, or give them "
        "longer with --wait SECONDS");
  }
  return connection;
}

}  // namespace

CurveSession::CurveSession(const DatabaseOption& curves, Access access)
    : curves_(curves),
      connection_(openCurves(curves, access, progress_)),
      shared_(history::sharedConnection(connection_)),
      createBefore_(platform().createConnection) {
  platform().createConnection = [shared = shared_](const std::string&) { return shared; };
  progress_.endWait();
  data_.dbDirSetByString(curves.path);
  data_.StatusUpdate = [this](const std::string& text) {
    requireNotInterrupted();
    progress_.show(text);
  };
}

EquationFolder& CurveSession::equationFolder() {
  if (!equationFolder_) equationFolder_.emplace();
  return *equationFolder_;
}

CurveSession::~CurveSession() { platform().createConnection.swap(createBefore_); }

MeterInfo CurveSession::findMeter(const std::string& serialNumber, std::int16_t reCalID) {
  requireName("--meter", serialNumber);
  messages_.forget();
  MeterInfo meter = data_.findMeterInfo(serialNumber, connection_, reCalID);
  messages_.throwIfAny(ExitCode::badInput, "looking up meter '" + serialNumber + "'", lookForCause);
  return meter;
}

MeterInfo CurveSession::requireMeter(const std::string& serialNumber, std::int16_t reCalID) {
  MeterInfo meter = findMeter(serialNumber, reCalID);
  if (meter.Source == 1) return meter;
  const std::string where = "in '" + path() + "'";
  if (reCalID >= 0 && findMeter(serialNumber, -1).Source == 1) {
    throw Trouble(
        ExitCode::unknownName,
        "meter '" + serialNumber + "' has no calibration " + std::to_string(reCalID) + " " + where,
        "list its calibrations with 'pelmora show'");
  }
  const auto known = serialNumbers();
  throw Trouble(
      ExitCode::unknownName, "there is no meter '" + serialNumber + "' " + where,
      known.empty() ? "no meter is stored yet: import one first" : suggestion(serialNumber, known));
}

std::vector<std::string> CurveSession::serialNumbers() {
  bool isEmpty = true;
  messages_.forget();
  auto names = data_.Meters(isEmpty);
  messages_.throwIfAny(ExitCode::badInput, "listing the meters", lookForCause);
  return isEmpty ? std::vector<std::string>() : names;
}

std::vector<MeterInfo> CurveSession::calibrationsOf(const std::string& serialNumber) {
  bool isEmpty = true;
  std::vector<std::int16_t> numbers;
  messages_.forget();
  const auto adjusted = data_.MetersAdjusted(serialNumber, isEmpty, numbers);
  messages_.throwIfAny(ExitCode::badInput,
                       "listing the calibrations of meter '" + serialNumber + "'", lookForCause);
  std::vector<MeterInfo> list;
  for (std::size_t i = 0; !isEmpty && i < adjusted.size(); ++i) {
    MeterInfo& meter = list.emplace_back();
    meter.SerialNumber = serialNumber;
    meter.SerialNumberAdjusted = adjusted[i];
    meter.ReCalID = numbers[i];
  }
  return list;
}

std::vector<std::int16_t> CurveSession::calibrations(const std::string& serialNumber) {
  std::vector<std::int16_t> numbers;
  for (const MeterInfo& meter : calibrationsOf(serialNumber)) numbers.push_back(meter.ReCalID);
  std::ranges::sort(numbers);
  return numbers;
}

std::vector<std::string> CurveSession::seriesNames(const MeterInfo& meter) {
  messages_.forget();
  const ValueTable table = data_.Series(meter.SerialNumber, meter.ReCalID);
  messages_.throwIfAny(ExitCode::badInput,
                       "listing the series of meter '" + meter.SerialNumber + "'", lookForCause);
  std::vector<std::string> names;
  for (std::size_t row = 0; row < table.rows(); ++row) {
    const auto* name = std::get_if<std::string>(&table(1, row));
    if (name == nullptr) {
      throw Trouble(ExitCode::badInput,
                    "a series of meter '" + meter.SerialNumber + "', calibration " +
                        std::to_string(meter.ReCalID) + ", has no name that is a text",
                    lookForCause);
    }
    names.push_back(*name);
  }
  return names;
}

std::int32_t CurveSession::requireSeriesID(const MeterInfo& meter, const std::string& seriesName) {
  requireName("--series", seriesName);
  messages_.forget();
  const MeterInfo found =
      data_.findMeterInfo(meter.SerialNumber, connection_, meter.ReCalID, seriesName);
  messages_.throwIfAny(ExitCode::badInput, "looking up series '" + seriesName + "'", lookForCause);
  if (found.Source != 1 || found.Series.empty()) {
    const auto known = seriesNames(meter);
    throw Trouble(
        ExitCode::unknownName,
        "meter '" + meter.SerialNumber + "' has no series '" + seriesName + "' in '" + path() + "'",
        known.empty() ? "it has no series yet: import or bring points first"
                      : suggestion(seriesName, known));
  }
  return found.Series.front().SeriesID;
}

MeterInfo CurveSession::requireSeries(const MeterInfo& meter, const std::string& seriesName) {
  requireName("--series", seriesName);
  messages_.forget();
  MeterInfo everything =
      data_.GetAllInfo(seriesName, meter.SerialNumber, connection_, meter.ReCalID);
  messages_.throwIfAny(
      ExitCode::badInput,
      "series '" + seriesName + "' of meter '" + meter.SerialNumber + "' cannot be read",
      std::string(lookForCause) +
          "; a raw part holds at most 32767 points, none of them empty or a text");
  if (everything.Series.empty()) (void)requireSeriesID(meter, seriesName);  // tells what there is
  return everything;
}

std::vector<SeriesInfo> CurveSession::requireAllSeries(
    const MeterInfo& meter, const std::vector<std::string>& seriesNames) {
  std::vector<SeriesInfo> list;
  UnreadableSeries unreadable;
  for (const std::string& name : seriesNames.empty() ? this->seriesNames(meter) : seriesNames) {
    try {
      list.push_back(std::move(requireSeries(meter, name).Series.front()));
    } catch (const Trouble& trouble) {
      if (trouble.code() != ExitCode::badInput) throw;
      unreadable.add("'" + name + "'", trouble);
    }
  }
  unreadable.throwIfAny();
  return list;
}

std::vector<CalSetupInfo> CurveSession::setups(const MeterInfo& meter) {
  try {
    return calSetups(connection_, meter.MeterID);
  } catch (const Error& error) {
    throw Trouble(ExitCode::badInput,
                  "the runs of meter '" + meter.SerialNumber + "', calibration " +
                      std::to_string(meter.ReCalID) + ", cannot be read: " + error.what(),
                  lookForCause);
  }
}

}  // namespace pelmora::cli
