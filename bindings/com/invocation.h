// Late-bound calls. The system's own way of making them cannot leave out references, nor take
// variants by reference or records, everywhere the component runs. SPDX-License-Identifier: MIT
#pragma once

#include "bindings/com/type_description.h"

#include <windows.h>

#include <oaidl.h>

namespace pelmora::com {

struct LateCall {
  DISPID member = DISPID_UNKNOWN;
  WORD flags = 0;
  LCID locale = 0;
  DISPPARAMS* arguments = nullptr;
  VARIANT* result = nullptr;       // may be null
  EXCEPINFO* exception = nullptr;  // may be null
  UINT* wrongArgument = nullptr;   // may be null
};

// Calls the member of `object`, whose slots `vtable` describes. Arguments come in any order by
// name, may be left out where they are optional, and are converted where their type is another.
//
// Errors: those of IDispatch::Invoke; a failed member is DISP_E_EXCEPTION with its error object's
// texts.
[[nodiscard]] HRESULT invoke(ITypeInfo& vtable, void* object, const LateCall& call);

}  // namespace pelmora::com
