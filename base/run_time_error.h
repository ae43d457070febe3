// The classic run-time errors, by number and description.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/error.h>

#include <cstdint>

namespace pelmora {

enum class RunTimeError : std::int32_t {
  invalidArgument = 5,
  overflow = 6,
  outOfRange = 9,
  divisionByZero = 11,
  typeMismatch = 13,
  pathAccess = 75,
  invalidNull = 94,
  noEngine = 429,
  endOfRows = 3021,
  noSuchField = 3265,
};

// "The generic failure": the database is locked by another user, or cannot be opened or read.
inline constexpr std::int32_t genericFailure = static_cast<std::int32_t>(0x80004005U);
// Numbers of errors raised on purpose count from here.
inline constexpr std::int32_t errorBase = static_cast<std::int32_t>(0x80040000U);

// The error with its classic description ("Subscript out of range" ...) and source "Pelmora".
[[nodiscard]] Error makeError(RunTimeError number);

}  // namespace pelmora
