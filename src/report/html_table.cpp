// SPDX-License-Identifier: MIT
#include "report/html_table.h"

#include "report/markup.h"

#include <algorithm>

namespace pelmora::report {
namespace {

std::string classAttribute(const std::string& cssClass) {
  if (cssClass.empty()) return {};
  return cssClass.find(' ') == std::string::npos ? " class=" + cssClass
                                                 : " class=\"" + cssClass + "\"";
}

// Where titles may wrap, a unit stays on one line: "Roshko, Hz/cSt".
std::string titleHtml(const std::string& title, bool mayWrap) {
  const auto comma = title.rfind(", ");
  if (!mayWrap || comma == std::string::npos) return escaped(title);
  return escaped(title.substr(0, comma + 2)) + "<span class=unit>" +
         escaped(title.substr(comma + 2)) + "</span>";
}

}  // namespace

// Optional end tags are left out: they would be a third of a table of numbers. For the same reason,
// cells of text have a class, and those of numbers have none.
HtmlTable::HtmlTable(std::string caption, std::vector<HtmlColumn> columns, std::string cssClass)
    : columns_(std::move(columns)),
      isAllNumbers_(
          std::all_of(columns_.begin(), columns_.end(), [](const auto& c) { return c.isNumber; })) {
  if (std::ranges::any_of(columns_, &HtmlColumn::isNumber))
    cssClass += cssClass.empty() ? "num" : " num";
  const std::string label = " aria-label=\"" + escaped(caption) + "\"";
  html_ = isAllNumbers_ ? "<div><table" + label
                        : "<div class=scroll tabindex=0 role=group" + label + "><table";
  html_ += classAttribute(cssClass) + ">\n<thead><tr>";
  const bool mayWrap = cssClass.find("results") != std::string::npos ||
                       cssClass.find("predicted") != std::string::npos;
  for (const HtmlColumn& column : columns_) {
    html_ += "<th scope=col" + classAttribute(column.isNumber ? "" : "t") +
             (column.key.empty() ? "" : " data-key=" + column.key) + ">" +
             titleHtml(column.title, mayWrap);
  }
  html_ += "\n<tbody>\n";
}

void HtmlTable::addRow(const std::vector<std::string>& cells, const std::string& cssClass) {
  html_ += "<tr" + classAttribute(cssClass) + ">";
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (columns_[i].isNumber)
      html_ += "<td>";
    else
      html_ += i == 0 ? "<th scope=row>" : "<td class=t>";
    html_ += escaped(cells[i]);
  }
  html_ += "\n";
}

void HtmlTable::addNote(const std::string& text) {
  html_ += "<tr class=\"why\"><td><td colspan=\"" + std::to_string(columns_.size() - 1) + "\">" +
           escaped(text) + "\n";
}

std::string HtmlTable::take() { return html_ + "</table></div>\n"; }

std::string htmlFact(const std::string& name, const std::string& value,
                     const std::string& cssClass) {
  if (value.empty()) return {};
  return "<div" + classAttribute(cssClass) + "><dt>" + escaped(name) + "</dt><dd>" +
         escaped(value) + "</dd></div>\n";
}

}  // namespace pelmora::report
