// SPDX-License-Identifier: MIT
#include <pelmora/sheet.h>

#include "base/text_case.h"
#include "base/text_flaw.h"
#include "sheets/decimal_signs.h"
#include "sheets/decoded_text.h"
#include "sheets/field_number.h"
#include "sheets/layout.h"
#include "sheets/record_source.h"
#include "sheets/separator_choice.h"
#include "sheets/unit_text.h"
#include "units/unit.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace pelmora::sheets {
namespace {

// Titles, comments and a header end within this many records.
constexpr std::size_t startRecords = 1000;

bool isNotFinite(std::string_view text) {
  text = withoutSign(text);
  return equalNames(text, "nan") || equalNames(text, "inf") || equalNames(text, "infinity");
}

// "1.234", where '.' is `mark`: the mark may be the decimal sign or group thousands.
bool isOpen(std::string_view text, char mark) {
  return std::ranges::count_if(text, isMark) == 1 && text.find(mark) != std::string_view::npos &&
         fieldNumber(text, {mark == '.' ? ',' : '.', true}).has_value();
}

}  // namespace

class Sheet::Content {
 public:
  Content(std::string bytes, const Style& style)
      : stopRequested_(style.stopRequested), text_(decoded(std::move(bytes))) {
    recognised_.encoding = text_.encoding;
    recognised_.hasByteOrderMark = text_.hasByteOrderMark;
    chooseSeparator(style);
    RecordSource source(text_.text, recognised_.separator, stopRequested_);
    const Start start = findHeader(style, source);
    readEvidence(style, start, source);
    rows_.emplace(text_.text, recognised_.separator, stopRequested_);
  }

  [[nodiscard]] const Recognised& recognised() const { return recognised_; }
  [[nodiscard]] const Layout& layout() const { return layout_; }
  [[nodiscard]] NumberStyle numbers() const { return numbers_; }
  void setUnit(std::size_t column, std::string unit) {
    layout_.columns[column].unit = std::move(unit);
  }

  bool next(Row& row) {
    if (!nextValues(*rows_, record_)) return false;
    requireWidth(record_);
    record_.fields.resize(layout_.columns.size());
    row.line = record_.line;
    row.fields.swap(record_.fields);
    return true;
  }

 private:
  // What has been read before the header is known.
  struct Start {
    struct EmptyRecord {
      std::size_t line, fields;
    };
    std::vector<Record> records;
    std::vector<EmptyRecord> empty;
  };

  void chooseSeparator(const Style& style) {
    const std::string_view text = text_.text;
    const char stated = statedSeparator(text.substr(0, text.find_first_of("\r\n")));
    recognised_.isSeparatorStated = stated != 0;
    recognised_.separator = style.separator != 0 ? style.separator
                            : stated != 0        ? stated
                                                 : chosenSeparator(text);
  }

  Start findHeader(const Style& style, RecordSource& source) {
    Start start;
    Record record;
    while (start.records.size() < startRecords && source.next(record)) {
      if (widthOf(record) > 0) {
        start.records.push_back(record);
      } else {
        start.empty.push_back({record.line, record.fields.size()});
      }
    }
    layout_ = layoutOf(start.records, recognised_.separator, style.names);
    recognised_.titleLines = layout_.titleLines;
    recognised_.headerLine = layout_.headerLine;
    recognised_.unitsLine = layout_.unitsLine;
    return start;
  }

  // The next record of values: below header and units, neither empty nor a repetition of them.
  bool nextValues(RecordSource& source, Record& record) const {
    while (source.next(record)) {
      if (record.line >= layout_.firstLine && widthOf(record) > 0 && !isRepeated(record))
        return true;
    }
    return false;
  }
  [[nodiscard]] bool isRepeated(const Record& record) const {
    const auto isSame = [&](const std::vector<std::string>& fields) {
      return !fields.empty() && record.fields.size() >= fields.size() &&
             widthOf(record) <= fields.size() &&
             std::equal(fields.begin(), fields.end(), record.fields.begin());
    };
    return isSame(layout_.header) || isSame(layout_.units);
  }

  void readEvidence(const Style& style, const Start& start, RecordSource& source) {
    DecimalSigns signs;
    std::size_t mostFields = 0;
    const auto isBelowHeader = [&](std::size_t line, std::size_t fields) {
      if (line < layout_.firstLine) return false;
      mostFields = std::max(mostFields, fields);
      return true;
    };
    const auto addEmpty = [&](const Start::EmptyRecord& record) {
      if (isBelowHeader(record.line, record.fields)) ++recognised_.emptyRows;
    };
    const auto add = [&](const Record& record) {
      const std::size_t fields = record.fields.size();
      if (widthOf(record) == 0) return addEmpty({record.line, fields});
      if (!isBelowHeader(record.line, fields)) return;
      if (isRepeated(record)) {
        recognised_.repeatedHeaders.push_back(record.line);
      } else {
        for (std::size_t i = 0; i < fields; ++i) signs.add(record.line, i, record.fields[i]);
      }
    };
    std::ranges::for_each(start.empty, addEmpty);
    std::ranges::for_each(start.records, add);
    for (Record record; source.next(record);) add(record);
    recognised_.commentLines = source.comments();
    recognised_.emptyColumns = mostFields - std::min(mostFields, layout_.columns.size());
    numbers_ = signs.decide(recognised_.separator, style.decimal,
                            [&](std::size_t column, char open) { return sizesOf(column, open); });
    recognised_.decimal = numbers_.decimal;
    recognised_.thousands = signs.thousands(numbers_);
  }

