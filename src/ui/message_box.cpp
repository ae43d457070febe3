// SPDX-License-Identifier: MIT
#include "ui/message_box.h"

#include <pelmora/platform.h>

#include <cstdio>

namespace pelmora {

namespace {

std::string printable(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const bool isCrLf = c == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
    if (isCrLf) continue;
    const bool isControl = static_cast<unsigned char>(c) < 32 || c == 127;
    result += isControl && c != '\n' && c != '\t' ? '?' : c;
  }
  return result;
}

}  // namespace

int harmlessAnswer(int style) noexcept {
  switch (style & box_style::buttonSetMask) {
    case box_style::ok: return box_answer::ok;
    case box_style::abortRetryIgnore: return box_answer::abort;
    case box_style::yesNo: return box_answer::no;
    default: return box_answer::cancel;
  }
}

int messageBoxOnStandardError(const std::string& text, int style, const std::string& title) {
  std::string lines;
  if (!title.empty()) lines += printable(title) + ": ";
  lines += printable(text) + "\n";
  // One call, so that texts of several threads do not mix.
  std::fwrite(lines.data(), 1, lines.size(), stderr);
  std::fflush(stderr);
  return harmlessAnswer(style);
}

int standardMessageBox(const std::string& text, int style, const std::string& title) noexcept {
  try {
    // A copy: the host may replace its message box while it is open.
    const auto box = platform().messageBox;
    return box ? box(text, style, title) : harmlessAnswer(style);
  } catch (...) {
    return harmlessAnswer(style);
  }
}

}  // namespace pelmora
