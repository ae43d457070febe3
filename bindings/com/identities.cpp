// The identities that the interface description names.
// SPDX-License-Identifier: MIT
#include <windows.h>

#include <oaidl.h>
#include <ocidl.h>

// After the system's headers, so that only the component's own identities are defined here.
#include <initguid.h>

#include "bindings/com/pelmora_automation.h"
