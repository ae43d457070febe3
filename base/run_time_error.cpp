// SPDX-License-Identifier: MIT
#include "base/run_time_error.h"

#include <utility>

namespace pelmora {

Error::Error(std::int32_t number, std::string source, const std::string& description)
    : std::runtime_error(description), number_(number), source_(std::move(source)) {}

Error::~Error() = default;

namespace {

const char* description(RunTimeError number) {
  switch (number) {
    case RunTimeError::invalidArgument: return "Invalid procedure call or argument";
    case RunTimeError::overflow: return "Overflow";
    case RunTimeError::outOfRange: return "Subscript out of range";
    case RunTimeError::divisionByZero: return "Division by zero";
    case RunTimeError::typeMismatch: return "Type mismatch";
    case RunTimeError::pathAccess: return "Path/File access error";
    case RunTimeError::invalidNull: return "Invalid use of Null";
    case RunTimeError::noEngine: return "ActiveX component can't create object";
    case RunTimeError::endOfRows:
      return "Either BOF or EOF is True, or the current record has been deleted. Requested operation "
             "requires a current record.";
    case RunTimeError::noSuchField:
      return "Item cannot be found in the collection corresponding to the requested name or ordinal.";
  }
  return "Application-defined or object-defined error";
}

}  // namespace

Error makeError(RunTimeError number) {
  return {static_cast<std::int32_t>(number), "Pelmora", description(number)};
}

}  // namespace pelmora
