// Fits and curves as bytes, for pickle: by value, without the points' database.
// SPDX-License-Identifier: MIT
#pragma once

#include "bindings/python/module/curve_handle.h"
#include "bindings/python/module/fit_result.h"

#include <string>
#include <string_view>

namespace pelmora::python {

[[nodiscard]] std::string bytesOf(const FitResult& fit);
[[nodiscard]] std::string bytesOf(const CurveHandle& curve);

// Errors: BadData for bytes from another version of Pelmora or another kind of machine, and for
//         damaged ones.
[[nodiscard]] FitResult fitFrom(std::string_view bytes);
[[nodiscard]] CurveHandle curveFrom(std::string_view bytes);

}  // namespace pelmora::python
