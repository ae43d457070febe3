// Records of the component and of automation.
// SPDX-License-Identifier: MIT
#pragma once

#include "bindings/com/pelmora_automation.h"

#include <pelmora/types.h>

namespace pelmora::com {

// What lies in `to` is overwritten, not freed. Errors: std::bad_alloc; the host owns what was
// stored so far.
void store(const DatabaseLocation& location, ::DatabaseLocation& to);
void store(const MeterInfo& meter, ::MeterInfo& to, ITypeLib& typeLibrary);

[[nodiscard]] DatabaseLocation locationFrom(const ::DatabaseLocation& location);

}  // namespace pelmora::com
