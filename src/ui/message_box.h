// The standard message box: its codes, the answer that changes nothing, and its form without a
// window.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora {

// Style of a message box: one button set, plus flags.
namespace box_style {
inline constexpr int ok = 0;
inline constexpr int okCancel = 1;
inline constexpr int abortRetryIgnore = 2;
inline constexpr int yesNoCancel = 3;
inline constexpr int yesNo = 4;
inline constexpr int retryCancel = 5;
inline constexpr int buttonSetMask = 15;

inline constexpr int critical = 16;
inline constexpr int question = 32;
inline constexpr int exclamation = 48;
inline constexpr int information = 64;
inline constexpr int iconMask = 112;

inline constexpr int defaultButton2 = 256;
inline constexpr int defaultButton3 = 512;
inline constexpr int defaultButton4 = 768;
inline constexpr int defaultButtonMask = 768;

inline constexpr int systemModal = 4096;
}  // namespace box_style

// What a message box answers: the button that was pressed.
namespace box_answer {
inline constexpr int ok = 1;
inline constexpr int cancel = 2;
inline constexpr int abort = 3;
inline constexpr int retry = 4;
inline constexpr int ignore = 5;
inline constexpr int yes = 6;
inline constexpr int no = 7;
}  // namespace box_answer

// The answer that changes nothing, for a box that nobody can answer: OK for a lone OK button, Abort
// for Abort/Retry/Ignore, No for Yes/No, Cancel for every other set. Flags of the style are
// ignored.
[[nodiscard]] int harmlessAnswer(int style) noexcept;

// A message box without a window: writes title and text to standard error and returns the harmless
// answer. It never asks: whatever waits on standard input is the host's. Control characters other
// than line ends and TAB are written as '?', so that a text from a database cannot steer a
// terminal.
int messageBoxOnStandardError(const std::string& text, int style, const std::string& title);

// Shows the calling thread's message box, platform().messageBox. Never throws: where there is none,
// or it throws, the harmless answer is the result.
int standardMessageBox(const std::string& text, int style, const std::string& title) noexcept;

}  // namespace pelmora
