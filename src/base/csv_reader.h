// Records of text whose fields are separated by commas.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/error.h>
#include <pelmora/export.h>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora {

struct CsvField {
  std::string text;
  bool isQuoted = false;
};

// How a text is to be read; what another program has written may differ.
struct CsvStyle {
  char Separator = ',';
  // Whether a line, given without its line end, is a comment rather than the start of a record. If
  // this is empty, no line is a comment.
  std::function<bool(std::string_view line)> IsComment = {};
};

// A place where the text is not CSV: "Line 3, field 2: 'x' follows a closing quote; put ...".
class PELMORA_API CsvError : public Error {
 public:
  CsvError(std::size_t line, std::size_t field, const std::string& problem,
           const std::string& remedy);
  ~CsvError() override;

  // "line 3, field 2"; both count from 1.
  [[nodiscard]] const std::string& place() const noexcept { return place_; }
  [[nodiscard]] const std::string& problem() const noexcept { return problem_; }
  [[nodiscard]] const std::string& remedy() const noexcept { return remedy_; }

 private:
  std::string place_, problem_, remedy_;
};

// A field in double quotes may hold separators, line ends and doubled quotes. Lines end in CR LF,
// LF or CR, in any mixture; empty lines are skipped. A byte order mark at the start is not part of
// the text.
class PELMORA_API CsvReader {
 public:
  // `text` must outlive the reader.
  explicit CsvReader(std::string_view text, CsvStyle style = {});

  // Reads the next record. False at the end of the text.
  // Errors: CsvError, number 13, for a quote that is not closed or that text follows.
  bool next(std::vector<CsvField>& fields);
  // The line, from 1, on which the last record began.
  [[nodiscard]] std::size_t line() const { return recordLine_; }

 private:
  void readField(CsvField& field);
  void readQuoted(CsvField& field);
  void skipField();
  bool takeLineEnd();
  bool takeComment();
  [[nodiscard]] bool atLineEnd() const;

  std::string_view text_;
  CsvStyle style_;
  std::size_t at_ = 0;
  std::size_t line_ = 1;
  std::size_t recordLine_ = 0;
  std::size_t fieldNumber_ = 0;
};

}  // namespace pelmora
