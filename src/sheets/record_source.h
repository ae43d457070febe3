// The records of a sheet's text, comments left out.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/csv_reader.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::sheets {

struct Record {
  std::size_t line = 0;
  std::vector<std::string> fields;  // without blanks at their ends
  std::string comment;              // the last comment line right above, without its mark
};

// The fields up to the last one that is not empty.
[[nodiscard]] std::size_t widthOf(const Record& record);

// Whether a line begins with #, % or //. A row that starts with an error value of a spreadsheet
// ("#N/A;5") is not a comment: it must not disappear.
[[nodiscard]] bool isComment(std::string_view line);

// The separator of a line such as "sep=;"; 0 for any other line.
[[nodiscard]] char statedSeparator(std::string_view line);

class RecordSource {
 public:
  // `text` must outlive this object.
  // stopRequested: that of Style; may be empty.
  RecordSource(std::string_view text, char separator, std::function<bool()> stopRequested = {});

  // False at the end. Errors: SheetError; Error 0x80004004 at a stop.
  bool next(Record& record);
  // Comment lines so far.
  [[nodiscard]] std::size_t comments() const { return comments_->count; }

 private:
  struct Comments {
    std::size_t count = 0;
    std::string last;
  };
  std::function<bool()> stopRequested_;
  std::size_t records_ = 0;
  std::shared_ptr<Comments> comments_;
  CsvReader reader_;
  std::vector<CsvField> fields_;
};

}  // namespace pelmora::sheets
