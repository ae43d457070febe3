// A display without a screen (Xvfb), and an operator who uses it (xdotool).
// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <string>

namespace pelmora::test {

class VirtualDisplay {
 public:
  // Starts a server on a free display number and makes it this program's DISPLAY. isRunning() is
  // false where the programs are not installed.
  VirtualDisplay();
  ~VirtualDisplay();
  VirtualDisplay(const VirtualDisplay&) = delete;
  VirtualDisplay& operator=(const VirtualDisplay&) = delete;

  [[nodiscard]] bool isRunning() const { return server_ > 0; }
  // As a crash of the server would.
  void kill();

  // Waits for the window with this title; its X identity, 0 if it does not come in 20 seconds.
  [[nodiscard]] unsigned long window(const std::string& title) const;
  [[nodiscard]] bool hasWindow(const std::string& title) const;
  // Moves the pointer into the window, which takes the keyboard there, and types
  // ("Return", "alt+r", ...).
  void type(unsigned long window, const std::string& keys) const;
  void click(unsigned long window, int x, int y) const;
  void pressCloseBox(unsigned long window) const;
  void screenshot(unsigned long window, const std::string& pngFile) const;
  // Width and height, as "420x152".
  [[nodiscard]] std::string sizeOf(unsigned long window) const;

 private:
  pid_t server_ = -1;
};

// What a shell command wrote.
[[nodiscard]] std::string outputOf(const std::string& command);

}  // namespace pelmora::test
