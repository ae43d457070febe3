// SPDX-License-Identifier: MIT
#include "report/paper_picture.h"

#include "report/markup.h"
#include "report/svg_report.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string_view>
#include <utility>
#include <vector>

namespace pelmora::report {
namespace {

// The outline of a mark: where it starts, relative to its centre, and the path from there.
struct MarkShape {
  std::string_view key;
  double x, y;
  std::string_view way;
};

constexpr std::array shapes{
    MarkShape{"raw1", -4, 0, "a4 4 0 1 0 8 0a4 4 0 1 0-8 0"},
    MarkShape{"raw2", -3.6, -3.6, "h7.2v7.2h-7.2z"},
    MarkShape{"raw3", 0, -4.6, "l4.4 8h-8.8z"},
    MarkShape{"raw4", 0, -4.9, "l4.9 4.9-4.9 4.9-4.9-4.9z"},
    MarkShape{"cut", -4, -4, "l8 8m-8 0l8-8"},
    MarkShape{"out", -4, -4, "h8v8h-8zm0 4h8m-4-4v8"},
    MarkShape{"merged", -1.5, 0, "a1.5 1.5 0 1 0 3 0a1.5 1.5 0 1 0-3 0"},
};

const MarkShape& shapeOf(std::string_view key) {
  for (const MarkShape& shape : shapes) {
    if (key.starts_with(shape.key)) return shape;
  }
  return shapes.front();
}

// The places of a path that PlotPanel has written: the first one absolute, the others relative.
std::vector<std::pair<double, double>> placesOf(std::string_view path) {
  std::vector<double> numbers;
  for (std::size_t at = 0; at < path.size();) {
    double value = 0;
    const auto [end, trouble] = std::from_chars(path.data() + at, path.data() + path.size(), value);
    if (trouble != std::errc()) {
      ++at;  // a letter or a blank
      continue;
    }
    numbers.push_back(value);
    at = static_cast<std::size_t>(end - path.data());
  }
  std::vector<std::pair<double, double>> places;
  double x = 0, y = 0;
  for (std::size_t i = 0; i + 1 < numbers.size(); i += 2) {
    x += numbers[i];
    y += numbers[i + 1];
    places.emplace_back(x, y);
  }
  return places;
}

std::string marks(std::string_view key, std::string_view path) {
  const MarkShape& shape = shapeOf(key);
  std::string d;
  for (const auto& [x, y] : placesOf(path)) {
    d += "M" + coordinate(x + shape.x) + " " + coordinate(y + shape.y);
    d += shape.way;
  }
  const std::string cssClass = key == "merged" ? "km" : "k" + std::string(1, key.back());
  return "<path class=\"" + cssClass + "\" d=\"" + d + "\"/>";
}

std::string withPlainColours(std::string style) {
  const std::string colours = lightColours();
  for (auto at = style.find("var("); at != std::string::npos; at = style.find("var(", at)) {
    const auto end = style.find(')', at);
    const std::string name = style.substr(at + 4, end - at - 4) + ":";
    const auto value = colours.find(name) + name.size();
    style.replace(at, end + 1 - at, colours.substr(value, colours.find(';', value) - value));
  }
  return style;
}

}  // namespace

std::string paperPicture(const std::string& svg) {
  constexpr std::string_view begin = "<path class=\"dots ";
  if (svg.empty()) return svg;
  const auto inside = svg.find('>') + 1;
  std::string result =
      svg.substr(0, inside) + "<style>" + withPlainColours(plotStyle()) + "</style>";
  std::size_t at = inside;
  for (auto next = svg.find(begin); next != std::string::npos; next = svg.find(begin, at)) {
    result += svg.substr(at, next - at);
    const auto key = next + begin.size(), keyEnd = svg.find('"', key);
    const auto path = svg.find("d=\"", keyEnd) + 3, pathEnd = svg.find('"', path);
    const std::string_view all(svg);
    result += marks(all.substr(key, keyEnd - key), all.substr(path, pathEnd - path));
    at = svg.find("/>", pathEnd) + 2;
  }
  return result + svg.substr(at);
}

}  // namespace pelmora::report
