// SPDX-License-Identifier: MIT
#include "apps/pelmora/input/csv_points.h"

#include "apps/pelmora/input/input_file.h"
#include "apps/pelmora/interruption.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/trouble.h"
#include "base/csv_reader.h"
#include "base/text_flaw.h"

#include <algorithm>
#include <cctype>

namespace pelmora::cli {
namespace {

using Fields = std::vector<std::string>;

bool sameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](unsigned char p, unsigned char q) {
    return std::tolower(p) == std::tolower(q);
  });
}

std::optional<std::size_t> indexOf(const Fields& header, const std::string& name) {
  const auto exact = std::find(header.begin(), header.end(), name);
  const auto found =
      exact != header.end()
          ? exact
          : std::find_if(header.begin(), header.end(),
                         [&](const std::string& field) { return sameName(field, name); });
  if (found != header.end()) return static_cast<std::size_t>(found - header.begin());
  const auto number = strictInteger(name);
  if (number && *number >= 1 && static_cast<std::size_t>(*number) <= header.size()) {
    return static_cast<std::size_t>(*number - 1);
  }
  return std::nullopt;
}

// One reading of one file.
class PointFile {
 public:
  PointFile(const std::string& path, std::string_view text, const PointColumns& wanted)
      : path_(path), wanted_(wanted), lines_(text) {}

  PointArray points() {
    auto fields = next();
    if (!fields)
      throw bad("file '" + path_ + "' holds no line", "give a CSV file with two columns");
    chooseColumns(*fields);
    if (hasHeader_) fields = next();
    for (; fields; fields = next()) {
      requireNotInterrupted();
      addPoint(*fields);
    }
    if (x_.empty()) throw noPoints();
    PointArray points(x_.size());
    std::copy(x_.begin(), x_.end(), points.column(0).begin());
    std::copy(y_.begin(), y_.end(), points.column(1).begin());
    return points;
  }

 private:
  static Trouble bad(const std::string& what, const std::string& remedy) {
    return {ExitCode::badInput, what, remedy};
  }
  [[nodiscard]] std::string place() const {
    return "file '" + path_ + "', line " + std::to_string(lines_.line());
  }
  [[nodiscard]] Trouble noPoints() const {
    if (wanted_.where.empty())
      return bad("file '" + path_ + "' holds no points", "add lines with x,y");
    return bad("file '" + path_ + "' has no line with " + wanted_.where.front().first + "=" +
                   shortened(wanted_.where.front().second),
               "check --where");
  }

  std::optional<Fields> next() {
    try {
      if (!lines_.next(record_)) return std::nullopt;
    } catch (const CsvError& error) {
      throw bad("file '" + path_ + "', " + error.place() + ": " + error.problem(), error.remedy());
    }
    Fields fields;
    for (CsvField& field : record_) fields.push_back(std::move(field.text));
    return fields;
  }

  void chooseColumns(const Fields& first) {
    names_ = first;
    const bool byNumber = strictInteger(wanted_.x) && strictInteger(wanted_.y);
    if (!wanted_.x.empty() || !wanted_.y.empty()) {
      xColumn_ = column(wanted_.x.empty() ? "Roshko" : wanted_.x);
      yColumn_ = column(wanted_.y.empty() ? "Strouhal" : wanted_.y);
    } else if (indexOf(first, "Roshko") && indexOf(first, "Strouhal")) {
      xColumn_ = column("Roshko");
      yColumn_ = column("Strouhal");
    } else if (first.size() != 2) {
      throw notTwoColumns(first);
    }
    const bool numbers = strictNumber(first[xColumn_]) || strictNumber(first[yColumn_]);
    hasHeader_ = !numbers;
    if (numbers && !byNumber && first.size() != 2) throw noHeader();
    for (const auto& [name, value] : wanted_.where) filters_.emplace_back(column(name), value);
  }

