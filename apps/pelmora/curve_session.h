// One curve database, checked and open, with the component at work on it.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/options/database_option.h"
#include "apps/pelmora/equation_folder.h"
#include "apps/pelmora/lock_holder.h"
#include "apps/pelmora/message_recorder.h"
#include "apps/pelmora/options/names.h"
#include "apps/pelmora/output/progress.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"

#include <pelmora/pelmora.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::cli {

enum class Access { read, write };

// While it lives, the component's operations of this thread that open the database work on its
// connection, so that a transaction of it holds their changes too.
class CurveSession {
 public:
  // A database that is locked is waited for.
  //
  // Errors: Trouble database where the file is missing, foreign, still locked or, with
  //         Access::write, may not be written; nothing has been changed then.
  CurveSession(const DatabaseOption& curves, Access access);
  ~CurveSession();
  CurveSession(const CurveSession&) = delete;
  CurveSession& operator=(const CurveSession&) = delete;

  [[nodiscard]] RawData& data() { return data_; }
  [[nodiscard]] MessageRecorder& messages() { return messages_; }
  [[nodiscard]] Progress& progress() { return progress_; }
  [[nodiscard]] const ConnectionPtr& connection() const { return connection_; }
  // The same for operations that close and open what they are given.
  [[nodiscard]] const ConnectionPtr& sharedConnection() const { return shared_; }
  [[nodiscard]] const std::string& path() const { return curves_.path; }
  [[nodiscard]] const DatabaseOption& curves() const { return curves_; }
  // For another database that the command reads, with the same wait.
  [[nodiscard]] Patience patienceFor(const std::string& database) {
    return patienceWith(database, curves_.wait, progress_);
  }

  // Where the session's fits find their equations, one after the other.
  // Errors: Trouble unexpected where there is no room for it.
  [[nodiscard]] EquationFolder& equationFolder();

  // The calibration of a meter (-1: the latest), Source -1 where it is unknown.
  MeterInfo findMeter(const std::string& serialNumber, std::int16_t reCalID);
  // Errors: Trouble unknownName with what there is.
  MeterInfo requireMeter(const std::string& serialNumber, std::int16_t reCalID);
  // Names of a meter calibration's series, in alphabetical order.
  // Errors: Trouble badInput where they cannot be read or one has none.
  std::vector<std::string> seriesNames(const MeterInfo& meter);
  // Everything stored about a series. Errors: Trouble unknownName with the series that there are.
  MeterInfo requireSeries(const MeterInfo& meter, const std::string& seriesName);
  // The same of several series, of all where none is named, without their calibration.
  // Errors: Trouble unknownName; badInput with every series that cannot be read.
  std::vector<SeriesInfo> requireAllSeries(const MeterInfo& meter,
                                           const std::vector<std::string>& seriesNames);
  // Errors: Trouble badInput.
  std::vector<CalSetupInfo> setups(const MeterInfo& meter);
  // The id alone, without a look at the points. Errors: the same.
  std::int32_t requireSeriesID(const MeterInfo& meter, const std::string& seriesName);
  std::vector<std::string> serialNumbers();
  // The calibrations of a meter by serial number and number alone, from the latest to the first.
  // Errors: Trouble badInput.
  std::vector<MeterInfo> calibrationsOf(const std::string& serialNumber);
  // Their numbers, from the first to the latest. Errors: the same.
  std::vector<std::int16_t> calibrations(const std::string& serialNumber);

 private:
  DatabaseOption curves_;
  Progress progress_;
  MessageRecorder messages_;
  ConnectionPtr connection_, shared_;
  std::function<ConnectionPtr(const std::string&)> createBefore_;
  RawData data_;
  std::optional<EquationFolder> equationFolder_;  // from the first fit on
};

}  // namespace pelmora::cli
