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
std::string cut(const std::string& text, std::size_t width) {
  if (displayWidth(text) <= width) return text;
  std::string result;
  std::size_t characters = 0;
  for (const char c : text) {
    if (startsCharacter(c) && ++characters > width - 3) break;
    result += c;
  }
  return result + "...";
}

std::string aligned(const std::string& text, std::size_t width, TextTable::Align align) {
  const std::string padding(width - displayWidth(text), ' ');
  return align == TextTable::Align::left ? text + padding : padding + text;
}

}  // namespace

std::size_t displayWidth(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), startsCharacter));
}

void TextTable::addRow(const std::vector<std::string>& cells) {
  std::vector<std::string> row;
  for (std::size_t c = 0; c < columns_.size(); ++c)
    row.push_back(oneLine(c < cells.size() ? cells[c] : ""));
  rows_.push_back(std::move(row));
}

std::vector<std::size_t> TextTable::widths() const {
  std::vector<std::size_t> widths;
  for (std::size_t c = 0; c < columns_.size(); ++c) {
    std::size_t width = displayWidth(columns_[c].title);
    for (const auto& row : rows_) width = std::max(width, displayWidth(row[c]));
    widths.push_back(width);
  }
  const auto total = [&] {
    return std::accumulate(widths.begin(), widths.end(), gap * (widths.size() - 1));
  };
  while (total() > terminalColumns) {
    std::size_t widest = columns_.size();
    for (std::size_t c = 0; c < columns_.size(); ++c) {
      const bool canShrink = columns_[c].align == Align::left && widths[c] > narrowest;
      if (canShrink && (widest == columns_.size() || widths[c] > widths[widest])) widest = c;
    }
    if (widest == columns_.size()) break;
    --widths[widest];
  }
  return widths;
}

std::string TextTable::text() const {
  const auto columnWidths = widths();
  std::string text;
  const auto addLine = [&](const auto& cellOf) {
    std::string line;
    for (std::size_t c = 0; c < columns_.size(); ++c) {
      if (c > 0) line.append(gap, ' ');
      line += aligned(cut(cellOf(c), columnWidths[c]), columnWidths[c], columns_[c].align);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + "\n";
  };
  addLine([&](std::size_t c) { return columns_[c].title; });
  addLine([&](std::size_t c) { return std::string(columnWidths[c], '-'); });
  for (const auto& row : rows_) addLine([&](std::size_t c) { return row[c]; });
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