  [[nodiscard]] ColumnSizes sizesOf(std::size_t column, char open) const {
    ColumnSizes sizes;
    RecordSource source(text_.text, recognised_.separator, stopRequested_);
    Record record;
    const NumberStyle grouping{open == '.' ? ',' : '.', true};
    while (nextValues(source, record)) {
      if (record.fields.size() <= column) continue;
      const std::string& field = record.fields[column];
      const auto value = fieldNumber(field, grouping);
      if (value) (isOpen(field, open) ? sizes.grouped : sizes.settled).add(*value);
    }
    return sizes;
  }

  void requireWidth(const Record& record) const {
    const std::size_t count = record.fields.size(), wanted = layout_.columns.size();
    if (count >= wanted && widthOf(record) <= wanted) return;
    const bool isDoubtful = recognised_.separator == ',' && count > wanted;
    throw SheetError("line " + std::to_string(record.line),
                     std::to_string(count) + (count == 1 ? " field" : " fields") + " instead of " +
                         std::to_string(wanted),
                     isDoubtful ? "write numbers with a decimal point, or separate the fields by "
                                  "semicolons if commas are decimal signs"
                                : "write one field for each column, and numbers with a decimal "
                                  "point or comma");
  }

  std::function<bool()> stopRequested_;
  DecodedText text_;
  Recognised recognised_;
  Layout layout_;
  NumberStyle numbers_;
  std::optional<RecordSource> rows_;
  Record record_;
};

Sheet::Sheet(std::string bytes, const Style& style)
    : content_(std::make_unique<Content>(std::move(bytes), style)) {}
Sheet::Sheet(Sheet&& other) noexcept = default;
Sheet& Sheet::operator=(Sheet&& other) noexcept = default;
Sheet::~Sheet() = default;

const Recognised& Sheet::recognised() const { return content_->recognised(); }
const std::vector<Column>& Sheet::columns() const { return content_->layout().columns; }

std::optional<std::size_t> Sheet::find(std::string_view name) const {
  const std::vector<Column>& all = columns();
  const std::string_view wanted = trimmed(name);
  if (wanted.empty()) return std::nullopt;
  const auto indexOf = [&](const auto& matches) -> std::optional<std::size_t> {
    const auto found = std::ranges::find_if(all, matches);
    if (found == all.end()) return std::nullopt;
    return static_cast<std::size_t>(found - all.begin());
  };
  if (auto i = indexOf([&](const Column& each) { return each.text == wanted; })) return i;
  if (auto i = indexOf([&](const Column& each) { return equalNames(each.text, wanted); })) return i;
  if (auto i = indexOf([&](const Column& each) { return equalNames(each.name, wanted); })) return i;
  std::size_t number = 0;
  const char* const end = wanted.data() + wanted.size();
  const auto [stop, code] = std::from_chars(wanted.data(), end, number);
  if (code != std::errc() || stop != end || number < 1 || number > all.size()) return std::nullopt;
  return number - 1;
}

std::string Sheet::columnName(std::size_t column) const {
  const std::string& text = columns()[column].text;
  return text.empty() ? std::to_string(column + 1) : shortened(text);
}

bool Sheet::next(Row& row) { return content_->next(row); }

std::optional<double> Sheet::number(std::string_view field) const {
  return fieldNumber(field, content_->numbers());
}

void Sheet::setUnit(std::size_t column, std::string_view unit) {
  const std::string_view symbol = unitSymbol(unit);
  content_->setUnit(column, std::string(symbol.empty() ? unit : symbol));
}

double Sheet::requireNumber(const Row& row, std::size_t column) const {
  const std::string& field = row.fields[column];
  if (const auto value = number(field)) return *value;
  const std::string place = "line " + std::to_string(row.line) + ", column " + columnName(column);
  if (field.empty()) throw SheetError(place, "the field is empty", "write a number such as 12.5");
  const std::string quoted = "'" + shortened(field) + "'";
  if (isNotFinite(field)) {
    throw SheetError(place, quoted + " is not a finite number", "correct it or leave the line out");
  }
  const char decimal = content_->numbers().decimal;
  if (fieldNumber(field, {decimal == '.' ? ',' : '.', false})) {
    throw SheetError(place,
                     quoted + " is not a number: the decimal sign of this file is a " +
                         (decimal == '.' ? "point" : "comma"),
                     "write all numbers in one way", SheetError::Doubt::decimal);
  }
  throw SheetError(place, quoted + " is not a number",
                   decimal == '.' ? "write a number with a decimal point, such as 12.5"
                                  : "write a number with a decimal comma, such as 12,5");
}

double Sheet::requireNumber(const Row& row, std::size_t column, std::string_view unit) const {
  const double value = requireNumber(row, column);
  const std::string& from = columns()[column].unit;
  if (from.empty() || from == unit) return value;
  const std::string_view symbol = unitSymbol(from);
  const std::string name = columnName(column);
  if (symbol.empty()) {
    throw SheetError("column " + name, "'" + shortened(from) + "' is not a known unit",
                     "state the unit, such as " + std::string(unit));
  }
  try {
    return units::converted(value, units::unitOf(symbol), units::unitOf(unit));
  } catch (const Error& error) {
    throw SheetError("column " + name, error.what(), "state a unit such as " + std::string(unit));
  }
}

}  // namespace pelmora::sheets
