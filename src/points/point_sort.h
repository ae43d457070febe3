// The sort of points, without a host around it.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/error.h>
#include <pelmora/types.h>

#include <cstdint>
#include <functional>

namespace pelmora {

// What a sort does between its steps. Empty functions are not called.
struct SortWatch {
  // Once per pass: lets a host process its messages.
  std::function<void()> breathe;
  // Gets the error that ends a range; the ranges around it go on. Empty: the error is thrown.
  std::function<void(const Error&)> failed;
};

// quickSortPoints (<pelmora/types.h>) with the host's part in `watch`.
void sortPoints(PointArray& points, std::int16_t sortColumn, std::int16_t lastColumn,
                std::int16_t low, std::int16_t high, bool ascending, const SortWatch& watch = {});

// All rows, Roshko and Strouhal together, by rising `column`.
void sortAllPoints(PointArray& points, std::int16_t column, const SortWatch& watch = {});

}  // namespace pelmora
