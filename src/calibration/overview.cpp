// Reading many series: of the whole database by name, of one calibration with their points.
// SPDX-License-Identifier: MIT
#include "base/text_case.h"
#include "calibration/session.h"
#include "store/field_value.h"
#include "store/name_text.h"
#include "store/reading.h"

#include <algorithm>
#include <optional>

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

// The calibrations of some serial numbers, a row for each series.
void visitRows(Recordset& rows, const std::string& location,
               const std::function<void(const MeterOverview&)>& visit) {
  std::optional<MeterOverview> current;
  for (; !rows.atEnd(); rows.moveNext()) {
    const std::int32_t id = toInt32(rows.value(0));
    if (!current || current->meter.id != id) {
      if (current) visit(*current);
      const std::string serial = toText(rows.value(1));
      const int number = numberOf(rows.value(3), serial, location);
      current = MeterOverview{{serial, toText(rows.value(2)), number, id}, {}};
    }
    if (isNull(rows.value(4))) continue;
    const Value& name = rows.value(5);
    if (isNull(name)) throw namelessSeries(current->meter, location);
    current->series.push_back(toText(name));
  }
  if (current) visit(*current);
}

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

void Database::overview(const std::function<void(const MeterOverview&)>& visit) const {
  const auto moment = session_->moment();
  session_->asking("listing the meters of '" + location() + "'", [&] {
    Connection& connection = session_->connection();
    const auto visitWhere = [&](const std::string& condition) {
      visitRows(
          *readRows(connection,
                    "Select meter.ID, meter.SerialNumber, meter.SerialNumberAdjusted, "
                    "meter.ReCalID, series.ID, series.name from meter LEFT JOIN series ON "
                    "meter.ID = series.meterid where " +
                        condition +
                        " ORDER BY meter.SerialNumber, meter.ReCalID DESC, meter.ID, series.name"),
          location(), visit);
    };
    visitWhere("meter.SerialNumber IS NULL");
    for (std::string beyond = "SerialNumber IS NOT NULL";;) {
      const auto serials = readRows(connection, "Select TOP 4000 SerialNumber from meter where " +
                                                    beyond + " ORDER BY SerialNumber");
      if (serials->atEnd()) return;
      for (std::int32_t left = serials->recordCount() - 1; left > 0; --left) serials->moveNext();
      const std::string last = toText(serials->value(0));
      const std::string literal = NameText::quoted(last).literal();
      visitWhere("meter." + beyond + " AND meter.SerialNumber <= " + literal);
      beyond = "SerialNumber > " + literal;
    }
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
