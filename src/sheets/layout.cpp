// SPDX-License-Identifier: MIT
#include "sheets/layout.h"

#include "base/ascii_character.h"
#include "base/text_case.h"
#include "sheets/field_number.h"
#include "sheets/unit_text.h"

#include <algorithm>
#include <map>
#include <optional>

namespace pelmora::sheets {
namespace {

// One letter per field: 'n' a number, 't' other text, ' ' empty; without empty fields at the end.
std::string patternOf(const Record& record) {
  std::string pattern;
  for (std::size_t i = 0; i < widthOf(record); ++i) {
    const std::string& field = record.fields[i];
    pattern += field.empty() ? ' ' : looksLikeNumber(field) ? 'n' : 't';
  }
  return pattern;
}

std::size_t numbersIn(const std::string& pattern) {
  return static_cast<std::size_t>(std::ranges::count(pattern, 'n'));
}

bool startsLikeNumber(const std::string& field) {
  return !field.empty() &&
         (field[0] == '-' || field[0] == '+' || field[0] == '.' || isDigit(field[0]));
}

class Search {
 public:
  Search(std::span<const Record> records, char separator, const std::vector<std::string>& names)
      : records_(records), separator_(separator), names_(names) {
    for (const Record& record : records_) patterns_.push_back(patternOf(record));
    width_ = usualWidth();
  }

  Layout layout() {
    auto header = headerByName();
    if (!header) header = headerByShape();
    if (header) return below(*header);
    return withoutHeader();
  }

 private:
  // The most frequent width of the records that hold numbers.
  [[nodiscard]] std::size_t usualWidth() const {
    for (const std::size_t numbers : {2U, 1U, 0U}) {
      std::map<std::size_t, std::size_t> counts;
      for (const std::string& pattern : patterns_) {
        if (numbersIn(pattern) >= numbers) ++counts[pattern.size()];
      }
      if (counts.empty()) continue;
      return std::ranges::max_element(
                 counts, {}, [](const auto& entry) { return std::pair(entry.second, entry.first); })
          ->first;
    }
    return 0;
  }

  [[nodiscard]] bool hasAllNames(const Record& record) const {
    return std::ranges::all_of(names_, [&](const std::string& name) {
      return std::ranges::any_of(record.fields, [&](const std::string& field) {
        return equalNames(field, name) || equalNames(columnOf(field).name, name);
      });
    });
  }
  [[nodiscard]] std::optional<std::size_t> headerByName() const {
    if (names_.empty()) return std::nullopt;
    for (std::size_t i = 0; i < records_.size(); ++i) {
      if (hasAllNames(records_[i])) return i;
    }
    return std::nullopt;
  }

  [[nodiscard]] bool isUnitsLine(std::size_t i) const {
    return i < records_.size() && areUnits(records_[i].fields);
  }
  // The pattern of the first row of values below a header; empty if there is none.
  [[nodiscard]] std::string patternBelow(std::size_t header) const {
    const std::size_t below = header + (isUnitsLine(header + 1) ? 2 : 1);
    return below < records_.size() ? patterns_[below] : std::string();
  }
  [[nodiscard]] bool isTexts(std::size_t i) const {
    const std::string& pattern = patterns_[i];
    if (pattern.size() < 2 || numbersIn(pattern) > 0) return false;
    if (std::ranges::any_of(records_[i].fields, isMissingValue)) return false;
    return !std::ranges::all_of(records_[i].fields, [](const std::string& field) {
      return field.empty() || startsLikeNumber(field);
    });
  }
  [[nodiscard]] bool hasValuesAbove(std::size_t header) const {
    const std::string below = patternBelow(header);
    return numbersIn(below) > 0 &&
           std::find(patterns_.begin(), patterns_.begin() + static_cast<std::ptrdiff_t>(header),
                     below) != patterns_.begin() + static_cast<std::ptrdiff_t>(header);
  }
  // The first of the widest lines of texts above a row with at least `numbers` numbers.
  [[nodiscard]] std::optional<std::size_t> headerAbove(std::size_t numbers) const {
    std::optional<std::size_t> best;
    for (std::size_t i = 0; i < records_.size(); ++i) {
      if (!isTexts(i) || numbersIn(patternBelow(i)) < numbers || hasValuesAbove(i)) continue;
      if (!best || patterns_[i].size() > patterns_[*best].size()) best = i;
    }
    return best;
  }
  [[nodiscard]] std::optional<std::size_t> headerByShape() const {
    if (auto header = headerAbove(2)) return header;
    if (auto header = headerAbove(1)) return header;
    // A header alone, or one above values that are not numbers: the first line of a plain file.
    if (!records_.empty() && isTexts(0)) return std::size_t{0};
    return std::nullopt;
  }

  [[nodiscard]] Layout below(std::size_t header) const {
    Layout layout;
    const Record& record = records_[header];
    layout.header.assign(record.fields.begin(),
                         record.fields.begin() + static_cast<std::ptrdiff_t>(widthOf(record)));
    layout.headerLine = record.line;
    layout.titleLines = header;
    layout.firstLine = record.line + 1;
    for (const std::string& field : layout.header) layout.columns.push_back(columnOf(field));
    if (!isUnitsLine(header + 1)) return layout;
    layout.units = records_[header + 1].fields;
    layout.unitsLine = records_[header + 1].line;
    layout.firstLine = layout.unitsLine + 1;
    for (std::size_t i = 0; i < std::min(layout.units.size(), layout.columns.size()); ++i) {
      const std::string& text = layout.units[i];
      const std::string_view symbol = unitSymbol(text);
      if (layout.columns[i].unit.empty() && text != "-")
        layout.columns[i].unit = symbol.empty() ? text : symbol;
    }
    return layout;
  }

  [[nodiscard]] Layout withoutHeader() const {
    Layout layout;
    std::size_t first = 0;  // the row of the first values
    while (first < records_.size() && numbersIn(patterns_[first]) == 0 &&
           patterns_[first].size() < width_)
      ++first;
    if (first == records_.size()) first = 0;
    layout.titleLines = first;
    layout.columns.resize(width_);
    if (records_.empty()) return layout;
    layout.firstLine = records_[first].line;
    readComment(records_[first], layout);
    return layout;
  }

  // "# Roshko,Strouhal" right above the values.
  void readComment(const Record& first, Layout& layout) const {
    if (first.comment.empty()) return;
    RecordSource source(first.comment, separator_);
    Record names;
    try {
      if (!source.next(names)) return;
    } catch (const SheetError&) {
      return;
    }
    if (!first.comment.empty() && first.comment.front() == separator_) names.fields.front() = "#";
    if (names.fields.size() != width_ || numbersIn(patternOf(names)) > 0) return;
    layout.header = names.fields;
    layout.headerLine = first.line - 1;
    for (std::size_t i = 0; i < width_; ++i) layout.columns[i] = columnOf(names.fields[i]);
  }

  std::span<const Record> records_;
  char separator_;
  const std::vector<std::string>& names_;
  std::vector<std::string> patterns_;
  std::size_t width_ = 0;
};

}  // namespace

Layout layoutOf(std::span<const Record> start, char separator,
                const std::vector<std::string>& names) {
  return Search(start, separator, names).layout();
}

}  // namespace pelmora::sheets
