// The classic run-time errors, by number and description.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/error.h>

#include <cstdint>

namespace pelmora {

enum class RunTimeError : std::int32_t {
  invalidArgument = 5,
  overflow = 6,
  outOfMemory = 7,
  outOfRange = 9,
  arrayFixed = 10,
  divisionByZero = 11,
  typeMismatch = 13,
  fileNotFound = 53,
  fileExists = 58,
  permissionDenied = 70,
  pathAccess = 75,
  noObject = 91,
  invalidNull = 94,
  invalidFileFormat = 321,
  noEngine = 429,
  endOfRows = 3021,
  noSuchField = 3265,
};

// "The generic failure": the database is locked by another user. The copy of stand data waits on it
// and tries again, so nothing that waiting cannot cure may carry it.
inline constexpr std::int32_t genericFailure = static_cast<std::int32_t>(0x80004005U);
// The caller asked the operation to stop.
inline constexpr std::int32_t operationStopped = static_cast<std::int32_t>(0x80004004U);
// The server of a database does not answer, or no longer.
inline constexpr std::int32_t connectionLost = 3151;
// Numbers of errors raised on purpose count from here.
inline constexpr std::int32_t errorBase = static_cast<std::int32_t>(0x80040000U);

// The error with its classic description ("Subscript out of range" ...) and source "Pelmora".
[[nodiscard]] Error makeError(RunTimeError number);

// The exception in flight as an Error: what is no Error becomes number 5 with its text, exhausted
// memory number 7. Call it inside a catch block only.
[[nodiscard]] Error currentError();

}  // namespace pelmora
