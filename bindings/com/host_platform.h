// The world around the component inside a Windows host.
// SPDX-License-Identifier: MIT
#pragma once

namespace pelmora::com {

// Once per thread: the system's message box, the message form as a native dialog, and the pump of
// the thread's window messages.
void preparePlatform();

}  // namespace pelmora::com
