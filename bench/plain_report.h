// The stored report as a plain program would write it: what it finds, and the points with 15
// digits. SPDX-License-Identifier: MIT
#pragma once

#include "bench/plain_fit.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <string>
#include <vector>

namespace pelmora::bench {

inline void append(std::string& report, double number) {
  std::array<char, 40> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                 std::chars_format::general, 15);
  report.append(digits.data(), end.ptr);
}

inline void appendPoints(std::string& report, const std::vector<double>& x,
                         const std::vector<double>& y) {
  for (std::size_t i = 0; i < x.size(); ++i) {
    report += std::to_string(i) + ":\t";
    append(report, x[i]);
    report += '\t';
    append(report, y[i]);
    report += "\r\n";
  }
}

// What the stored report has: equation, parameters, curve and points.
inline std::string reportOf(const std::string& serial, const std::string& series,
                            const PlainPoints& points, const PlainFit& fit) {
  std::string report = "\t\tMeter Serial Number: " + serial + "\r\n\t\tSeries Name: " + series +
                       "\r\nParameter Results:\r\n";
  for (std::size_t i = 0; i < fit.parameters.size(); ++i) {
    report += static_cast<char>('a' + static_cast<int>(i));
    report += " = ";
    append(report, fit.parameters[i]);
    report += ", Standard Error = ";
    append(report, fit.errors[i]);
    report += "\r\n";
  }
  report += "\r\nPredicted Roshko/Strouhal\r\n";
  appendPoints(report, fit.grid, fit.curve);
  report += "\r\nRaw Roshko/Strouhal\r\n";
  appendPoints(report, points.x, points.y);
  return report;
}

}  // namespace pelmora::bench
