// The catalogue's own workload: six equations over simulated series.
// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::bench {

inline const std::vector<std::pair<std::string, std::string>>& catalogue() {
  static const std::vector<std::pair<std::string, std::string>> equations = [] {
    std::vector<std::pair<std::string, std::string>> list;
    std::string polynomial = "a+b*log(x)";
    for (int order = 2; order <= 10; ++order) {
      polynomial +=
          std::string("+") + static_cast<char>('a' + order) + "*log(x)^" + std::to_string(order);
      if (order >= 6) list.emplace_back("Polynomial order " + std::to_string(order), polynomial);
    }
    list.emplace_back("Powers of ln(x)",
                      "a+b*ln(x)+c/ln(x)+d*(ln(x))^2+e/(ln(x))^2+f*(ln(x))^3+g/"
                      "(ln(x))^3+h*(ln(x))^4+i/(ln(x))^4");
    return list;
  }();
  return equations;
}

struct Workload {
  std::vector<double> x, y;
};

// A rotor's curve over x = low ... 6000, spaced evenly in log(x), with 0.02 % noise; the same
// numbers every time.
inline Workload workload(std::size_t n, double low = 40) {
  Workload w;
  std::uint64_t state = 12345;
  const auto uniform = [&state] {
    state = state * 6364136223846793005U + 1442695040888963407U;
    return static_cast<double>(state >> 11U) * 0x1p-53 - 0.5;
  };
  for (std::size_t k = 0; k < n; ++k) {
    const double share = static_cast<double>(k) / static_cast<double>(n - 1);
    const double x = low * std::pow(6000 / low, share);
    const double t = std::log10(x);
    const double noise = 1 + 0.0002 * 3.46 * uniform();
    w.x.push_back(x);
    w.y.push_back(1318 * (1 - 0.06 * std::exp(-0.8 * t) + 0.004 * std::sin(1.7 * t)) * noise);
  }
  return w;
}

}  // namespace pelmora::bench
