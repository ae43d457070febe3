// Windows for the component's messages, for hosts that want them.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>
#include <pelmora/platform.h>

#include <chrono>
#include <string>

namespace pelmora {

struct DialogOptions {
  // The program that draws the window. Empty: pelmora-dialog beside the library or, if installed,
  // in libexec/pelmora.
  std::string helperProgram;
  // How long to wait for the window to appear. A dead display costs this much once a minute.
  std::chrono::milliseconds readyWithin{3000};
};

// Lets the component open windows on this platform: sets createFormPresenter and messageBox. No
// host gets a window without this call.
//
// Each window is a separate process, so it cannot take the host down with it. While one is open,
// platform.pumpMessages is called about twenty times a second. If a window cannot be shown (no
// DISPLAY, no helper program, no answer in time) or is lost (killed, crashed, display gone), the
// platform's previous messageBox answers. Closing a message box without pressing a button gives
// the answer that changes nothing; closing the component's own form gives 2 (Cancel).
//
//   pelmora::useDialogs(pelmora::platform());
//
// Call it once per platform; you may replace what it sets afterwards.
// Lifetime: `platform` must outlive every use of what is set here, as platform() does.
// Available if the library was built with PELMORA_WITH_DIALOG.
PELMORA_API void useDialogs(Platform& platform, const DialogOptions& options = {});

}  // namespace pelmora
