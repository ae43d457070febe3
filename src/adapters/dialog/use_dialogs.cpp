// SPDX-License-Identifier: MIT
#include <pelmora/dialog.h>

#include "adapters/dialog/dialog_presenter.h"
#include "adapters/dialog/form_window.h"
#include "adapters/dialog/window_host.h"
#include "ui/message_box.h"

#include <exception>
#include <memory>
#include <utility>

namespace pelmora {

namespace {

using MessageBox = decltype(Platform::messageBox);

int messageBoxInWindow(dialog::WindowHost& windows, const std::string& text, int style,
                       const std::string& title, const MessageBox& otherwise) {
  try {
    return windows.show(dialog::windowOf(text, style, title)).value_or(harmlessAnswer(style));
  } catch (const std::exception&) {
    return otherwise ? otherwise(text, style, title) : harmlessAnswer(style);
  }
}

}  // namespace

void useDialogs(Platform& platform, const DialogOptions& options) {
  dialog::WindowSettings settings;
  settings.helperProgram = options.helperProgram;
  settings.readyWithin = options.readyWithin;
  settings.pump = [&platform] {
    if (const auto pump = platform.pumpMessages) pump();
  };
  const auto windows = std::make_shared<dialog::WindowHost>(std::move(settings));

  platform.createFormPresenter = [windows] {
    return std::make_unique<dialog::DialogPresenter>(windows);
  };
  platform.messageBox = [windows, otherwise = platform.messageBox](
                            const std::string& text, int style, const std::string& title) {
    return messageBoxInWindow(*windows, text, style, title, otherwise);
  };
}

}  // namespace pelmora
