// Shows windows through helper programs, one after the other or nested.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/dialog/window_request.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace pelmora::dialog {

struct WindowSettings {
  // Empty: where the library looks for it (os/helper_program.h).
  std::string helperProgram;
  // From the start of the helper until its window is on the screen.
  std::chrono::milliseconds readyWithin{3000};
  // A helper reports once a second that its display answers. After this long without a word the
  // window counts as lost: a remote display may be gone without a farewell.
  std::chrono::milliseconds silenceLimit{30'000};
  // How long a display that did not answer is not asked again, so that a series of messages does
  // not cost the wait each time.
  std::chrono::milliseconds refusal{60'000};
  // Called about twenty times a second while a window is open; may be empty.
  std::function<void()> pump;
};

class WindowHost {
 public:
  explicit WindowHost(WindowSettings settings);

  // Shows the window and waits for the operator: the code of the pressed button, or nothing if the
  // window was closed without one.
  //
  // Errors: 0x80004005 if there is no DISPLAY, no helper or no answer in time, or if the window is
  // lost; what `pump` throws. The helper has ended when this returns or throws.
  [[nodiscard]] std::optional<int> show(const WindowRequest& request);

 private:
  WindowSettings settings_;
  std::chrono::steady_clock::time_point refusedUntil_{};
};

}  // namespace pelmora::dialog
