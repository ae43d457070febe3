// Windows for the component's messages, for hosts that want them.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>
#include <pelmora/platform.h>

#include <chrono>
#include <string>

namespace pelmora {

struct DialogOptions {
  // The program that draws the window. Empty: pelmora-dialog beside the library or, installed, in
  // libexec/pelmora.
  std::string helperProgram;
  // Longest wait for the window to appear; a display that does not answer costs this once a minute.
  std::chrono::milliseconds readyWithin{3000};
};

// Lets the component open windows on this platform: sets createFormPresenter and messageBox. No
// host gets a window without this call.
//
// Each window is a process of its own, so that its end cannot be the host's. While one is open,
// platform.pumpMessages is called some twenty times a second. Where a window cannot be shown (no
// DISPLAY, no helper program, no answer in time) or is lost (killed, crashed, display gone), the
// messageBox that the platform had before this call answers. Closing a message box without a button
// gives the answer that changes nothing; closing the component's own form gives 2 (Cancel).
//
//   pelmora::useDialogs(pelmora::platform());
//
// Call it once per platform; what the host sets afterwards replaces what was set here.
// Lifetime: `platform` must live as long as what was set is used, as platform() does.
// Available where the library was built with PELMORA_WITH_DIALOG.
PELMORA_API void useDialogs(Platform& platform, const DialogOptions& options = {});

}  // namespace pelmora
