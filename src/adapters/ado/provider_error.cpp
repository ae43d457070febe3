// SPDX-License-Identifier: MIT
#include "adapters/ado/provider_error.h"

#include "adapters/ado/late_bound.h"
#include "adapters/os/wide_text.h"

#include <optional>
#include <string>

namespace pelmora::ado {
namespace {

// Number 0: any. Nothing where the connection has no such list.
std::optional<Error> listedFailure(IDispatch* connection, std::int32_t number) {
  try {
    LateBound errors =
        LateBound(os::Reference<IDispatch>::to(connection)).objectProperty(L"Errors");
    const LONG count = errors.numberProperty(L"Count");
    for (LONG i = 0; i < count; ++i) {
      LateBound error = errors.objectProperty(L"Item", {Variant(i)});
      const LONG listed = error.numberProperty(L"Number");
      const bool isWarning = listed >= 0;
      if (isWarning || (number != 0 && listed != number)) continue;
      return Error(listed, error.textProperty(L"Source"), error.textProperty(L"Description"));
    }
  } catch (const Error&) {  // the call that failed is the trouble, not this one
  }
  return std::nullopt;
}

}  // namespace

Error completed(const Error& told, IDispatch* connection, const wchar_t* member) {
  std::int32_t number = told.number();
  std::string source = told.source();
  std::string description = told.what();
  if (const auto listed = listedFailure(connection, number)) {
    number = listed->number();
    source = listed->source();
    if (description.empty()) description = listed->what();
  }
  if (number == 0) number = DISP_E_EXCEPTION;
  if (description.empty())
    description = "The database connection failed in '" + os::utf8Text(member) + "'";
  return {number, source, description};
}

}  // namespace pelmora::ado
