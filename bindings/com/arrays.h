// Arrays of the component and of automation (SAFEARRAY).
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/types.h>

#include <windows.h>

#include <oleauto.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace pelmora::com {

struct FreeArray {
  void operator()(SAFEARRAY* array) const noexcept { SafeArrayDestroy(array); }
};
using Array = std::unique_ptr<SAFEARRAY, FreeArray>;

// A null array is an array without bounds, in both directions. Arrays that come from here start at
// 0; those that the host gives may start anywhere, their first element counts as element 0.
//
// Errors: Error 13 (type mismatch) if type or number of dimensions is another; std::bad_alloc.

// Whether the host keeps the array where it is: fixed, static, on its stack, or locked. Such an
// array can be read, but another one cannot take its place.
[[nodiscard]] bool isFixed(const SAFEARRAY* array);

// (point, column). Doubles of another number of dimensions become an array of one column, which
// operations refuse where they reach its points, and not before.
[[nodiscard]] Array arrayFrom(const PointArray& points);
[[nodiscard]] PointArray pointsFrom(SAFEARRAY* array);
[[nodiscard]] Array arrayFrom(const std::vector<std::string>& texts);
[[nodiscard]] std::vector<std::string> textsFrom(SAFEARRAY* array);
[[nodiscard]] Array arrayFrom(const std::vector<std::int16_t>& numbers);
// (column, row), of variants
[[nodiscard]] Array arrayFrom(const ValueTable& table);

}  // namespace pelmora::com
