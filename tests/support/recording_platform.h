// A platform for one test that writes down its message boxes and counts its message pumps.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/journal.h"

#include <pelmora/platform.h>

#include <functional>
#include <string>
#include <utility>

namespace pelmora::test {

// Replaces the thread's platform while it lives. A box is the line "box: text|style|title".
class RecordingPlatform {
 public:
  explicit RecordingPlatform(Journal& journal) : saved_(std::exchange(platform(), {})) {
    platform().messageBox = [this, &journal](const std::string& text, int style,
                                             const std::string& title) {
      journal.push_back("box: " + text + "|" + std::to_string(style) + "|" + title);
      return answer ? answer(text) : 1;
    };
    platform().pumpMessages = [this] {
      ++pumps;
      if (onPump) onPump();
    };
  }
  ~RecordingPlatform() { platform() = std::move(saved_); }
  RecordingPlatform(const RecordingPlatform&) = delete;
  RecordingPlatform& operator=(const RecordingPlatform&) = delete;

  std::function<int(const std::string& text)> answer;  // of the operator; OK where there is none
  std::function<void()> onPump;
  int pumps = 0;

 private:
  Platform saved_;
};

}  // namespace pelmora::test
