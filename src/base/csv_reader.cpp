// SPDX-License-Identifier: MIT
#include "base/csv_reader.h"

#include "base/run_time_error.h"
#include "base/text_flaw.h"

#include <algorithm>
#include <utility>

namespace pelmora {

namespace {

bool isLineEnd(char c) { return c == '\r' || c == '\n'; }

std::string placeText(std::size_t line, std::size_t field) {
  return "line " + std::to_string(line) + ", field " + std::to_string(field);
}

}  // namespace

CsvError::CsvError(std::size_t line, std::size_t field, const std::string& problem,
                   const std::string& remedy)
    : Error(static_cast<std::int32_t>(RunTimeError::typeMismatch), "Pelmora",
            "L" + placeText(line, field).substr(1) + ": " + problem + "; " + remedy + "."),
      place_(placeText(line, field)),
      problem_(problem),
      remedy_(remedy) {}

CsvError::~CsvError() = default;

CsvReader::CsvReader(std::string_view text, CsvStyle style)
    : text_(text), style_(std::move(style)) {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  if (text_.starts_with(byteOrderMark)) text_.remove_prefix(byteOrderMark.size());
}

bool CsvReader::atLineEnd() const { return at_ < text_.size() && isLineEnd(text_[at_]); }

void CsvReader::skipField() {
  const char separator = style_.Separator;
  const auto isEnd = [separator](char c) { return c == separator || isLineEnd(c); };
  const std::string_view rest = text_.substr(at_);
  at_ += static_cast<std::size_t>(std::ranges::find_if(rest, isEnd) - rest.begin());
}

bool CsvReader::takeLineEnd() {
  if (!atLineEnd()) return false;
  const bool isPair = text_.substr(at_).starts_with("\r\n");
  at_ += isPair ? 2 : 1;
  ++line_;
  return true;
}

bool CsvReader::takeComment() {
  if (!style_.IsComment || at_ == text_.size()) return false;
  std::size_t end = at_;
  while (end < text_.size() && !isLineEnd(text_[end])) ++end;
  if (!style_.IsComment(text_.substr(at_, end - at_))) return false;
  at_ = end;
  return true;
}

bool CsvReader::next(std::vector<CsvField>& fields) {
  while (takeLineEnd() || takeComment()) continue;
  if (at_ == text_.size()) return false;
  recordLine_ = line_;
  fieldNumber_ = 0;
  while (true) {
    if (fields.size() == fieldNumber_) fields.emplace_back();
    readField(fields[fieldNumber_++]);
    if (at_ == text_.size() || text_[at_] != style_.Separator) break;
    ++at_;
  }
  takeLineEnd();
  fields.resize(fieldNumber_);
  return true;
}

void CsvReader::readField(CsvField& field) {
  field.isQuoted = at_ < text_.size() && text_[at_] == '"';
  if (field.isQuoted) return readQuoted(field);
  const std::size_t begin = at_;
  skipField();
  field.text.assign(text_.substr(begin, at_ - begin));
}

void CsvReader::readQuoted(CsvField& field) {
  const std::size_t opened = line_;
  field.text.clear();
  ++at_;
  while (true) {
    if (at_ == text_.size()) {
      throw CsvError(opened, fieldNumber_, "a quote is not closed",
                     "close it, or write a quote inside a quoted field twice");
    }
    const char c = text_[at_];
    if (c == '"') {
      ++at_;
      if (at_ == text_.size() || text_[at_] != '"') break;
    } else if (atLineEnd()) {
      const std::size_t begin = at_;
      takeLineEnd();
      field.text.append(text_.substr(begin, at_ - begin));
      continue;
    }
    field.text.push_back(c);
    ++at_;
  }
  const std::size_t begin = at_;
  skipField();
  if (at_ == begin) return;
  throw CsvError(line_, fieldNumber_,
                 "'" + shortened(text_.substr(begin, at_ - begin)) + "' follows a closing quote",
                 "put a separator between them, or write a quote inside a quoted field twice");
}

}  // namespace pelmora
