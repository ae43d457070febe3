// SPDX-License-Identifier: MIT
#include <pelmora/dialog.h>

#include "adapters/dialog/native/form_presenter.h"
#include "adapters/os/wide_text.h"
#include "ui/executable_name.h"
#include "ui/message_box.h"

#include <windows.h>

#include <memory>

namespace pelmora {
namespace {

using MessageBox = decltype(Platform::messageBox);

int systemMessageBox(const std::string& text, int style, const std::string& title,
                     const MessageBox& otherwise) {
  // Without a title the system would write "Error".
  const std::wstring shownTitle = os::wideText(title.empty() ? executableName() : title);
  const int answer = MessageBoxW(GetActiveWindow(), os::wideText(text).c_str(), shownTitle.c_str(),
                                 static_cast<UINT>(style));
  if (answer != 0) return answer;
  return otherwise ? otherwise(text, style, title) : harmlessAnswer(style);
}

}  // namespace

void useDialogs(Platform& platform, const DialogOptions& /*options*/) {
  platform.createFormPresenter = [] { return std::make_unique<dialog::NativePresenter>(); };
  platform.messageBox = [otherwise = platform.messageBox](const std::string& text, int style,
                                                          const std::string& title) {
    return systemMessageBox(text, style, title, otherwise);
  };
}

}  // namespace pelmora
