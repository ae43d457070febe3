// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/text_table.h"

#include "apps/pelmora/trouble.h"

#include <algorithm>
#include <numeric>

namespace pelmora::cli {
namespace {

constexpr std::size_t gap = 2;
constexpr std::size_t narrowest = 8;  // a cut column keeps at least this much

bool startsCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }

// The first `width` characters, the last three of them dots.
std::string cut(std::string text, std::size_t width) {
  if (text.size() <= width || displayWidth(text) <= width) return text;
  std::string result;
  std::size_t characters = 0;
  for (const char c : text) {
    if (startsCharacter(c) && ++characters > width - 3) break;
    result += c;
  }
  return result + "...";
}

}  // namespace

std::size_t displayWidth(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), startsCharacter));
}

TableLayout::TableLayout(std::vector<TextColumn> columns) : columns_(std::move(columns)) {
  for (const TextColumn& column : columns_) widths_.push_back(displayWidth(column.title));
}

void TableLayout::measure(const std::vector<std::string>& cells) {
  for (std::size_t c = 0; c < cells.size() && c < columns_.size(); ++c) {
    if (cells[c].size() > widths_[c])  // no cell is wider than it has bytes
      widths_[c] = std::max(widths_[c], displayWidth(oneLine(cells[c])));
  }
}

std::string TableLayout::head() {
  const auto total = [&] {
    return std::accumulate(widths_.begin(), widths_.end(), gap * (widths_.size() - 1));
  };
  while (total() > terminalColumns) {
    std::size_t widest = columns_.size();
    for (std::size_t c = 0; c < columns_.size(); ++c) {
      const bool canShrink = columns_[c].align == TextAlign::left && widths_[c] > narrowest;
      if (canShrink && (widest == columns_.size() || widths_[c] > widths_[widest])) widest = c;
    }
    if (widest == columns_.size()) break;
    --widths_[widest];
  }
  std::vector<std::string> titles, dashes;
  for (std::size_t c = 0; c < columns_.size(); ++c) {
    titles.push_back(columns_[c].title);
    dashes.emplace_back(widths_[c], '-');
  }
  return line(titles) + line(dashes);
}

std::string TableLayout::line(const std::vector<std::string>& cells) const {
  std::string line;
  line.reserve(terminalColumns);
  for (std::size_t c = 0; c < columns_.size(); ++c) {
    if (c > 0) line.append(gap, ' ');
    const std::string cell = c < cells.size() ? cut(oneLine(cells[c]), widths_[c]) : "";
    const std::size_t padding = widths_[c] - displayWidth(cell);
    if (columns_[c].align == TextAlign::right) line.append(padding, ' ');
    line += cell;
    if (columns_[c].align == TextAlign::left) line.append(padding, ' ');
  }
  line.erase(line.find_last_not_of(' ') + 1);
  line += '\n';
  return line;
}

void TextTable::addRow(std::vector<std::string> cells) {
  layout_.measure(cells);
  rows_.push_back(std::move(cells));
}

std::string TextTable::text() const {
  TableLayout layout = layout_;
  std::string text = layout.head();
  for (const auto& row : rows_) text += layout.line(row);
  return text;
}

std::string wrapped(std::string_view text, std::size_t indent) {
  const std::string words = oneLine(text);
  const std::string margin(indent, ' ');
  std::string result, line;
  const auto endLine = [&] {
    if (!line.empty()) result += margin + line + "\n";
    line.clear();
  };
  for (std::size_t at = 0; at < words.size();) {
    const std::size_t end = std::min(words.find(' ', at), words.size());
    const std::string word = words.substr(at, end - at);
    at = end + 1;
    if (word.empty()) continue;
    const std::size_t width =
        indent + displayWidth(line) + displayWidth(word) + (line.empty() ? 0 : 1);
    if (width > terminalColumns) endLine();
    line += (line.empty() ? "" : " ") + word;
  }
  endLine();
  return result;
}

std::string counted(std::size_t count, const std::string& thing) {
  return counted(count, thing, thing + "s");
}

std::string counted(std::size_t count, const std::string& thing, const std::string& things) {
  return std::to_string(count) + " " + (count == 1 ? thing : things);
}

}  // namespace pelmora::cli
