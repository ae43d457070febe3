// What a proof sheet adds up over the rows of a table.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/types.h>

#include <cstdint>
#include <span>

namespace pelmora::calibration {

// Of the types and values, numbers bit for bit: 0 and -0 differ.
[[nodiscard]] std::uint64_t rowChecksum(std::span<const Value> row);

}  // namespace pelmora::calibration
