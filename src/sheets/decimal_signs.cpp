// SPDX-License-Identifier: MIT
#include "sheets/decimal_signs.h"

#include "base/ascii_character.h"
#include "base/text_flaw.h"

#include <pelmora/sheet.h>

#include <algorithm>
#include <cmath>
#include <string_view>

namespace pelmora::sheets {
namespace {

constexpr std::array<char, 2> marks{'.', ','};

// Whether it is a number of 1000 or more without grouping.
bool isUngrouped(std::string_view text) {
  std::size_t digits = 0;
  while (digits < text.size() && isDigit(text[digits])) ++digits;
  return digits > groupSize;
}

// Whether the only mark of a number must be its decimal sign.
bool canOnlyBeDecimal(std::string_view text, std::size_t mark) {
  const std::string_view whole = text.substr(0, mark), rest = text.substr(mark + 1);
  const bool isGroup = rest.size() == groupSize && std::ranges::all_of(rest, isDigit);
  const bool isStart = !whole.empty() && whole.size() <= groupSize && whole[0] != '0' &&
                       std::ranges::all_of(whole, isDigit);
  return !isGroup || !isStart;
}

SheetError openError(std::size_t line, const std::string& text) {
  std::string one = text, thousand = text;
  std::ranges::replace(one, ',', '.');
  std::erase_if(thousand, isMark);
  return {"line " + std::to_string(line),
          "'" + text + "' may be " + thousand + " or " + one +
              ", and the rest of the file does not settle it",
          "state the decimal sign", SheetError::Doubt::decimal};
}

}  // namespace

void SizeRange::add(double value) {
  value = std::fabs(value);
  smallest = isEmpty ? value : std::min(smallest, value);
  largest = isEmpty ? value : std::max(largest, value);
  isEmpty = false;
}

void DecimalSigns::note(Place& place, std::size_t line, std::size_t column,
                        const std::string& text) {
  if (place.text.empty()) place = {line, column, text};
}

void DecimalSigns::add(std::size_t line, std::size_t column, const std::string& field) {
  if (columns_.size() <= column) columns_.resize(column + 1);
  if (!looksLikeNumber(field)) return;
  const std::string_view text = withoutSign(field);
  if (otherGrouping_.empty()) otherGrouping_ = plainGrouping(text);
  if (isUngrouped(text)) columns_[column].hasUngrouped = true;
  const auto found = std::ranges::find_if(text, isMark);
  if (found == text.end()) return;
  const auto first = static_cast<std::size_t>(found - text.begin());
  std::size_t last = text.size() - 1;
  while (!isMark(text[last])) --last;
  const std::size_t sign = text[last] == '.' ? 0 : 1, other = 1 - sign;
  if (text[first] != text[last]) {
    note(signs_[sign].decimal, line, column, field);
    note(signs_[other].grouping, line, column, field);
  } else if (first != last) {
    note(signs_[sign].grouping, line, column, field);
  } else if (canOnlyBeDecimal(text, first)) {
    note(signs_[sign].decimal, line, column, field);
  } else {
    note(columns_[column].open[sign], line, column, field);
  }
}

std::optional<bool> DecimalSigns::isDecimal(const Place& open, const ColumnReader& read) const {
  if (columns_[open.column].hasUngrouped) return true;
  const char mark = open.text.find('.') != std::string::npos ? '.' : ',';
  const ColumnSizes sizes = read(open.column, mark);
  if (sizes.settled.isEmpty || sizes.grouped.isEmpty) return std::nullopt;
  constexpr double margin = 10, thousand = 1000;
  const auto fits = [&](double scale) {
    return sizes.grouped.smallest / scale >= sizes.settled.smallest / margin &&
           sizes.grouped.largest / scale <= sizes.settled.largest * margin;
  };
  if (fits(1) == fits(thousand)) return std::nullopt;
  return fits(thousand);
}

NumberStyle DecimalSigns::decide(char separator, char stated, const ColumnReader& read) const {
  if (stated != 0) return {stated, true};
  // The first number that shows a mark to be decimal: by using it as such, or by using the other
  // mark to group thousands.
  const auto proofOf = [&](std::size_t sign) -> const Place& {
    return signs_[sign].decimal.text.empty() ? signs_[1 - sign].grouping : signs_[sign].decimal;
  };
  const Place &point = proofOf(0), &comma = proofOf(1);
  std::array<bool, 2> isProven{!point.text.empty(), !comma.text.empty()};
  if (isProven[0] && isProven[1]) {
    const auto at = [](const Place& place) {
      return "line " + std::to_string(place.line) + " ('" + shortened(place.text) + "')";
    };
    throw SheetError("", at(point) + " has a decimal point and " + at(comma) + " a decimal comma",
                     "write all numbers in one way", SheetError::Doubt::decimal);
  }
  const auto anyOpen = [&](std::size_t sign) {
    return std::ranges::find_if(columns_,
                                [&](const Column& each) { return !each.open[sign].text.empty(); });
  };
  if (!isProven[0] && !isProven[1]) {
    isProven[0] = separator == ',' && anyOpen(0) != columns_.end();
    for (const Column& column : columns_) {
      for (std::size_t sign = 0; sign < marks.size(); ++sign) {
        if (column.open[sign].text.empty()) continue;
        if (const auto decimal = isDecimal(column.open[sign], read))
          isProven[*decimal ? sign : 1 - sign] = true;
      }
    }
  }
  if (isProven[0] == isProven[1]) {
    for (std::size_t sign = 0; sign < marks.size(); ++sign) {
      const auto open = anyOpen(sign);
      if (open != columns_.end()) throw openError(open->open[sign].line, open->open[sign].text);
    }
    return {'.', false};
  }
  const std::size_t sign = isProven[0] ? 0 : 1, other = 1 - sign;
  bool groups = !signs_[other].grouping.text.empty();
  for (const Column& column : columns_) {
    const Place& open = column.open[other];
    if (open.text.empty() || groups) continue;
    if (isDecimal(open, read) != false) throw openError(open.line, open.text);
    groups = true;
  }
  return {marks[sign], groups};
}

std::string DecimalSigns::thousands(NumberStyle style) const {
  const std::size_t other = style.decimal == '.' ? 1 : 0;
  const bool isSeen = !signs_[other].grouping.text.empty() ||
                      std::ranges::any_of(columns_, [&](const Column& column) {
                        return !column.open[other].text.empty();
                      });
  if (style.groupsThousands && isSeen) return {marks[other]};
  return otherGrouping_;
}

}  // namespace pelmora::sheets
