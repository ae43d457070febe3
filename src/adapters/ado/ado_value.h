// Database values of the component and of ADO.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/ado/late_bound.h"

#include <pelmora/types.h>

namespace pelmora::ado {

// Dates become texts "2024-01-31 23:59:59", money and decimals doubles, Yes/No -1 and 0.
//
// Errors: Error 13 (type mismatch) for pictures and other objects.
[[nodiscard]] Value valueFrom(const Variant& variant);
// Whole numbers become 32-bit integers where they fit, else doubles: Access knows no larger ones.
[[nodiscard]] Variant variantFrom(const Value& value);

}  // namespace pelmora::ado
