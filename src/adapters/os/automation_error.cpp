// SPDX-License-Identifier: MIT
#include "adapters/os/automation_error.h"

#include "adapters/os/wide_text.h"

#include <oleauto.h>

#include <utility>

namespace pelmora::os {
namespace {

std::string taken(BSTR& text) {
  if (text == nullptr) return {};
  const std::string utf8 = utf8Text({text, SysStringLen(text)});
  SysFreeString(std::exchange(text, nullptr));
  return utf8;
}

std::int32_t numberOf(SCODE code) {
  constexpr SCODE controlErrors = static_cast<SCODE>(0x800A0000U);
  constexpr SCODE facility = static_cast<SCODE>(0xFFFF0000U);
  return (code & facility) == controlErrors ? code & 0xFFFF : code;
}

}  // namespace

Error automationError(HRESULT result, EXCEPINFO& exception, const std::string& otherwise) {
  if (result != DISP_E_EXCEPTION) return {numberOf(result), "Pelmora", otherwise};
  if (exception.pfnDeferredFillIn != nullptr) exception.pfnDeferredFillIn(&exception);
  const std::string source = taken(exception.bstrSource);
  const std::string description = taken(exception.bstrDescription);
  (void)taken(exception.bstrHelpFile);
  return {exception.wCode != 0 ? exception.wCode : numberOf(exception.scode), source,
          description.empty() ? otherwise : description};
}

}  // namespace pelmora::os