  [[nodiscard]] Trouble noHeader() const {
    return bad(place() + ": there is no header, so columns have no names",
               "give column numbers, for example --x 1 --y 2");
  }

  [[nodiscard]] Trouble notTwoColumns(const Fields& first) const {
    const bool semicolons = first.size() == 1 && first[0].find(';') != std::string::npos;
    if (semicolons) {
      return bad(place() + ": fields are separated by semicolons",
                 "separate them by commas and write decimals with a point");
    }
    const bool numbers = strictNumber(first[0]).has_value();
    return bad(place() + ": " + std::to_string(first.size()) +
                   (first.size() == 1 ? " column" : " columns") + " instead of two",
               numbers ? "write numbers with a decimal point, or choose with --x 1 --y 2"
                       : "choose with --x COLUMN --y COLUMN among " + listed(first));
  }

  static std::string listed(const Fields& names) {
    constexpr std::size_t mostNames = 12;
    std::string list;
    for (std::size_t i = 0; i < std::min(names.size(), mostNames); ++i)
      list += (i == 0 ? "" : ", ") + shortened(names[i]);
    return list + (names.size() > mostNames ? " ..." : "");
  }

  std::size_t column(const std::string& name) const {
    if (const auto index = indexOf(names_, name)) return *index;
    throw bad(place() + ": there is no column '" + shortened(name) + "'",
              "choose among " + listed(names_));
  }

  void addPoint(const Fields& fields) {
    if (fields.size() != names_.size()) {
      throw bad(place() + ": " + std::to_string(fields.size()) + " fields instead of " +
                    std::to_string(names_.size()),
                "write one field for each column, and numbers with a decimal point");
    }
    if (!passesFilters(fields)) return;
    if (x_.size() == mostPoints) {
      throw bad(place() + ": more than " + std::to_string(mostPoints) + " points",
                "split them among raw parts 1 to 4, or thin them out");
    }
    x_.push_back(number(fields, xColumn_));
    y_.push_back(number(fields, yColumn_));
    if (y_.back() == 0) {
      throw bad(place() + ", column " + columnText(yColumn_) +
                    ": a value of 0 cannot be fitted, because residuals are relative to it",
                "leave the point out");
    }
  }

  bool passesFilters(const Fields& fields) const {
    return std::all_of(filters_.begin(), filters_.end(), [&](const auto& filter) {
      const std::string& field = fields[filter.first];
      if (field == filter.second) return true;
      const auto a = strictNumber(field), b = strictNumber(filter.second);
      return a && b && *a == *b;
    });
  }

  double number(const Fields& fields, std::size_t column) const {
    if (const auto value = strictNumber(fields[column])) return *value;
    throw bad(place() + ", column " + columnText(column) + ": " + notANumber(fields[column]),
              "write a number such as 12.5");
  }

  [[nodiscard]] std::string columnText(std::size_t column) const {
    return hasHeader_ ? shortened(names_[column]) : std::to_string(column + 1);
  }

  const std::string& path_;
  const PointColumns& wanted_;
  CsvReader lines_;
  std::vector<CsvField> record_;
  Fields names_;
  bool hasHeader_ = true;
  std::size_t xColumn_ = 0, yColumn_ = 1;
  std::vector<std::pair<std::size_t, std::string>> filters_;
  std::vector<double> x_, y_;
};

}  // namespace

PointArray readCsvPoints(const std::string& path, const PointColumns& columns) {
  const std::string text = readInputFile(path);
  return PointFile(path, text, columns).points();
}

std::pair<std::string, std::string> rowFilter(const std::string& text) {
  const std::size_t equals = text.find('=');
  if (equals != std::string::npos && equals > 0)
    return {text.substr(0, equals), text.substr(equals + 1)};
  throw Trouble(ExitCode::usage, "--where: '" + shortened(text) + "' is not allowed",
                "give COLUMN=VALUE");
}

}  // namespace pelmora::cli
