// SPDX-License-Identifier: MIT
#include "curves/table_size.h"

#include "curves/predicted_curve.h"

#include <algorithm>
#include <cmath>

namespace pelmora {

ReadingError worstReadingError(const CurveSamples& curve, std::span<const double> tableX,
                               std::span<const double> tableY) {
  std::vector<double> middles;
  for (std::size_t i = 0; i + 1 < tableX.size(); ++i)
    middles.push_back((tableX[i] + tableX[i + 1]) / 2);
  const std::vector<double> exact = curve(middles);
  ReadingError worst;
  for (std::size_t i = 0; i < middles.size(); ++i) {
    const double read = (tableY[i] + tableY[i + 1]) / 2;
    const double percent = 100 * std::abs(read - exact[i]) / std::abs(exact[i]);
    if (percent > worst.percent) worst = {percent, tableX[i], tableX[i + 1]};
  }
  return worst;
}

std::int32_t tablePointsFor(const CurveSamples& curve, double low, double high, std::int32_t points,
                            double limitPercent) {
  const auto tens = [](double count) {
    return 10 * static_cast<std::int32_t>(std::ceil(count / 10));
  };
  const auto errorOf = [&](std::int32_t count) {
    const std::vector<double> x = logSpacedGrid(low, high, count - 1);
    return worstReadingError(curve, x, curve(x)).percent;
  };
  std::int32_t count = std::max(tens(points), 10);
  while (count <= mostTablePoints) {
    const double error = errorOf(count);
    if (error <= limitPercent) return count;
    // The error falls with the square of the spacing.
    const double needed = 1 + (count - 1) * std::sqrt(error / limitPercent);
    count = std::isfinite(needed) ? std::max(count + 10, tens(std::min(needed, 1e6)))
                                  : mostTablePoints + 1;
  }
  return 0;
}

}  // namespace pelmora
