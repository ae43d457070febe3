// SPDX-License-Identifier: MIT
#include "sheets/record_source.h"

#include "base/run_time_error.h"
#include "base/text_case.h"
#include "sheets/field_number.h"

#include <pelmora/sheet.h>

#include <algorithm>
#include <array>
#include <utility>

namespace pelmora::sheets {
namespace {

// "#N/A", "#DIV/0!", "#NAME?", or "####" from a column that was too narrow.
bool isSpreadsheetError(std::string_view line) {
  const std::size_t end = line.find_first_of(",;\t\"");
  const std::string_view word = trimmed(line.substr(0, end));
  const bool isRow = end != std::string_view::npos;
  if (word.size() < 3) return false;
  if (word.find_first_not_of('#') == std::string_view::npos) return isRow;
  if (word.find(' ') != std::string_view::npos) return false;
  constexpr std::array<std::string_view, 5> words{"#N/A", "#NA", "#NV", "#N/D", "#NULL"};
  return word.back() == '!' || word.back() == '?' ||
         std::ranges::any_of(words, [&](std::string_view one) { return equalNames(word, one); });
}

std::string_view withoutMark(std::string_view line) {
  line.remove_prefix(line.starts_with("//") ? 2 : 1);
  return line;
}

}  // namespace

std::size_t widthOf(const Record& record) {
  std::size_t width = record.fields.size();
  while (width > 0 && record.fields[width - 1].empty()) --width;
  return width;
}

bool isComment(std::string_view line) {
  line = trimmed(line);
  if (line.starts_with('%') || line.starts_with("//")) return true;
  return line.starts_with('#') && !isSpreadsheetError(line);
}

char statedSeparator(std::string_view line) {
  if (line.starts_with('"')) line.remove_prefix(1);
  constexpr std::size_t size = 4;
  if (line.size() <= size || !equalNames(line.substr(0, size), "sep=")) return 0;
  const std::string_view rest = line.substr(size + 1);
  return rest.empty() || rest == "\"" ? line[size] : '\0';
}

RecordSource::RecordSource(std::string_view text, char separator,
                           std::function<bool()> stopRequested)
    : stopRequested_(std::move(stopRequested)),
      comments_(std::make_shared<Comments>()),
      reader_(text, {separator, [all = comments_, isFirst = true](std::string_view line) mutable {
                       if (std::exchange(isFirst, false) && statedSeparator(line) != 0) return true;
                       if (!isComment(line)) return false;
                       ++all->count;
                       all->last = withoutMark(trimmed(line));
                       return true;
                     }}) {}

bool RecordSource::next(Record& record) {
  constexpr std::size_t betweenLooks = 64;
  if (records_++ % betweenLooks == 0 && stopRequested_ && stopRequested_())
    throw Error(operationStopped, "Pelmora", "Reading the text was stopped.");
  comments_->last.clear();
  try {
    if (!reader_.next(fields_)) return false;
  } catch (const CsvError& error) {
    throw SheetError(error.place(), error.problem(), error.remedy());
  }
  record.line = reader_.line();
  record.comment = comments_->last;
  record.fields.resize(fields_.size());
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    std::string& text = fields_[i].text;
    const std::string_view wanted = trimmed(text);
    if (wanted.size() == text.size()) {
      record.fields[i].swap(text);
    } else {
      record.fields[i].assign(wanted);
    }
  }
  return true;
}

}  // namespace pelmora::sheets
