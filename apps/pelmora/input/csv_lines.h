// A comma-separated file, line by line.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::cli {

// Fields are separated by commas; one in double quotes may hold commas and line breaks, and a
// doubled quote stands for one. Line ends are LF or CR LF; a byte order mark and empty lines are
// skipped.
class CsvLines {
 public:
  // `text` must outlive this object.
  explicit CsvLines(std::string_view text);

  // The fields of the next line; nothing at the end.
  // Errors: Trouble badInput for a quote that is not closed.
  std::optional<std::vector<std::string>> next();
  // Of the line that next() gave last, from 1.
  [[nodiscard]] std::size_t line() const { return line_; }

 private:
  std::string quotedField();
  std::string plainField();

  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t line_ = 0, nextLine_ = 1;
};

}  // namespace pelmora::cli
