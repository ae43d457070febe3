// SPDX-License-Identifier: MIT
#include "base/run_time_error.h"

#include <exception>
#include <new>
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
    case RunTimeError::outOfMemory: return "Out of memory";
    case RunTimeError::outOfRange: return "Subscript out of range";
    case RunTimeError::arrayFixed: return "This array is fixed or temporarily locked";
    case RunTimeError::divisionByZero: return "Division by zero";
    case RunTimeError::typeMismatch: return "Type mismatch";
    case RunTimeError::fileNotFound: return "File not found";
    case RunTimeError::fileExists: return "File already exists";
    case RunTimeError::permissionDenied: return "Permission denied";
    case RunTimeError::noObject: return "Object variable or With block variable not set";
    case RunTimeError::invalidFileFormat: return "Invalid file format";
    case RunTimeError::pathAccess: return "Path/File access error";
    case RunTimeError::invalidNull: return "Invalid use of Null";
    case RunTimeError::noEngine: return "ActiveX component can't create object";
    case RunTimeError::endOfRows:
      return "Either BOF or EOF is True, or the current record has been deleted. Requested "
             "operation "
             "requires a current record.";
    case RunTimeError::noSuchField:
      return "Item cannot be found in the collection corresponding to the requested name or "
             "ordinal.";
  }
  return "Application-defined or object-defined error";
}

}  // namespace

Error makeError(RunTimeError number) {
  return {static_cast<std::int32_t>(number), "Pelmora", description(number)};
}

Error currentError() {
  try {
    throw;
  } catch (const Error& error) {
    return error;
  } catch (const std::bad_alloc&) {
    return makeError(RunTimeError::outOfMemory);
  } catch (const std::exception& error) {
    return {static_cast<std::int32_t>(RunTimeError::invalidArgument), "Pelmora", error.what()};
  } catch (...) {
    return makeError(RunTimeError::invalidArgument);
  }
}

}  // namespace pelmora
