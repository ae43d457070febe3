// SPDX-License-Identifier: MIT
#include "apps/pelmora/input/csv_points.h"

#include "apps/pelmora/input/input_file.h"
#include "apps/pelmora/input/sheet_input.h"
#include "apps/pelmora/interruption.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/trouble.h"
#include "base/text_flaw.h"

#include <algorithm>

namespace pelmora::cli {
namespace {

// The columns that a header should name.
sheets::Style styleFor(const PointColumns& wanted) {
  sheets::Style style = wanted.style;
  const auto add = [&](const std::string& name) {
    if (!strictInteger(name)) style.names.push_back(name);
  };
  if (wanted.derived) {
    style.names = namesIn(*wanted.derived);
  } else {
    add(wanted.x.empty() ? "Roshko" : wanted.x);
    add(wanted.y.empty() ? "Strouhal" : wanted.y);
  }
  for (const auto& [name, value] : wanted.where) add(name);
  return style;
}

// One reading of one file.
class PointFile {
 public:
  PointFile(const std::string& path, const PointColumns& wanted)
      : path_(path), wanted_(wanted), sheet_(readInputFile(path), styleFor(wanted)) {}

  CsvPoints points() {
    if (sheet_.columns().empty())
      throw bad("file '" + path_ + "' holds no line", "give a text file with two columns");
    chooseColumns();
    CsvPoints result;
    sheets::Row row;
    while (sheet_.next(row)) {
      requireNotInterrupted();
      if (!passesFilters(row)) continue;
      addPoint(row);
      result.lines.push_back(row.line);
    }
    if (x_.empty()) throw noPoints();
    result.points = PointArray(x_.size());
    std::copy(x_.begin(), x_.end(), result.points.column(0).begin());
    std::copy(y_.begin(), y_.end(), result.points.column(1).begin());
    result.recognised = sheet_.recognised();
    result.roshkoColumn = sheet_.columnName(derived_ ? derived_->viscosity() : xColumn_);
    if (derived_) result.derivation = derived_->words();
    if (isAssumed_) {
      result.assumption = "column '" + sheet_.columnName(xColumn_) + "' was taken as Roshko and '" +
                          sheet_.columnName(yColumn_) + "' as Strouhal; choose with --x and --y";
    }
    return result;
  }

 private:
  static Trouble bad(const std::string& what, const std::string& remedy) {
    return {ExitCode::badInput, what, remedy};
  }
  // "file 'points.csv', line 1"
  [[nodiscard]] std::string headerPlace() const {
    const std::size_t line = sheet_.recognised().headerLine;
    return "file '" + path_ + "'" + (line == 0 ? "" : ", line " + std::to_string(line));
  }
  [[nodiscard]] bool hasHeader() const { return sheet_.recognised().headerLine != 0; }

  [[nodiscard]] Trouble noPoints() const {
    if (wanted_.where.empty())
      return bad("file '" + path_ + "' holds no points", "add lines with x and y");
    return bad("file '" + path_ + "' has no line with " + wanted_.where.front().first + "=" +
                   shortened(wanted_.where.front().second),
               "check --where");
  }

  void chooseColumns() {
    for (const auto& [name, value] : wanted_.where) filters_.emplace_back(column(name), value);
    if (wanted_.derived) {
      derived_.emplace(path_, sheet_, *wanted_.derived);
      return;
    }
    const bool isNamed = !wanted_.x.empty() || !wanted_.y.empty();
    if (isNamed || (sheet_.find("Roshko") && sheet_.find("Strouhal"))) {
      xColumn_ = column(wanted_.x.empty() ? "Roshko" : wanted_.x);
      yColumn_ = column(wanted_.y.empty() ? "Strouhal" : wanted_.y);
    } else if (sheet_.columns().size() != 2) {
      throw notTwoColumns();
    } else {
      isAssumed_ = hasHeader() && !(sheet_.find("x") == 0 && sheet_.find("y") == 1);
    }
  }

