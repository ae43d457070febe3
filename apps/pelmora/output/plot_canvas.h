// A drawing made of characters: lines of Braille dots, and a mark for each point.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace pelmora::cli {

// How a point is drawn. `ink` is 0 for none, or 1 to 6 for a colour of the terminal.
struct PlotMark {
  std::string character;  // one column wide
  char ascii = 'o';
  int ink = 0;
};

enum class PlotStyle { unicode, ascii };

// Places run from 0 to 1, from left to right and from bottom to top; those outside are not drawn.
class PlotCanvas {
 public:
  PlotCanvas(std::size_t columns, std::size_t rows);

  void dot(double x, double y, int ink = 0);
  // Replaces the dots of its cell; of two marks in one cell, the later one stays.
  void mark(double x, double y, const PlotMark& mark);

  // How many places side by side a line of dots can tell apart.
  [[nodiscard]] std::size_t dotColumns() const { return columns_ * 2; }
  // One text for each row, without blanks at its end.
  [[nodiscard]] std::vector<std::string> lines(PlotStyle style, bool isColoured) const;

 private:
  struct Cell {
    std::uint8_t dots = 0;  // bit column * 4 + row, rows from the top
    int ink = 0;
    PlotMark mark{"", ' ', 0};
  };
  [[nodiscard]] static std::string textOf(const Cell& cell, PlotStyle style);

  std::size_t columns_, rows_;
  std::vector<Cell> cells_;
};

}  // namespace pelmora::cli
