// Error numbers of the database role beside those of the dialect and the run-time errors.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/run_time_error.h"

#include <cstdint>

namespace pelmora::sql {

inline constexpr std::int32_t updateRefused = static_cast<std::int32_t>(0x80040E09U);
inline constexpr std::int32_t constraintFailed = static_cast<std::int32_t>(0x80040E2FU);
using pelmora::connectionLost;
inline constexpr std::int32_t notUpdatable = 3251;
inline constexpr std::int32_t connectionClosed = 3709;
inline constexpr std::int32_t recordsetClosed = 3704;
inline constexpr std::int32_t alreadyOpen = 3705;
inline constexpr std::int32_t changesPending = 3219;

}  // namespace pelmora::sql