  [[nodiscard]] Trouble notTwoColumns() const {
    const std::size_t count = sheet_.columns().size();
    return bad(headerPlace() + ": " + std::to_string(count) +
                   (count == 1 ? " column" : " columns") + " instead of two",
               count == 1    ? "separate the fields by commas, semicolons or tabs"
               : hasHeader() ? "choose with --x COLUMN --y COLUMN among " + listedNames()
                             : "write numbers with a decimal point, or choose with --x 1 --y 2");
  }

  [[nodiscard]] std::string listedNames() const {
    constexpr std::size_t mostNames = 12;
    const std::size_t count = sheet_.columns().size();
    std::string list;
    for (std::size_t i = 0; i < std::min(count, mostNames); ++i)
      list += (i == 0 ? "" : ", ") + sheet_.columnName(i);
    return list + (count > mostNames ? " ..." : "");
  }

  [[nodiscard]] std::size_t column(const std::string& name) const {
    if (const auto index = sheet_.find(name)) return *index;
    if (!hasHeader()) {
      throw bad(headerPlace() + ": there is no column '" + shortened(name) +
                    "', because no header names the columns",
                "give column numbers, for example --x 1 --y 2");
    }
    throw bad(headerPlace() + ": there is no column '" + shortened(name) + "'",
              "choose among " + listedNames());
  }

  [[nodiscard]] std::string place(const sheets::Row& row) const {
    return "file '" + path_ + "', line " + std::to_string(row.line);
  }

  void addPoint(const sheets::Row& row) {
    if (x_.size() == mostPoints) {
      throw bad(place(row) + ": more than " + std::to_string(mostPoints) + " points",
                "split them among raw parts 1 to 4, or thin them out");
    }
    if (derived_) {
      const calibration::DerivedPoint point = derived_->point(row);
      x_.push_back(point.roshko);
      y_.push_back(point.strouhal);
      return;
    }
    x_.push_back(sheet_.requireNumber(row, xColumn_));
    y_.push_back(sheet_.requireNumber(row, yColumn_));
    const auto refuse = [&](std::size_t column, const std::string& why) {
      throw bad(place(row) + ", column " + sheet_.columnName(column) + ": " + why,
                "correct it or leave the point out");
    };
    if (x_.back() <= 0) {
      refuse(xColumn_, "a Roshko number of " + row.fields[xColumn_] +
                           " is not possible: it is a frequency over a viscosity");
    }
    if (y_.back() == 0)
      refuse(yColumn_, "a value of 0 cannot be fitted, because residuals are relative to it");
  }

  bool passesFilters(const sheets::Row& row) const {
    return std::all_of(filters_.begin(), filters_.end(), [&](const auto& filter) {
      const std::string& field = row.fields[filter.first];
      if (field == filter.second) return true;
      const auto a = sheet_.number(field);
      const auto b =
          strictNumber(filter.second) ? strictNumber(filter.second) : sheet_.number(filter.second);
      return a && b && *a == *b;
    });
  }

  const std::string& path_;
  const PointColumns& wanted_;
  sheets::Sheet sheet_;
  std::optional<DerivedColumns> derived_;
  std::size_t xColumn_ = 0, yColumn_ = 1;
  bool isAssumed_ = false;  // the header names the columns otherwise
  std::vector<std::pair<std::size_t, std::string>> filters_;
  std::vector<double> x_, y_;
};

}  // namespace

CsvPoints readCsvPoints(const std::string& path, const PointColumns& columns) {
  try {
    return PointFile(path, columns).points();
  } catch (const sheets::SheetError& error) {
    throw sheetTrouble(path, error);
  }
}

std::pair<std::string, std::string> rowFilter(const std::string& text) {
  const std::size_t equals = text.find('=');
  if (equals != std::string::npos && equals > 0)
    return {text.substr(0, equals), text.substr(equals + 1)};
  throw Trouble(ExitCode::usage, "--where: '" + shortened(text) + "' is not allowed",
                "give COLUMN=VALUE");
}

}  // namespace pelmora::cli
