// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/plot_canvas.h"

#include <algorithm>
#include <array>

namespace pelmora::cli {
namespace {

// The dots of a Braille character: two columns of four.
constexpr std::size_t dotsAcross = 2, dotsDown = 4;

// Which of `count` equal steps from 0 to 1 a place lies in; `count` if it lies outside.
std::size_t stepOf(double place, std::size_t count) {
  if (!(place >= 0 && place <= 1)) return count;
  return std::min(count - 1, static_cast<std::size_t>(place * static_cast<double>(count)));
}

// U+2800 and a bit for each dot. Source: Unicode Standard, Braille Patterns.
std::string braille(std::uint8_t dots) {
  constexpr std::array<std::uint8_t, 8> bits{0x01, 0x02, 0x04, 0x40, 0x08, 0x10, 0x20, 0x80};
  unsigned pattern = 0;
  for (std::size_t i = 0; i < bits.size(); ++i) {
    if ((dots >> i & 1U) != 0) pattern |= bits[i];
  }
  return {static_cast<char>(0xE2), static_cast<char>(0xA0U | (pattern >> 6)),
          static_cast<char>(0x80U | (pattern & 0x3FU))};
}

// By the highest dot of the cell.
char asciiDot(std::uint8_t dots) {
  const unsigned rows = (dots | dots >> dotsDown) & 0x0FU;
  if ((rows & 0x03U) != 0) return '\'';
  return (rows & 0x04U) != 0 ? '-' : '.';
}

std::string inked(const std::string& text, int ink) {
  return ink == 0 ? text : "\033[" + std::to_string(30 + ink) + "m" + text + "\033[0m";
}

}  // namespace

PlotCanvas::PlotCanvas(std::size_t columns, std::size_t rows)
    : columns_(columns), rows_(rows), cells_(columns * rows) {}

void PlotCanvas::dot(double x, double y, int ink) {
  const std::size_t column = stepOf(x, columns_ * dotsAcross);
  const std::size_t row = stepOf(1 - y, rows_ * dotsDown);
  if (column == columns_ * dotsAcross || row == rows_ * dotsDown) return;
  Cell& cell = cells_[row / dotsDown * columns_ + column / dotsAcross];
  const std::size_t bit = column % dotsAcross * dotsDown + row % dotsDown;
  cell.dots = static_cast<std::uint8_t>(cell.dots | 1U << bit);
  if (ink != 0) cell.ink = ink;
}

void PlotCanvas::mark(double x, double y, const PlotMark& mark) {
  const std::size_t column = stepOf(x, columns_), row = stepOf(1 - y, rows_);
  if (column == columns_ || row == rows_) return;
  cells_[row * columns_ + column].mark = mark;
}

std::string PlotCanvas::textOf(const Cell& cell, PlotStyle style) {
  const bool isAscii = style == PlotStyle::ascii;
  if (!cell.mark.character.empty())
    return isAscii ? std::string(1, cell.mark.ascii) : cell.mark.character;
  if (cell.dots == 0) return " ";
  return isAscii ? std::string(1, asciiDot(cell.dots)) : braille(cell.dots);
}

std::vector<std::string> PlotCanvas::lines(PlotStyle style, bool isColoured) const {
  std::vector<std::string> lines(rows_);
  for (std::size_t row = 0; row < rows_; ++row) {
    std::string gap;
    for (std::size_t column = 0; column < columns_; ++column) {
      const Cell& cell = cells_[row * columns_ + column];
      const std::string text = textOf(cell, style);
      if (text == " ") {
        gap += text;
        continue;
      }
      const int ink = cell.mark.character.empty() ? cell.ink : cell.mark.ink;
      lines[row] += gap + (isColoured ? inked(text, ink) : text);
      gap.clear();
    }
  }
  return lines;
}

}  // namespace pelmora::cli
