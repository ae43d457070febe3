// SPDX-License-Identifier: MIT
#include "bindings/com/text.h"

#include "adapters/os/wide_text.h"

#include <new>

namespace pelmora::com {

Text textFrom(const std::string& utf8) {
  const std::wstring wide = os::wideText(utf8);
  Text text(SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size())));
  if (!text) throw std::bad_alloc();
  return text;
}

std::string utf8From(BSTR text) {
  return text == nullptr ? std::string() : os::utf8Text({text, SysStringLen(text)});
}

}  // namespace pelmora::com
