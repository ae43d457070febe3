// SPDX-License-Identifier: MIT
#include "adapters/ado/ado_value.h"

#include "adapters/os/wide_text.h"
#include "base/run_time_error.h"

#include <array>
#include <cstdio>
#include <limits>

namespace pelmora::ado {
namespace {

std::string dateText(DATE date) {
  SYSTEMTIME time{};
  if (VariantTimeToSystemTime(date, &time) == 0) throw makeError(RunTimeError::typeMismatch);
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%04u-%02u-%02u %02u:%02u:%02u", time.wYear, time.wMonth,
                time.wDay, time.wHour, time.wMinute, time.wSecond);
  return text.data();
}

}  // namespace

Value valueFrom(const Variant& variant) {
  Variant plain;
  if (FAILED(VariantCopyInd(&plain.get(), variant.toRead())))
    throw makeError(RunTimeError::typeMismatch);
  VARTYPE wanted = VT_R8;
  switch (plain.get().vt) {
    case VT_EMPTY:
    case VT_NULL: return {};
    case VT_BSTR: return os::utf8Text({plain.get().bstrVal, SysStringLen(plain.get().bstrVal)});
    case VT_DATE: return dateText(plain.get().date);
    case VT_R4:
    case VT_R8:
    case VT_CY:
    case VT_DECIMAL: break;
    default: wanted = VT_I8;
  }
  Variant number;
  if (FAILED(VariantChangeType(&number.get(), &plain.get(), 0, wanted))) {
    throw makeError(RunTimeError::typeMismatch);
  }
  if (wanted == VT_R8) return number.get().dblVal;
  return std::int64_t{number.get().llVal};
}

Variant variantFrom(const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return Variant(*text);
  Variant variant;
  VARIANT& out = variant.get();
  if (const auto* real = std::get_if<double>(&value)) {
    out.vt = VT_R8;
    out.dblVal = *real;
  } else if (const auto* whole = std::get_if<std::int64_t>(&value)) {
    if (*whole >= std::numeric_limits<LONG>::min() && *whole <= std::numeric_limits<LONG>::max()) {
      return Variant(static_cast<LONG>(*whole));
    }
    out.vt = VT_R8;
    out.dblVal = static_cast<double>(*whole);
  } else {
    out.vt = VT_NULL;
  }
  return variant;
}

}  // namespace pelmora::ado
