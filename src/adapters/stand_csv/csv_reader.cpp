// SPDX-License-Identifier: MIT
#include "adapters/stand_csv/csv_reader.h"

#include "base/run_time_error.h"

namespace pelmora::stand {

namespace {

Error quoteError(std::size_t line, const std::string& what) {
  return {static_cast<std::int32_t>(RunTimeError::typeMismatch), "Pelmora",
          "Line " + std::to_string(line) + ": " + what};
}

}  // namespace

CsvReader::CsvReader(std::string_view text) : text_(text) {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  if (text_.starts_with(byteOrderMark)) text_.remove_prefix(byteOrderMark.size());
}

bool CsvReader::takeLineEnd() {
  if (at_ == text_.size() || (text_[at_] != '\r' && text_[at_] != '\n')) return false;
  const bool isPair = text_[at_] == '\r' && at_ + 1 < text_.size() && text_[at_ + 1] == '\n';
  at_ += isPair ? 2 : 1;
  ++line_;
  return true;
}

bool CsvReader::atFieldEnd() const {
  return at_ == text_.size() || text_[at_] == ',' || text_[at_] == '\r' || text_[at_] == '\n';
}

bool CsvReader::next(std::vector<CsvField>& fields) {
  while (takeLineEnd()) continue;
  if (at_ == text_.size()) return false;
  recordLine_ = line_;
  std::size_t count = 0;
  while (true) {
    if (fields.size() == count) fields.emplace_back();
    readField(fields[count++]);
    if (at_ == text_.size() || text_[at_] != ',') break;
    ++at_;
  }
  takeLineEnd();
  fields.resize(count);
  return true;
}

void CsvReader::readField(CsvField& field) {
  field.isQuoted = at_ < text_.size() && text_[at_] == '"';
  if (field.isQuoted) return readQuoted(field);
  const std::size_t begin = at_;
  while (!atFieldEnd()) ++at_;
  field.text.assign(text_.substr(begin, at_ - begin));
}

void CsvReader::readQuoted(CsvField& field) {
  const std::size_t opened = line_;
  field.text.clear();
  ++at_;
  while (true) {
    if (at_ == text_.size())
      throw quoteError(opened, "a quoted field is never closed. Close its quote.");
    const char c = text_[at_];
    if (c == '"') {
      ++at_;
      if (at_ == text_.size() || text_[at_] != '"') break;
    } else if (c == '\r' || c == '\n') {
      const std::size_t begin = at_;
      takeLineEnd();
      field.text.append(text_.substr(begin, at_ - begin));
      continue;
    }
    field.text.push_back(c);
    ++at_;
  }
  if (!atFieldEnd()) {
    throw quoteError(line_, "text stands behind a quoted field. Put a comma between them.");
  }
}

}  // namespace pelmora::stand
