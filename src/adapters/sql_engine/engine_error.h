// Error numbers of the database role beside those of the dialect and the run-time errors.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace pelmora::sql {

inline constexpr std::int32_t updateRefused = static_cast<std::int32_t>(0x80040E09U);
// The caller asked the operation to stop.
inline constexpr std::int32_t stopped = static_cast<std::int32_t>(0x80004004U);
inline constexpr std::int32_t constraintFailed = static_cast<std::int32_t>(0x80040E2FU);
// The server cannot be reached, or not any more.
inline constexpr std::int32_t connectionLost = 3151;
inline constexpr std::int32_t notUpdatable = 3251;
inline constexpr std::int32_t connectionClosed = 3709;
inline constexpr std::int32_t recordsetClosed = 3704;
inline constexpr std::int32_t alreadyOpen = 3705;
inline constexpr std::int32_t changesPending = 3219;

}  // namespace pelmora::sql
