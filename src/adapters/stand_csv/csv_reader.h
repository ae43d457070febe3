// Records of comma-separated text.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::stand {

struct CsvField {
  std::string text;
  bool isQuoted = false;
};

// A field in double quotes may hold commas, line ends and doubled quotes. Lines end in CR LF, LF or
// CR; empty lines are skipped. A byte-order mark at the start is not part of the text.
class CsvReader {
 public:
  // `text` must outlive the reader.
  explicit CsvReader(std::string_view text);

  // Reads the next record. False at the end of the text.
  // Errors: Error 13 for a quote that is not closed or that text follows; says in which line.
  bool next(std::vector<CsvField>& fields);
  // The line, from 1, on which the last record began.
  [[nodiscard]] std::size_t line() const { return recordLine_; }

 private:
  void readField(CsvField& field);
  void readQuoted(CsvField& field);
  bool takeLineEnd();
  [[nodiscard]] bool atFieldEnd() const;

  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t line_ = 1;
  std::size_t recordLine_ = 0;
};

}  // namespace pelmora::stand
