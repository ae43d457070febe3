// Tables and facts in HTML.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace pelmora::report {

struct HtmlColumn {
  std::string title;
  bool isNumber = false;  // right-aligned
  std::string key{};      // under which the page's script finds the column; may be empty
};

// Rows of texts; cells are escaped. The first column heads its row unless it is a number. A table
// that may be wider than a narrow screen can be scrolled; one of numbers alone is not.
class HtmlTable {
 public:
  HtmlTable(std::string caption, std::vector<HtmlColumn> columns, std::string cssClass = {});
  void addRow(const std::vector<std::string>& cells, const std::string& cssClass = {});
  // A row of one cell across all columns.
  void addNote(const std::string& text);
  [[nodiscard]] std::string take();

 private:
  std::vector<HtmlColumn> columns_;
  bool isAllNumbers_;
  std::string html_;
};

// An entry of a <dl>; nothing if the value is empty.
[[nodiscard]] std::string htmlFact(const std::string& name, const std::string& value,
                                   const std::string& cssClass = {});

}  // namespace pelmora::report
