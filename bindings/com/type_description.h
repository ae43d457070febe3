// The type information that the library carries.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/os/reference.h"

#include <windows.h>

#include <oaidl.h>

namespace pelmora::com {

struct TypeDescription {
  os::Reference<ITypeLib> library;
  os::Reference<ITypeInfo> dispatch;  // _RawData as scripts see it
  os::Reference<ITypeInfo> vtable;    // _RawData with its slots
  os::Reference<ITypeInfo> classInfo;
};

// Errors: what the system says; `types` is then unusable.
[[nodiscard]] HRESULT load(TypeDescription& types);

}  // namespace pelmora::com
