// Reading many series: of the whole database by name, of one calibration with their points.
// SPDX-License-Identifier: MIT
#include "base/text_case.h"
#include "calibration/session.h"
#include "store/field_value.h"
#include "store/reading.h"
#include "store/row_visits.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>

namespace pelmora::calibration {
namespace {

int numberOf(const Value& value, const std::string& serial, const std::string& location) {
  if (isNull(value)) return 0;
  try {
    return toInt16(value);
  } catch (const Error& error) {
    throw BadData({"a calibration of meter '" + serial +
                       "' has a number that cannot be read: " + error.what(),
                   location, "examine the database"});
  }
}

// Makes calibrations of rows, of which there is one for each series.
class Calibrations {
 public:
  Calibrations(std::string location, const std::function<void(const MeterOverview&)>& visit)
      : location_(std::move(location)), visit_(visit) {}

  void add(std::span<const Value> row) {
    const std::int32_t id = toInt32(row[0]);
    if (!current_ || current_->meter.id != id) {
      end();
      const std::string serial = toText(row[1]);
      const int number = numberOf(row[3], serial, location_);
      current_ = MeterOverview{{serial, toText(row[2]), number, id}, {}};
    }
    if (isNull(row[4])) return;
    if (isNull(row[5])) throw namelessSeries(current_->meter, location_);
    current_->series.push_back(toText(row[5]));
  }
  void end() {
    if (!current_) return;
    // Cheaper here than in the database, which would run a sort of its own for each calibration.
    std::ranges::stable_sort(current_->series, [](const std::string& a, const std::string& b) {
      return compareTexts(a, b) < 0;
    });
    visit_(*current_);
  }

 private:
  std::string location_;
  const std::function<void(const MeterOverview&)>& visit_;
  std::optional<MeterOverview> current_;
};

// Series that cannot be read, for one message.
class Unreadable {
 public:
  void add(const std::string& series, const Failure& why) {
    if (text_) {
      others_.push_back(series);
      return;
    }
    text_ = FailureText{why.what(), why.where(), why.remedy()};
    number_ = why.number();
    isDamaged_ = dynamic_cast<const Damaged*>(&why) != nullptr;
  }
  void throwIfAny() {
    if (!text_) return;
    constexpr std::size_t mostNames = 20;
    for (std::size_t i = 0; i < std::min(others_.size(), mostNames); ++i)
      text_->what += (i == 0 ? "; nor can '" : ", '") + others_[i] + "'";
    if (others_.size() > mostNames)
      text_->what += " and " + std::to_string(others_.size() - mostNames) + " more";
    if (isDamaged_) throw Damaged(*text_, number_);
    throw BadData(*text_, number_);
  }

 private:
  std::optional<FailureText> text_;  // of the first
  std::int32_t number_ = 0;
  bool isDamaged_ = false;
  std::vector<std::string> others_;
};

}  // namespace

std::vector<std::string> Database::serials() const {
  return session_->asking("listing the meters of '" + location() + "'", [&] {
    std::vector<std::string> serials;
    for (const auto rows = readRows(session_->connection(),
                                    "Select DISTINCT SerialNumber from meter where SerialNumber "
                                    "IS NOT NULL ORDER BY SerialNumber");
         !rows->atEnd(); rows->moveNext())
      serials.push_back(toText(rows->value(0)));
    return serials;
  });
}

void Database::overview(const std::function<void(const MeterOverview&)>& visit,
                        OverviewOrder order) const {
  session_->asking("listing the meters of '" + location() + "'", [&] {
    Calibrations calibrations(location(), visit);
    const std::string bySerial =
        order == OverviewOrder::none ? "" : "meter.SerialNumber, meter.ReCalID DESC, ";
    visitRows(session_->connection(),
              "Select meter.ID, meter.SerialNumber, meter.SerialNumberAdjusted, meter.ReCalID, "
              "series.ID, series.name from meter LEFT JOIN series ON meter.ID = series.meterid "
              "ORDER BY " +
                  bySerial + "meter.ID",
              [&](std::span<const Value> row) { calibrations.add(row); });
    calibrations.end();
  });
}

std::vector<StoredSeries> Database::everySeries(const Meter& meter,
                                                const std::vector<std::string>& names) const {
  std::vector<std::string> wanted = names;
  if (names.empty()) {
    wanted = seriesOf(meter);
    std::ranges::sort(wanted, [](const auto& a, const auto& b) { return compareTexts(a, b) < 0; });
  }
  std::vector<StoredSeries> list;
  Unreadable unreadable;
  for (const std::string& name : wanted) {
    try {
      list.push_back(series(meter, name));
    } catch (const BadData& failure) {
      unreadable.add(name, failure);
    } catch (const Damaged& failure) {
      unreadable.add(name, failure);
    }
  }
  unreadable.throwIfAny();
  return list;
}

}  // namespace pelmora::calibration
