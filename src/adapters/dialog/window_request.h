// What the host asks its helper program to draw, and how that travels.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::dialog {

// Pixels; the origin is the upper left corner of the window's client area.
struct WindowArea {
  int left = 0, top = 0, width = 0, height = 0;
  bool operator==(const WindowArea&) const = default;
};

struct WindowButton {
  std::string caption;  // "&" stands before the mnemonic
  int code = 0;
  WindowArea area;
  bool operator==(const WindowButton&) const = default;
};

enum class WindowIcon { none, critical, question, exclamation, information };

struct WindowRequest {
  std::string title, text;  // UTF-8
  int width = 0, height = 0;
  WindowArea textArea;
  WindowIcon icon = WindowIcon::none;  // drawn left of the text area
  bool growsWithText = false;          // false: a text that is too long for its area is scrolled
  int focusedButton = 0;               // index in `buttons`
  std::vector<WindowButton> buttons;
  bool operator==(const WindowRequest&) const = default;
};

// On the wire: a header of fixed size with the size of the body, then the body, a sequence of
// length-prefixed fields ("5:hello"). The helper answers in lines:
//   ready        the window is on the screen
//   alive        once a second: the display still answers
//   answer CODE  that button was pressed; the last line
//   closed       closed without a button (close box, Escape); the last line
inline constexpr std::size_t wireHeaderSize = 26;
// Longer requests are refused by both sides.
inline constexpr std::size_t wireBodyLimit = 1U << 20U;

[[nodiscard]] std::string toWire(const WindowRequest& request);
// Size of the body that follows; empty if this is not a header or the body is too long.
[[nodiscard]] std::optional<std::size_t> bodySizeFromWire(std::string_view header);
// Empty if the body is malformed.
[[nodiscard]] std::optional<WindowRequest> bodyFromWire(std::string_view body);

}  // namespace pelmora::dialog
