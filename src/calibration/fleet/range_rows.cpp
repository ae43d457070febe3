// SPDX-License-Identifier: MIT
#include "calibration/fleet/range_rows.h"

#include "base/text_case.h"
#include "base/word_mixer.h"
#include "calibration/curve_age.h"
#include "calibration/refit/refit_one.h"
#include "calibration/steps/fit_report.h"
#include "history/fingerprint.h"
#include "history/row_access.h"
#include "history/scope.h"
#include "store/curve_schema.h"
#include "store/curve_settings_rows.h"
#include "store/field_value.h"
#include "store/own_rows.h"
#include "store/point_rows.h"
#include "store/reading.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace pelmora::calibration {
namespace {

// Each slice needs a dozen round trips, and its rows are in memory.
constexpr std::size_t sliceSize = 250;

std::string idsWithin(const std::string& column, const IdRange& range) {
  return " where " + column + ">" + std::to_string(range.after) + " and " + column +
         "<=" + std::to_string(range.last);
}

// Reads the rows of consecutive series, table by table.
class Slice {
 public:
  Slice(const Session& session, std::vector<SeriesRows> series, const IdRange& range)
      : session_(session), range_(range), series_(std::move(series)), mixers_(series_.size()) {}

  std::vector<SeriesRows>& read() {
    readNames();
    for (std::size_t part = 0; part < rawTables.size(); ++part)
      readPoints(rawTables[part], [part](StoredSeries& s) -> PointArray& { return s.raw[part]; });
    const history::Scope results = history::fittedCurve(0, 0);
    for (const std::string& table : results.Tables) readResults(table);
    for (const char* table : excludedTables) markExcluded(table);
    for (std::size_t i = 0; i < series_.size(); ++i) finish(series_[i], mixers_[i]);
    return series_;
  }

 private:
  using Points = std::vector<std::pair<double, double>>;

  // Calls `take` with the index of the series of each row.
  template <class Take>
  void readTable(const std::string& table, const std::string& key, Take&& take) {
    ++table_;
    const auto rows = readRows(session_.connection(), "Select * from [" + table + "]" +
                                                          idsWithin("[" + key + "]", range_));
    if (rows->atEnd()) return;
    const std::size_t keyField = rows->fieldIndex(key);
    for (; !rows->atEnd(); rows->moveNext()) {
      const std::int64_t id = history::wholeOf(rows->value(keyField));
      const auto found = std::ranges::lower_bound(series_, id, {}, &SeriesRows::id);
      if (found == series_.end() || found->id != id) continue;  // rows of no series
      const auto index = static_cast<std::size_t>(found - series_.begin());
      mixers_[index].add(table_);
      for (std::size_t field = 0; field < rows->fieldCount(); ++field)
        history::mixValue(mixers_[index], rows->value(field));
      try {
        take(index, *rows);
      } catch (const Error&) {
        series_[index].isPlain = false;
      }
    }
  }

  // Renamed, moved to another meter or made anew since, it is another series.
  void readNames() {
    ++table_;
    for (std::size_t i = 0; i < series_.size(); ++i) {
      const RefitTask& task = series_[i].task;
      WordMixer& mixer = mixers_[i];
      mixer.add(std::uint64_t{static_cast<std::uint32_t>(task.meter.id)});
      mixer.add(std::uint64_t{static_cast<std::uint32_t>(task.meter.calibration)});
      for (const std::string& text : {task.meter.serial, task.meter.adjusted, task.series})
        mixer.add(std::string_view(text));
    }
  }

  template <class Select>
  void readPoints(const std::string& table, Select&& select) {
    std::vector<Points> points(series_.size());
    readTable(table, "seriesID", [&](std::size_t index, const Recordset& rows) {
      points[index].emplace_back(toDouble(rows.value("Roshko")), toDouble(rows.value("Strouhal")));
    });
    for (std::size_t i = 0; i < points.size(); ++i) {
      if (points[i].size() > static_cast<std::size_t>(mostPoints)) series_[i].isPlain = false;
      if (points[i].empty() || !series_[i].isPlain) continue;
      PointArray list(points[i].size());
      for (std::size_t k = 0; k < points[i].size(); ++k)
        std::tie(list(k, 0), list(k, 1)) = points[i][k];
      select(series_[i].stored) = std::move(list);
    }
  }

