// SPDX-License-Identifier: MIT
#include "apps/pelmora/input/csv_lines.h"

#include "apps/pelmora/trouble.h"

#include <algorithm>

namespace pelmora::cli {

CsvLines::CsvLines(std::string_view text) : text_(text) {
  if (text_.starts_with("\xEF\xBB\xBF")) at_ = 3;
}

std::optional<std::vector<std::string>> CsvLines::next() {
  while (at_ < text_.size() && (text_[at_] == '\n' || text_[at_] == '\r')) {
    if (text_[at_++] == '\n') ++nextLine_;
  }
  if (at_ >= text_.size()) return std::nullopt;
  line_ = nextLine_;
  std::vector<std::string> fields;
  for (;;) {
    const bool isQuoted = at_ < text_.size() && text_[at_] == '"';
    fields.push_back(isQuoted ? quotedField() : plainField());
    if (at_ >= text_.size() || text_[at_] != ',') return fields;
    ++at_;
  }
}

std::string CsvLines::quotedField() {
  std::string field;
  for (++at_; at_ < text_.size(); ++at_) {
    if (text_[at_] == '"') {
      const bool isDoubled = at_ + 1 < text_.size() && text_[at_ + 1] == '"';
      if (!isDoubled) {
        ++at_;
        return field + plainField();
      }
      ++at_;
    }
    if (text_[at_] == '\n') ++nextLine_;
    field += text_[at_];
  }
  throw Trouble(ExitCode::badInput, "line " + std::to_string(line_) + ": a quote is not closed",
                "close it, or write a quote inside a quoted field twice");
}

std::string CsvLines::plainField() {
  const std::size_t end = std::min(text_.find_first_of(",\r\n", at_), text_.size());
  const std::string field(text_.substr(at_, end - at_));
  at_ = end;
  return field;
}

}  // namespace pelmora::cli