  void readResults(const std::string& table) {
    const bool areCurve = equalNames(table, "curve"), areMerged = equalNames(table, "merge");
    if (areCurve || areMerged) {
      return readPoints(table, [areCurve](StoredSeries& s) -> PointArray& {
        return areCurve ? s.curve : s.merged;
      });
    }
    if (isOwnTableName(table) && !hasOwnTable(session_.connection(), table)) return;
    readTable(table, history::keptTable(table).KeyColumn,
              [&](std::size_t index, const Recordset& rows) { takeResult(table, index, rows); });
  }

  // Of several rows the first one counts.
  void takeResult(const std::string& table, std::size_t index, const Recordset& rows) {
    StoredSeries& stored = series_[index].stored;
    series_[index].hasResults = true;
    if (table == fitSettingsTable) {
      if (!stored.settings) stored.settings = settingsInRow(rows);
    } else if (!hasReport_[index]) {
      hasReport_[index] = true;
      stored.report = toText(rows.value("summary"));
    }
  }

  void markExcluded(const char* table) {
    if (!hasOwnTable(session_.connection(), table)) return;
    readTable(table, "SeriesID",
              [&](std::size_t index, const Recordset&) { series_[index].isPlain = false; });
  }

  static void finish(SeriesRows& series, const WordMixer& mixer) {
    series.basis = mixer.state();
    const RefitTask& task = series.task;
    // Names are taken without the blanks around them; others say what is wrong with the rest.
    const auto isBlank = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
    if (task.series.empty() || isBlank(task.series.front()) || isBlank(task.series.back()) ||
        task.meter.calibration < 0 || task.meter.id == 0) {
      series.isPlain = false;
    }
    StoredSeries& stored = series.stored;
    stored.id = static_cast<std::int32_t>(series.id);
    stored.meter = task.meter;
    stored.name = task.series;
    stored.equation = steps::equationOfReport(stored.report);
    series.hasResults = series.hasResults || !stored.curve.empty() || !stored.merged.empty();
    if (series.isPlain) stored.age = ageOf(stored);
  }

  const Session& session_;
  IdRange range_;
  std::vector<SeriesRows> series_;
  std::vector<WordMixer> mixers_;
  std::vector<bool> hasReport_ = std::vector<bool>(series_.size());
  std::uint64_t table_ = 0;
};

std::vector<SeriesRows> seriesIn(const Session& session, const IdRange& range) {
  const auto rows = readRows(
      session.connection(),
      "Select TOP " + std::to_string(sliceSize) +
          " series.ID, series.name, meter.ID, meter.SerialNumber, meter.SerialNumberAdjusted, "
          "meter.ReCalID from series left join meter on meter.ID = series.meterid" +
          idsWithin("series.ID", range) + " ORDER BY series.ID");
  std::vector<SeriesRows> list;
  for (; !rows->atEnd(); rows->moveNext()) {
    SeriesRows& series = list.emplace_back();
    series.id = history::wholeOf(rows->value(0));
    series.task = {
        {toText(rows->value(3)), toText(rows->value(4)), calibrationNumber(rows->value(5)),
         static_cast<std::int32_t>(history::wholeOf(rows->value(2)))},
        toText(rows->value(1))};
  }
  return list;
}

}  // namespace

void readSeries(const Session& session, const IdRange& range,
                const std::function<bool(std::vector<SeriesRows>&)>& visit) {
  for (IdRange rest = range; rest.after < rest.last;) {
    auto moment = session.moment();
    auto slice = session.asking("reading series of '" + session.location() + "'", [&] {
      std::vector<SeriesRows> series = seriesIn(session, rest);
      if (series.empty()) return series;
      const IdRange part{rest.after, series.back().id};
      return std::move(Slice(session, std::move(series), part).read());
    });
    moment.reset();
    if (slice.empty()) return;
    rest.after = slice.back().id;
    if (!visit(slice)) return;
  }
}

}  // namespace pelmora::calibration
